#include "app/velanor/printing.h"

#include <QAction>
#include <QDateTime>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QPrintDialog>
#include <QPrinterInfo>
#include <QStandardPaths>
#include <QTimer>

#include "app/velanor/busy.h"
#include "app/velanor/card_batch.h"
#include "app/velanor/employees_dock.h"
#include "app/velanor/file_dialogs.h"
#include "app/velanor/paper/flow.h"
#include "app/velanor/paper/pdf.h"
#include "app/velanor/shown_year.h"
#include "app/velanor/work_bar.h"
#include "qt/strings.h"
#include "text/failure.h"

namespace velanor::app {
namespace {

using paper::Document;
using qt::from_qt, qt::to_qt;
using Component = qt::ControleVelanorWidget;

constexpr qsizetype kEmployee = 5;
const QString kStop = QStringLiteral("&Arrêter le PDF des fiches"),
              kCards = QStringLiteral("Fiches &affichées en PDF…"),
              kGivenUp = QStringLiteral("Le PDF des fiches est abandonné.");

// As a file may be called.
QString file_name(QString title) {
  for (QChar& character : title) {
    if (!character.isPrint() || QStringLiteral("/\\:*?\"<>|").contains(character)) character = u'-';
  }
  return title.trimmed() + ".pdf";
}

}  // namespace

Printing::Printing(Component& component, store::Database& database, EmployeesDock& employees, QObject* parent)
    : QObject(parent), component_(component), database_(database), employees_(employees) {
  folder_ = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  of_card_ = {add("&Imprimer la fiche…", "La fiche ouverte, telle qu'elle est saisie",
                  [this] { put_card(Way::kPrint); }),
              add("Ape&rçu de la fiche…", "Les pages de la fiche ouverte, avant de les imprimer",
                  [this] { put_card(Way::kPreview); }),
              add("Fiche en &PDF…", "La fiche ouverte dans un fichier", [this] { put_card(Way::kPdf); })};
  of_table_ = {
      add("Imprimer le &tableau…", "Le tableau des employés, tel qu'il est filtré et trié",
          [this] { put_table(Way::kPrint); }),
      add("Aperç&u du tableau…", "Les pages du tableau des employés, avant de les imprimer",
          [this] { put_table(Way::kPreview); }),
      add("Tableau en P&DF…", "Le tableau des employés dans un fichier", [this] { put_table(Way::kPdf); })};
  cards_ =
      add(kCards, "Toutes les fiches que le tableau des employés montre, telles qu'elles sont enregistrées",
          [this] { put_cards(); });
  const std::pair<QAction*, QKeyCombination> keys[] = {{of_card_[0], Qt::CTRL | Qt::Key_P},
                                                       {of_card_[1], Qt::CTRL | Qt::SHIFT | Qt::Key_P},
                                                       {of_card_[2], Qt::CTRL | Qt::Key_D},
                                                       {of_table_[0], Qt::CTRL | Qt::Key_I},
                                                       {of_table_[1], Qt::CTRL | Qt::SHIFT | Qt::Key_I},
                                                       {of_table_[2], Qt::CTRL | Qt::SHIFT | Qt::Key_D},
                                                       {cards_, Qt::CTRL | Qt::Key_L}};
  for (const auto& [action, combination] : keys) action->setShortcut(QKeySequence(combination));
  const auto later = [this] { QTimer::singleShot(0, this, &Printing::update); };
  connect(&component_, &Component::acted, this, &Printing::update);
  connect(&component_, &Component::state_changed, this, &Printing::update);
  connect(&component_, &Component::message_opened, this, &Printing::update);
  connect(&component_, &Component::message_closed, this, later);
  update();
}

QAction* Printing::add(const QString& text, const QString& hint, const std::function<void()>& act) {
  auto* action = new QAction(text, this);
  action->setToolTip(hint);
  connect(action, &QAction::triggered, this, [this, act] {
    try {
      act();
    } catch (const std::exception& error) {
      fail(error);
    }
  });
  return action;
}

void Printing::add_to(QMenu& menu) {
  menu.setToolTipsVisible(true);
  menu.addActions(of_card_);
  menu.addSeparator();
  menu.addActions(of_table_);
  menu.addSeparator();
  menu.addAction(cards_);
  connect(&menu, &QMenu::aboutToShow, this, &Printing::update);
}

void Printing::update() {
  const bool waits = component_.open_message() != nullptr;
  for (QAction* action : of_card_) action->setEnabled(!waits && component_.state() != control::State::kNone);
  for (QAction* action : of_table_) action->setEnabled(!waits && employees_.has_reach());
  cards_->setEnabled(batch_ || (!waits && employees_.has_reach()));
  cards_->setText(batch_ ? kStop : kCards);
}

// A menu is alive also where the component waits for an answer.
bool Printing::is_free() {
  const bool free = !is_busy(component_);
  if (!free) emit told(kFinishFirst);
  return free;
}

void Printing::fail(const std::exception& error) { emit told(to_qt(text::failure_sentence(error))); }

office::CardReading& Printing::reading() {
  if (!reading_) reading_ = std::make_unique<office::CardReading>(database_);
  return *reading_;
}

paper::Source Printing::source() const {
  return {base_, QDateTime::currentDateTime().toString("dd/MM/yyyy 'à' HH:mm")};
}

// ---- What is put on paper.

std::optional<office::CardSheet> Printing::card_now() {
  if (!is_free() || component_.state() == control::State::kNone) return std::nullopt;
  const ShownYear at = shown_year(component_);
  auto sheet =
      office::sheet_of(reading(), {from_qt(component_.card_id().left(kEmployee)), at.entity, at.year},
                       component_.card_as_entered());
  if (sheet.employee.empty()) sheet.employee = "nouvelle";
  return sheet;
}

void Printing::put_card(Way way) {
  const auto sheet = card_now();
  if (!sheet) return;
  const bool saved = !component_.modified() && component_.state() != control::State::kCreating;
  const auto pages = [sheet, saved, from = source()](const QSizeF& size) {
    auto all = paper::card_pages(*sheet, saved ? paper::Saved::kYes : paper::Saved::kNo, size);
    paper::put_feet(all, size, from);
    return all;
  };
  put(way, {to_qt("Fiche " + sheet->employee + " " + sheet->year), paper::kUpright, pages});
}

paper::EmployeeTable Printing::table_now() {
  const EmployeesDock::Shown shown = employees_.shown();
  return {shown.table,
          shown.entity.empty() ? QString() : to_qt(office::entity_title(reading(), shown.entity)),
          to_qt(shown.year), shown.filter, shown.count};
}

// When all of its cells are there.
void Printing::put_table(Way way) {
  if (!is_free()) return;
  employees_.when_examined([this, way] {
    if (!is_free()) return;
    const paper::EmployeeTable table = table_now();
    if (table.table.rows.empty()) return emit told("Le tableau des employés ne montre aucune fiche.");
    const auto pages = [table, from = source()](const QSizeF& size) {
      auto all = paper::table_pages(table, size);
      paper::put_feet(all, size, from);
      return all;
    };
    put(way, {("Employés " + table.entity + " " + table.year).simplified(), paper::paper_for(table), pages});
  });
}

void Printing::put(Way way, const Document& document) {
  switch (way) {
    case Way::kPrint:
      return ask_printer(document);
    case Way::kPreview:
      return show_preview(document);
    case Way::kPdf:
      return ask_file(document.title, [this, document](const QString& path) { write(document, path); });
  }
}

// The toolkit's own files are not written as the house writes them.
void Printing::ask_printer(const Document& document) {
  if (QPrinterInfo::availablePrinterNames().isEmpty())
    return emit told("Aucune imprimante n'est installée sur ce poste ; le PDF, lui, peut être écrit.");
  const auto printer = std::make_shared<QPrinter>(QPrinter::HighResolution);
  paper::set_up(*printer, document);
  auto* dialog = new QPrintDialog(printer.get(), component_.window());
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setOption(QAbstractPrintDialog::PrintToFile, false);
  dialog->setOption(QAbstractPrintDialog::PrintPageRange);
  connect(dialog, qOverload<QPrinter*>(&QPrintDialog::accepted), this, [this, printer, document] {
    emit told(paper::print(*printer, document) ? "« " + document.title + " » est envoyé à l'imprimante."
                                               : "L'imprimante n'a rien pris. Vérifiez qu'elle est prête.");
  });
  dialog->open();
}

void Printing::show_preview(const Document& document) {
  auto* preview = new paper::Preview(document, component_.window());
  connect(preview, &paper::Preview::print_asked, this, [this, document] { ask_printer(document); });
  connect(preview, &paper::Preview::pdf_asked, this, [this, document] { put(Way::kPdf, document); });
  preview->open();
}

void Printing::ask_file(const QString& title, const std::function<void(const QString& path)>& then) {
  QFileDialog* dialog =
      save_dialog(*component_.window(), "Écrire un PDF", QDir(folder_).filePath(file_name(title)),
                  "Documents (*.pdf);;Tous les fichiers (*)", "pdf");
  connect(dialog, &QFileDialog::fileSelected, this, [this, then](const QString& path) {
    folder_ = QFileInfo(path).absolutePath();
    try {
      then(path);
    } catch (const std::exception& error) {
      fail(error);
    }
  });
  dialog->open();
}

void Printing::write(const Document& document, const QString& path) {
  const auto pages = document.pages(document.paper);
  paper::write_document(path, paper::pdf_of(document.title, document.paper, pages));
  emit told(QString("« %1 » est écrit (%2 %3).")
                .arg(path)
                .arg(pages.size())
                .arg(pages.size() > 1 ? "pages" : "page"));
}

// ---- Many cards.

void Printing::put_cards() {
  if (batch_) return end_batch(kGivenUp);
  if (!is_free()) return;
  employees_.when_examined([this] {
    if (!is_free()) return;
    const std::size_t count = employees_.shown().ids.size();
    if (count == 0) return emit told("Le tableau des employés ne montre aucune fiche.");
    if (count > CardBatch::kMost) {
      return emit told(QString("Le tableau montre %1 fiches : filtrez-le, %2 au plus tiennent dans un PDF.")
                           .arg(count)
                           .arg(CardBatch::kMost));
    }
    ask_file("Fiches du personnel", [this](const QString& path) { begin_batch(path); });
  });
}

void Printing::begin_batch(const QString& path) {
  if (batch_) return;
  EmployeesDock::Shown shown = employees_.shown();
  if (shown.ids.empty()) return;
  batch_ = new CardBatch(component_, database_,
                         {std::move(shown.ids), std::move(shown.names), table_now(), source(), path}, this);
  connect(batch_, &CardBatch::progressed, this, &Printing::show_part);
  connect(batch_, &CardBatch::ended, this, &Printing::end_batch);
  batch_->start();
  update();
}

void Printing::show_part(double part) {
  if (work_bar_) work_bar_->show_part(*batch_, "Fiches en PDF", part, [this] { end_batch(kGivenUp); });
}

void Printing::end_batch(const QString& sentence) {
  if (!batch_) return;
  if (work_bar_) work_bar_->done(*batch_);
  batch_->disconnect(this);
  batch_->deleteLater();
  batch_ = nullptr;
  update();
  emit told(sentence);
}

}  // namespace velanor::app
