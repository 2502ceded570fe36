#include "app/velanor/main_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTimer>
#include <utility>

#include "app/velanor/busy.h"
#include "app/velanor/card_aids.h"
#include "app/velanor/card_history.h"
#include "app/velanor/card_steps.h"
#include "app/velanor/checks_dock.h"
#include "app/velanor/employees_dock.h"
#include "app/velanor/file_dialogs.h"
#include "app/velanor/help_window.h"
#include "app/velanor/menu_bar.h"
#include "app/velanor/menus.h"
#include "app/velanor/printing.h"
#include "app/velanor/server_address.h"
#include "app/velanor/shown_year.h"
#include "app/velanor/start_page.h"
#include "app/velanor/work_bar.h"
#include "app/velanor/workplace.h"
#include "app/velanor/year_dock.h"
#include "qt/message_sheet.h"
#include "qt/strings.h"
#include "screen/scope.h"

namespace velanor::app {
namespace {

constexpr qsizetype kEmployeeCode = 5;  // characters, with which the id of a card begins
constexpr int kWidth = 1264, kEmployeesWidth = 490, kHeight = 680, kYearHeight = 180;
const QString kTitle = QStringLiteral("Fiches du personnel");

QString by(const QString& author) { return author.isEmpty() ? author : " (" + author + ")"; }

}  // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent), pages_(new QStackedWidget), start_page_(new StartPage) {
  setMenuBar(new MenuBar);
  pages_->addWidget(start_page_);
  setCentralWidget(pages_);
  make_start_page();
  make_status_bar();
  make_menus();
  update_title();
  // Where it no longer waits for anything the keyboard is elsewhere.
  connect(qApp, &QApplication::focusChanged, this, &MainWindow::wipe_what_no_longer_holds,
          Qt::QueuedConnection);
  // Where the screen holds them, the table of the employees and the year of the card have their place.
  const QSize room = screen()->availableSize();
  constexpr int kFrame = 40;
  const bool wide = room.width() >= kWidth + kEmployeesWidth;
  const bool high = room.height() >= kHeight + kYearHeight + kFrame;
  resize(wide ? kWidth + kEmployeesWidth : kWidth, high ? kHeight + kYearHeight : kHeight);
}

MainWindow::MainWindow(store::Database& database, QWidget* parent) : MainWindow(parent) { take(database); }

MainWindow::~MainWindow() {
  menus_.reset();
  workplace_.reset();
}

qt::ControleVelanorWidget& MainWindow::component() const { return *workplace_->component; }

bool MainWindow::is_started() const { return workplace_ && pages_->currentWidget() == workplace_->component; }

// ---- The database.

void MainWindow::take(store::Database& database, Connection connection) {
  workplace_ = std::make_unique<Workplace>(database, *this);
  workplace_->connection = std::move(connection);
  pages_->addWidget(workplace_->component);
  follow_place();
  follow_card();
}

void MainWindow::start() {
  pages_->setCurrentWidget(workplace_->component);
  try {
    workplace_->component->init();
    make_menus();
    start_docks();
  } catch (...) {
    pages_->setCurrentWidget(start_page_);
    throw;
  }
  start_page_->show_failure({});
  // Behind the component it asks for no room.
  start_page_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
  update_count();
}

// A window that is too narrow for both keeps the component whole.
void MainWindow::start_docks() {
  EmployeesDock& employees = *workplace_->employees;
  employees.start();
  employees.set_columns(layout_.employees);
  if (layout_.days_ahead > 0) workplace_->checks->set_days_ahead(layout_.days_ahead);
  if (layout_.docks.isEmpty() || !restoreState(layout_.docks)) {
    employees.setVisible(employees.has_cards());
    resizeDocks({&employees}, {kEmployeesWidth}, Qt::Horizontal);
    workplace_->year->setVisible(workplace_->year->has_room());
  }
  if (!employees.has_room()) employees.hide();
}

void MainWindow::release() {
  layout_ = layout_now();
  menus_.reset();
  work_->clear();
  workplace_.reset();
  start_page_->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
  pages_->setCurrentWidget(start_page_);
  source_.clear();
  mode_->clear();
  has_backups_ = false;
  tell({});
  make_menus();
  update_count();
  update_title();
  start_page_->take_focus();
}

MainWindow::Layout MainWindow::layout_now() const {
  return is_started()
             ? Layout{saveState(), workplace_->employees->columns(), workplace_->checks->days_ahead()}
             : layout_;
}

