#include "app/velanor/main_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QScreen>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTimer>
#include <utility>

#include "app/velanor/card_history.h"
#include "app/velanor/checks_dock.h"
#include "app/velanor/employees_dock.h"
#include "app/velanor/help_window.h"
#include "app/velanor/server_address.h"
#include "qt/message_sheet.h"
#include "qt/strings.h"
#include "screen/scope.h"

namespace velanor::app {
namespace {

constexpr qsizetype kEmployeeCode = 5;  // characters, with which the id of a card begins
constexpr int kWidth = 1264, kEmployeesWidth = 490;
const QString kTitle = QStringLiteral("Fiches du personnel");

// The toolkit's translation leaves these out.
class FrenchKinds : public QFileIconProvider {
 public:
  QString type(const QFileInfo& file) const override {
    if (file.isDir()) return QStringLiteral("Dossier");
    return file.suffix() == QLatin1String("db") ? QStringLiteral("Base") : QStringLiteral("Fichier");
  }
};

QString by(const QString& author) { return author.isEmpty() ? author : " (" + author + ")"; }

QFileIconProvider& french_kinds() {
  static FrenchKinds kinds;
  return kinds;
}

}  // namespace

MainWindow::MainWindow(store::Database& database, QWidget* parent)
    : QMainWindow(parent), component_(new qt::ControleVelanorWidget), pages_(new QStackedWidget) {
  pages_->addWidget(new QWidget);
  pages_->addWidget(component_);
  setCentralWidget(pages_);
  history_ = new CardHistory(*component_, database, this);
  connect(history_, &CardHistory::told, this, &MainWindow::tell);
  employees_ = new EmployeesDock(*component_, database, this);
  connect(employees_, &EmployeesDock::told, this, &MainWindow::tell);
  addDockWidget(Qt::LeftDockWidgetArea, employees_);
  employees_->hide();
  checks_ = new ChecksDock(*component_, database, this);
  connect(checks_, &ChecksDock::told, this, &MainWindow::tell);
  addDockWidget(Qt::BottomDockWidgetArea, checks_);
  checks_->hide();
  make_menus();
  make_status_bar();
  update_title();
  component_->DroitsUtilisateur(*this);
  component_->TheClient(client_);
  component_->TheDatabase(database);
  connect(component_, &qt::ControleVelanorWidget::left, this, &QWidget::close);
  connect(component_, &qt::ControleVelanorWidget::help_asked, this, &MainWindow::show_help);
  connect(component_, &qt::ControleVelanorWidget::message_opened, this, &MainWindow::end_message,
          Qt::QueuedConnection);
  // By then the rules have answered, or asked once more.
  connect(component_, &qt::ControleVelanorWidget::message_closed, this, &MainWindow::go_on_leaving,
          Qt::QueuedConnection);
  follow_card();
  const bool wide = screen()->availableGeometry().width() >= kWidth + kEmployeesWidth;
  resize(wide ? kWidth + kEmployeesWidth : kWidth, 680);
}

// The component looks at what stands around it until its end.
MainWindow::~MainWindow() { delete component_; }

bool MainWindow::is_started() const { return pages_->currentWidget() == component_; }

void MainWindow::start() {
  pages_->setCurrentWidget(component_);
  try {
    component_->init();
  } catch (...) {
    pages_->setCurrentIndex(0);
    throw;
  }
  start_docks();
}

// A window that is too narrow for both keeps the component whole.
void MainWindow::start_docks() {
  employees_->start();
  employees_->set_columns(layout_.employees);
  if (layout_.docks.isEmpty() || !restoreState(layout_.docks)) {
    employees_->setVisible(employees_->has_cards());
    resizeDocks({employees_}, {kEmployeesWidth}, Qt::Horizontal);
  }
  if (!employees_->has_room()) employees_->hide();
}

MainWindow::Layout MainWindow::layout_now() const {
  return is_started() ? Layout{saveState(), employees_->columns()} : layout_;
}

void MainWindow::ask_before_start(const screen::Message& message, std::function<void(screen::Answer)> then) {
  auto* sheet = new qt::MessageSheet(message, *pages_->widget(0));
  connect(sheet, &qt::MessageSheet::answered, this,
          [this, sheet, then = std::move(then)](screen::Answer answer) {
            sheet->disconnect(this);
            sheet->hide();
            sheet->deleteLater();
            QTimer::singleShot(0, this, [then, answer] { then(answer); });
          });
  sheet->show();
  sheet->focus_preset();
}

// ---- Menus and titles.

void MainWindow::make_menus() {
  QMenu* file = menuBar()->addMenu("&Fichier");
  QAction* open = file->addAction("&Ouvrir…");
  open->setShortcut(QKeySequence::Open);
  connect(open, &QAction::triggered, this, &MainWindow::ask_file);
  connect(file->addAction("Se &connecter à un serveur…"), &QAction::triggered, this,
          &MainWindow::server_asked);
  recent_ = file->addMenu("Bases &récentes");
  recent_->setEnabled(false);
  recent_->setToolTipsVisible(true);
  backups_ = file->addAction("Reprendre une &sauvegarde…");
  backups_->setEnabled(false);
  connect(backups_, &QAction::triggered, this, &MainWindow::backups_asked);
  file->addSeparator();
  QAction* shut = file->addAction("&Fermer la fenêtre");
  shut->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_W));
  connect(shut, &QAction::triggered, this, &QWidget::close);
  QAction* quit = file->addAction("&Quitter");
  quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
  connect(quit, &QAction::triggered, this, &MainWindow::quit_asked);
  employees_->add_to(*menuBar()->addMenu("Emplo&yés"));
  history_->add_to(*menuBar()->addMenu("Histori&que"));
  QAction* checks = menuBar()->addMenu("Afficha&ge")->addAction("&Contrôles");
  checks->setShortcut(QKeySequence(Qt::Key_F8));
  connect(checks, &QAction::triggered, checks_, &ChecksDock::check);
  QMenu* help = menuBar()->addMenu("A&ide");
  QAction* guide = help->addAction("&Guide");
  guide->setShortcut(QKeySequence(Qt::Key_F1));
  connect(guide, &QAction::triggered, this, [this] { show_help("Velanor.htm", kTitle); });
  connect(help->addAction("À &propos…"), &QAction::triggered, this, &MainWindow::show_about);
}

// Labels of their own: the toolkit's messages are wiped by every menu that is passed over.
void MainWindow::make_status_bar() {
  told_ = new QLabel;
  told_->setObjectName("told");
  told_->setContentsMargins(8, 0, 0, 0);
  statusBar()->addWidget(told_, 1);
  mode_ = new QLabel;
  mode_->setObjectName("mode");
  statusBar()->addPermanentWidget(mode_);
}

void MainWindow::set_source(const QString& path) {
  if (is_server(path)) {
    source_ = ServerAddress::of(path).name();
    return update_title();
  }
  const QFileInfo file(path);
  source_ = path.isEmpty() ? QStringLiteral("Démonstration") : file.fileName();
  if (!path.isEmpty()) folder_ = file.absolutePath();
  backups_->setEnabled(!path.isEmpty());
  update_title();
}

void MainWindow::set_read_only() {
  backups_->setEnabled(false);
  mode_->setText("Consultation seule");
  mode_->setToolTip("Cette base est protégée en écriture : rien ne peut y être enregistré.");
  tell("Cette base est protégée en écriture : les fiches se consultent, rien ne peut être enregistré.");
  update_title();
}

// The card first: a narrow place for titles cuts their end.
void MainWindow::update_title() {
  QStringList parts{component_->card_title(), source_, mode_->text(), kTitle};
  parts.removeAll(QString());
  for (QString& part : parts) part.replace("[*]", "[*][*]");
  parts.first() += "[*]";
  setWindowTitle(parts.join(" – "));
  setWindowModified(component_->modified());
}

void MainWindow::set_recent(const QStringList& files) {
  recent_->clear();
  recent_->setEnabled(!files.isEmpty());
  for (const QString& path : files) {
    QAction* entry =
        recent_->addAction(is_server(path) ? ServerAddress::of(path).name() : QFileInfo(path).fileName());
    entry->setToolTip(path);
    connect(entry, &QAction::triggered, this, [this, path] { emit open_asked(path); });
  }
}

void MainWindow::ask_file() {
  auto* dialog = new QFileDialog(this, "Ouvrir une base", folder_, "Bases (*.db);;Tous les fichiers (*)");
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setIconProvider(&french_kinds());
  dialog->setFileMode(QFileDialog::ExistingFile);
  dialog->resize(820, 480);
  connect(dialog, &QFileDialog::fileSelected, this, &MainWindow::open_asked);
  dialog->open();
}