void MainWindow::follow_place() {
  using Component = qt::ControleVelanorWidget;
  Component* component = workplace_->component;
  connect(workplace_->history, &CardHistory::told, this, &MainWindow::tell);
  connect(workplace_->employees, &EmployeesDock::told, this, &MainWindow::tell);
  connect(workplace_->employees, &EmployeesDock::counted, this, &MainWindow::update_count);
  connect(workplace_->checks, &ChecksDock::told, this, &MainWindow::tell);
  connect(workplace_->printing, &Printing::told, this, &MainWindow::tell);
  workplace_->employees->set_work_bar(*work_);
  workplace_->printing->set_work_bar(*work_);
  connect(component, &Component::left, this, &QWidget::close);
  connect(component, &Component::help_asked, this, &MainWindow::show_help);
  connect(component, &Component::message_opened, this, &MainWindow::end_message, Qt::QueuedConnection);
  // By then the rules have answered, or asked once more.
  connect(component, &Component::message_closed, this, &MainWindow::go_on_leaving, Qt::QueuedConnection);
  // Entity and year have no signal of their own; their fields have.
  if (auto* entity = component->findChild<QLineEdit*>("Txt_Asso"))
    connect(entity, &QLineEdit::textChanged, this, &MainWindow::update_count, Qt::QueuedConnection);
  if (auto* year = component->findChild<QComboBox*>("Cbo_Periode"))
    connect(year, &QComboBox::currentTextChanged, this, &MainWindow::update_count, Qt::QueuedConnection);
}

// ---- The start page, menus and titles.

// What is asked for may take the page away, so it is done when its event is over.
void MainWindow::make_start_page() {
  connect(start_page_, &StartPage::file_asked, this, &MainWindow::ask_file, Qt::QueuedConnection);
  connect(start_page_, &StartPage::open_asked, this, &MainWindow::open_asked, Qt::QueuedConnection);
  connect(start_page_, &StartPage::new_base_asked, this, &MainWindow::new_base_asked, Qt::QueuedConnection);
  connect(start_page_, &StartPage::example_asked, this, &MainWindow::example_asked, Qt::QueuedConnection);
  connect(start_page_, &StartPage::server_asked, this, &MainWindow::server_asked, Qt::QueuedConnection);
  connect(start_page_, &StartPage::forget_asked, this, &MainWindow::forget_asked);
}

void MainWindow::make_menus() {
  menus_.reset();
  menus_ = std::make_unique<Menus>(*this, workplace_.get(), appearance_);
  menus_->set_recent(recent_);
  menus_->set_backups(has_backups_);
}

void MainWindow::set_appearance(Appearance& appearance) {
  appearance_ = &appearance;
  make_menus();
}

// Labels of their own: the toolkit's messages are wiped by every menu that is passed over.
void MainWindow::make_status_bar() {
  const auto label = [](const char* name, const QString& spoken) {
    auto* made = new QLabel;
    made->setObjectName(name);
    made->setAccessibleName(spoken);
    made->setTextFormat(Qt::PlainText);
    return made;
  };
  told_ = label("told", {});
  told_->setContentsMargins(8, 0, 0, 0);
  where_ = label("where", {});
  mode_ = label("mode", {});
  work_ = new WorkBar;
  restore_ = new QPushButton("Rétablir la fiche");
  restore_->setObjectName("restore");
  restore_->setToolTip("Remet la fiche qui vient d'être supprimée (Ctrl+Z)");
  restore_->setFocusPolicy(Qt::NoFocus);
  restore_->hide();
  statusBar()->addWidget(told_);
  statusBar()->addWidget(restore_);
  statusBar()->addWidget(new QWidget, 1);
  statusBar()->addPermanentWidget(work_);
  statusBar()->addPermanentWidget(where_);
  statusBar()->addPermanentWidget(mode_);
}

void MainWindow::set_source(const QString& path) {
  const bool server = is_server(path);
  const QFileInfo file(path);
  source_ = server           ? ServerAddress::of(path).name()
            : path.isEmpty() ? QStringLiteral("Démonstration")
                             : file.fileName();
  has_backups_ = !server && !path.isEmpty();
  if (has_backups_) folder_ = file.absolutePath();
  menus_->set_backups(has_backups_);
  update_title();
  update_count();
}

void MainWindow::set_read_only() {
  has_backups_ = false;
  menus_->set_backups(false);
  mode_->setText("Consultation seule");
  mode_->setToolTip("Cette base est protégée en écriture : rien ne peut y être enregistré.");
  tell("Cette base est protégée en écriture : les fiches se consultent, rien ne peut être enregistré.");
  update_title();
}

// The card first: a narrow place for titles cuts their end.
void MainWindow::update_title() {
  if (workplace_) workplace_->printing->set_base(source_);
  QStringList parts{workplace_ ? component().card_title() : QString(), source_, mode_->text(), kTitle};
  parts.removeAll(QString());
  for (QString& part : parts) part.replace("[*]", "[*][*]");
  parts.first() += "[*]";
  setWindowTitle(parts.join(" – "));
  setWindowModified(workplace_ && component().modified());
}