void MainWindow::show_help(const QString& page, const QString& title) {
  if (!help_) help_ = new HelpWindow(this);
  help_->show_page(page, title);
}

void MainWindow::show_about() {
  auto* box = new QMessageBox(QMessageBox::NoIcon, "À propos",
                              "Fiches du personnel\nLes fiches budgétaires du personnel des associations "
                              "d'aide à domicile.\n\nVersion " VELANOR_VERSION,
                              QMessageBox::Ok, this);
  box->setIconPixmap(QApplication::windowIcon().pixmap(64));
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->open();
}

// ---- What the component tells.

void MainWindow::follow_card() {
  using Component = qt::ControleVelanorWidget;
  connect(component_, &Component::card_title_changed, this, &MainWindow::update_title);
  connect(component_, &Component::modified_changed, this, &MainWindow::update_title);
  connect(component_, &Component::card_opened, this, [this] { tell({}); });
  connect(component_, &Component::card_saved, this,
          [this](const QString&, const QString& title) { tell("Fiche " + title + " enregistrée"); });
  connect(component_, &Component::card_deleted, this,
          [this](const QString&, const QString& title) { tell("Fiche " + title + " supprimée"); });
  connect(component_, &Component::card_copied, this,
          [this](const QString&, const QString& title, const QString& copy) {
            tell("Fiche " + title + " copiée sur le code " + copy.left(kEmployeeCode));
          });
  connect(component_, &Component::card_saved_elsewhere, this,
          [this](const QString&, const QString&, const QString& author) {
            tell("Cette fiche vient d'être enregistrée sur un autre poste" + by(author) +
                 " ; l'enregistrer ici réunira les modifications.");
          });
  connect(component_, &Component::card_deleted_elsewhere, this,
          [this](const QString&, const QString&, const QString& author) {
            tell("Cette fiche vient d'être supprimée sur un autre poste" + by(author) + ".");
          });
}

void MainWindow::tell(const QString& sentence) const { told_->setText(sentence); }

// ---- Leaving.

void MainWindow::bring_forward() {
  setWindowState(windowState() & ~Qt::WindowMinimized);
  show();
  raise();
  activateWindow();
}

void MainWindow::leave() {
  leaves_ = true;
  close();
}

void MainWindow::closeEvent(QCloseEvent* event) {
  event->setAccepted(!would_ask());
  if (event->isAccepted()) return emit closed();
  if (asking_to_leave_) return bring_forward();
  // Not within the event: a second one that came while it waits would close the window unasked.
  QTimer::singleShot(0, this, [this] {
    if (!may_leave(Leaving::kClosing)) return;
    leaves_ = true;
    close();
  });
}

bool MainWindow::would_ask() const {
  if (leaves_ || !is_started() || component_->screen().finished()) return false;
  return component_->state() != control::State::kNone || component_->open_message();
}

bool MainWindow::may_leave(Leaving leaving) {
  if (!would_ask()) return true;
  bring_forward();
  if (asking_to_leave_) return false;
  if (component_->open_message()) {
    leaving_ = leaving;
    end_message();
    return false;
  }
  return asks_and_may_leave();
}

bool MainWindow::asks_and_may_leave() {
  const screen::Scope asking(asking_to_leave_);
  return component_->ask({.title = kTitle.toStdString(),
                          .text =
                              "Une fiche est ouverte : ce qui n'est pas enregistré sera perdu.\r\nQuitter "
                              "quand même ?",
                          .icon = screen::Icon::Question,
                          .buttons = screen::Buttons::YesNo,
                          .preset = screen::Answer::No}) == screen::Answer::Yes;
}

// The rules may answer with one more message.
void MainWindow::end_message() {
  qt::MessageSheet* sheet = leaving_ == Leaving::kNot ? nullptr : component_->open_message();
  if (sheet) emit sheet->answered(sheet->closing_answer());
}

void MainWindow::go_on_leaving() {
  if (component_->open_message()) return;
  switch (std::exchange(leaving_, Leaving::kNot)) {
    case Leaving::kClosing:
      QTimer::singleShot(0, this, &QWidget::close);
      break;
    case Leaving::kQuitting:
      emit quit_asked();
      break;
    case Leaving::kNot:
      break;
  }
}

}  // namespace velanor::app