// The base, the entity and year on the screen, and how many cards they have.
void MainWindow::update_count() {
  if (!is_started()) return where_->clear();
  QStringList parts{source_};
  if (const ShownYear at = shown_year(component()); at.is_chosen()) {
    parts << "Entité " + qt::to_qt(at.entity) + ", " + qt::to_qt(at.year);
    // A dock that is hidden reads nothing; the list of the component knows them too.
    int cards = workplace_->employees->cards_of(at);
    const auto* list = component().findChild<QComboBox*>("Cbo_Aidant");
    if (cards < 0 && list) cards = list->count();
    if (cards >= 0) parts << QString::number(cards) + (cards > 1 ? " fiches" : " fiche");
  }
  where_->setText(parts.join(" · "));
}

void MainWindow::set_recent(const QStringList& files) {
  recent_ = files;
  menus_->set_recent(files);
  start_page_->set_recent(files);
}

void MainWindow::ask_file() {
  auto* dialog = open_dialog(*this, "Ouvrir une base", folder_, "Bases (*.db);;Tous les fichiers (*)");
  connect(dialog, &QFileDialog::fileSelected, this, &MainWindow::open_asked);
  dialog->open();
}

void MainWindow::show_guide() { show_help("Velanor.htm", kTitle); }

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

void MainWindow::set_full_screen(bool on) { on ? showFullScreen() : showNormal(); }

// ---- What the component tells.

void MainWindow::follow_card() {
  using Component = qt::ControleVelanorWidget;
  Component* component = workplace_->component;
  connect(component, &Component::card_title_changed, this, &MainWindow::update_title);
  connect(component, &Component::modified_changed, this, &MainWindow::update_title);
  connect(component, &Component::card_opened, this, [this] { tell({}); });
  connect(component, &Component::card_saved, this,
          [this](const QString&, const QString& title) { tell("Fiche " + title + " enregistrée"); });
  connect(workplace_->steps, &CardSteps::told, this, &MainWindow::tell);
  connect(workplace_->steps, &CardSteps::deleted, this, [this](const QString& sentence) {
    tell(sentence);
    restore_->show();
  });
  connect(restore_, &QAbstractButton::clicked, workplace_->steps, &CardSteps::take_back_deletion);
  connect(workplace_->aids, &CardAids::told, this, &MainWindow::tell);
  // What stood in the way does not stand there for ever.
  connect(workplace_->aids, &CardAids::refused, this, [this](const QString& why) {
    tell(why);
    refusal_ = why;
  });
  connect(component, &Component::acted, this, [this] {
    if (const QString why = std::exchange(refusal_, {}); !why.isEmpty() && told_->text() == why) tell({});
    wipe_what_no_longer_holds();
  });
  connect(component, &Component::card_copied, this,
          [this](const QString&, const QString& title, const QString& copy) {
            tell("Fiche " + title + " copiée sur le code " + copy.left(kEmployeeCode));
          });
  connect(component, &Component::card_saved_elsewhere, this,
          [this](const QString&, const QString&, const QString& author) {
            tell("Cette fiche vient d'être enregistrée sur un autre poste" + by(author) +
                 " ; l'enregistrer ici réunira les modifications.");
          });
  connect(component, &Component::card_deleted_elsewhere, this,
          [this](const QString&, const QString&, const QString& author) {
            tell("Cette fiche vient d'être supprimée sur un autre poste" + by(author) + ".");
          });
}

void MainWindow::tell(const QString& sentence) {
  told_->setText(sentence);
  restore_->hide();
}

void MainWindow::wipe_what_no_longer_holds() {
  const bool started = is_started();
  if (told_->text() == kFinishFirst && !(started && is_busy(component()))) tell({});
  if (told_->text() == kEndLineFirst && !(started && would_lose_line(component()))) tell({});
}

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
  if (leaves_ || !is_started() || component().screen().finished()) return false;
  return component().state() != control::State::kNone || component().open_message();
}

bool MainWindow::may_leave(Leaving leaving) {
  if (!would_ask()) return true;
  bring_forward();
  if (asking_to_leave_) return false;
  if (component().open_message()) {
    leaving_ = leaving;
    end_message();
    return false;
  }
  return asks_and_may_leave();
}

bool MainWindow::asks_and_may_leave() {
  const screen::Scope asking(asking_to_leave_);
  return component().ask({.title = kTitle.toStdString(),
                          .text =
                              "Une fiche est ouverte : ce qui n'est pas enregistré sera perdu.\r\nQuitter "
                              "quand même ?",
                          .icon = screen::Icon::Question,
                          .buttons = screen::Buttons::YesNo,
                          .preset = screen::Answer::No}) == screen::Answer::Yes;
}

// The rules may answer with one more message.
void MainWindow::end_message() {
  qt::MessageSheet* sheet = leaving_ == Leaving::kNot || !workplace_ ? nullptr : component().open_message();
  if (sheet) emit sheet->answered(sheet->closing_answer());
}

void MainWindow::go_on_leaving() {
  if (!workplace_ || component().open_message()) return;
  switch (std::exchange(leaving_, Leaving::kNot)) {
    case Leaving::kBase:
      emit base_close_asked();
      break;
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
