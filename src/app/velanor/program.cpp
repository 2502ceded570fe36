#include "app/velanor/program.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QPointer>
#include <QScopeGuard>
#include <QStandardPaths>
#include <algorithm>
#include <optional>

#include "app/velanor/backups_dialog.h"
#include "app/velanor/daily_backup.h"
#include "app/velanor/main_window.h"
#include "app/velanor/place.h"
#include "app/velanor/server_dialog.h"
#include "demo/demo.h"
#include "screen/scope.h"
#include "text/failure.h"
#include "velanor/sqlite_database.h"

namespace velanor::app {
namespace {

const QString kTitle = QStringLiteral("Fiches du personnel");

QString own_database() {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
  QDir().mkpath(folder);
  return QDir(folder).filePath("velanor.db");
}

// The records that the component reads at its start are missing.
bool is_empty(store::Database& database) { return !database.OpenFile("TABLES")->find("FINCONTRAT"); }

void fill(store::Database& database) {
  QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  const auto restore = qScopeGuard([] { QGuiApplication::restoreOverrideCursor(); });
  database.in_one_change([&] {
    StoreSink sink(
        [&](auto file, auto id, const auto& record) { database.OpenFile(file)->write(id, record); });
    demo::fill(sink);
  });
}

void tell_failure(QWidget& window, const QString& sentence) {
  auto* box = new QMessageBox(QMessageBox::Critical, kTitle, sentence, QMessageBox::Ok, &window);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->open();
}

constexpr const char* kCannotBeUsed =
    "Une base vide ne peut pas être ouverte : importez d'abord vos fichiers de référence par la "
    "commande velanorctl import, puis relancez le programme.";

}  // namespace

struct Program::Desk {
  std::unique_ptr<store::Database> store;
  QString path;  // "" for the demonstration data in memory
  Place place;
  std::unique_ptr<MainWindow> window;
  std::unique_ptr<DailyBackup> backup = {};
  std::optional<Turns::Seat> seat = {};
  bool started = false;
};

// A window that is taken away while it asks may be the last one in sight, and is not the end.
Program::Program() { QGuiApplication::setQuitOnLastWindowClosed(false); }
Program::~Program() = default;

// ---- Opening.

bool Program::start(const StoreOptions& options) try {
  const QString named = QString::fromStdString(options.url);
  if (!options.demo && is_server(named)) return start_on_server(ServerAddress::of(named));
  if (options.demo || !options.url.empty()) {
    const QString path = options.demo ? QString() : QString::fromStdString(path_of(options.url));
    return show(open_desk(options, path, IfMissing::kFail)), true;
  }
  const QString last = settings_.last();
  return last.isEmpty() || last == own_database() ? open_own() : open_last(last);
} catch (const std::exception& error) {
  QMessageBox::critical(nullptr, kTitle, QString::fromStdString(text::failure_sentence(error)));
  return false;
}

bool Program::open_own() {
  StoreOptions own;
  const QString path = own_database();
  own.url = path.toStdString();
  return show(open_desk(own, path, IfMissing::kCreate)), true;
}

// One that is away for the moment, on another machine or a key, stays the last for the next start.
bool Program::open_last(const QString& path) try {
  if (is_server(path)) return start_on_server(ServerAddress::of(path)) || open_own_instead();
  StoreOptions options;
  options.url = path.toStdString();
  return show(open_desk(options, path, IfMissing::kFail)), true;
} catch (const std::exception& error) {
  return open_own_instead(QString::fromStdString(text::failure_sentence(error)) + "\n\n");
}

bool Program::open_own_instead(const QString& why) {
  const QString question =
      why + "C'est la base ouverte en dernier. Voulez-vous ouvrir à sa place votre propre base ?";
  return QMessageBox::question(nullptr, kTitle, question) == QMessageBox::Yes && open_own();
}

// ---- Servers.

QString Program::open_server(const ServerAddress& address) try {
  if (const Desk* desk = desk_on(address.url())) return desk->window->bring_forward(), QString();
  StoreOptions options;
  options.url = address.url_with_password().toStdString();
  show(open_desk(options, address.url(), IfMissing::kFail));
  settings_.set_server(address.url());
  return {};
} catch (const std::exception& error) {
  return QString::fromStdString(text::failure_sentence(error));
}

bool Program::start_on_server(const ServerAddress& address) {
  const QString failure = open_server(address);
  if (failure.isEmpty()) return true;
  ServerDialog dialog(address, [this](const ServerAddress& asked) { return open_server(asked); });
  dialog.show_failure(failure);
  return dialog.exec() == QDialog::Accepted;
}

ServerAddress Program::proposed_server() const {
  const QString last = settings_.server();
  return last.isEmpty() ? ServerAddress() : ServerAddress::of(last);
}

void Program::ask_server(const ServerAddress& proposed, MainWindow& asker, const QString& failure) {
  settings_.set_place(asker.saveGeometry());
  auto* dialog = new ServerDialog(
      proposed, [this](const ServerAddress& asked) { return open_server(asked); }, &asker);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  if (!failure.isEmpty()) dialog->show_failure(failure);
  dialog->open();
}

// ---- Opening beside others.

void Program::open(const QString& path, MainWindow& asker) try {
  if (is_server(path)) {
    const ServerAddress address = ServerAddress::of(path);
    settings_.set_place(asker.saveGeometry());
    if (const QString failure = open_server(address); !failure.isEmpty()) ask_server(address, asker, failure);
    return;
  }
  if (const Desk* desk = desk_on(path)) return desk->window->bring_forward();
  StoreOptions options;
  options.url = path.toStdString();
  settings_.set_place(asker.saveGeometry());
  show(open_desk(options, path, IfMissing::kFail));
} catch (const std::exception& error) {
  tell_failure(asker, QString::fromStdString(text::failure_sentence(error)));
}

Program::Desk& Program::open_desk(const StoreOptions& options, const QString& path, IfMissing if_missing) {
  auto desk = std::make_unique<Desk>();
  desk->store = open_store(options, if_missing);
  desk->path = path.isEmpty() || is_server(path) ? path : QFileInfo(path).absoluteFilePath();
  desk->window = std::make_unique<MainWindow>(*desk->store);
  return *desks_.emplace_back(std::move(desk));
}

// Whoever asks for something may be gone when it is done, so it is done when his event is over.
void Program::show(Desk& desk) {
  MainWindow& window = *desk.window;
  window.set_source(desk.path);
  window.set_recent(settings_.recent());
  if (desk.store->read_only()) window.set_read_only();
  const QPointer<MainWindow> asker(&window);
  connect(
      &window, &MainWindow::open_asked, this,
      [this, asker](const QString& path) {
        if (asker) open(path, *asker);
      },
      Qt::QueuedConnection);
  connect(&window, &MainWindow::backups_asked, this, [this, asker] { show_backups(*asker); });
  connect(
      &window, &MainWindow::server_asked, this,
      [this, asker] {
        if (asker) ask_server(proposed_server(), *asker);
      },
      Qt::QueuedConnection);
  connect(&window, &MainWindow::quit_asked, this, &Program::quit, Qt::QueuedConnection);
  connect(&window, &MainWindow::closed, this, [this, asker] { closed(*asker); });
  desk.seat.emplace(turns_, window);
  window.set_layout({settings_.docks(), settings_.employees()});
  desk.place.give_to(window, settings_.place());
  window.show();
  begin(desk);
}

void Program::begin(Desk& desk) try {
  if (is_empty(*desk.store)) return offer_demonstration(desk);
  desk.window->start();
  desk.started = true;
  if (!desk.path.isEmpty()) remember(desk.path);
  look_after(desk);
} catch (const std::exception& error) {
  give_up(desk, text::failure_sentence(error));
}

// What can only be told, in the window that has come up.
void Program::look_after(Desk& desk) {
  const auto* base = dynamic_cast<const store::SqliteDatabase*>(desk.store.get());
  if (base == nullptr || base->read_only()) return;
  if (const std::string remark = base->remark(); !remark.empty())
    desk.window->tell(QString::fromStdString(remark));
  desk.backup = std::make_unique<DailyBackup>(desk.path);
  connect(desk.backup.get(), &DailyBackup::failed, desk.window.get(), &MainWindow::tell);
  desk.backup->start();
}

void Program::give_up(Desk& desk, const std::string& sentence) {
  MainWindow& window = *desk.window;
  window.ask_before_start({.title = kTitle.toStdString(), .text = sentence},
                          [&window](screen::Answer) { window.leave(); });
}

// The component does not start on an empty database.
void Program::offer_demonstration(Desk& desk) {
  if (desk.store->read_only()) return give_up(desk, kCannotBeUsed);
  const screen::Message offer{
      .title = kTitle.toStdString(),
      .text =
          "Cette base est vide.\r\nVoulez-vous y mettre les données de démonstration (trois entités "
          "fictives et leur personnel) ?",
      .icon = screen::Icon::Question,
      .buttons = screen::Buttons::YesNo,
      .preset = screen::Answer::Yes};
  desk.window->ask_before_start(offer, [this, &desk](screen::Answer answer) {
    if (answer != screen::Answer::Yes) return give_up(desk, kCannotBeUsed);
    try {
      fill(*desk.store);
    } catch (const std::exception& error) {
      return give_up(desk, text::failure_sentence(error));
    }
    begin(desk);
  });
}

void Program::remember(const QString& path) {
  settings_.remember(path);
  for (MainWindow* window : windows()) window->set_recent(settings_.recent());
}

// ---- Backups.

void Program::show_backups(MainWindow& window) try {
  const Desk* desk = desk_of(window);
  if (!desk || window.component().open_message()) return;
  if (window.component().modified())
    return window.tell(
        "Enregistrez ou annulez d'abord la fiche ouverte : reprendre une sauvegarde la ferme.");
  auto* dialog = new BackupsDialog(desk->path, &window);
  // When the dialog is gone.
  connect(
      dialog, &BackupsDialog::taken, this,
      [this, window = QPointer<MainWindow>(&window)](const QString& backup, const QString& moment) {
        if (window) take_backup(*window, backup, moment);
      },
      Qt::QueuedConnection);
  dialog->open();
} catch (const std::exception& error) {
  tell_failure(window, QString::fromStdString(text::failure_sentence(error)));
}

void Program::take_backup(MainWindow& window, const QString& backup, const QString& moment) {
  if (window.component().modified() || window.component().open_message()) return;
  const auto at = std::find_if(desks_.begin(), desks_.end(),
                               [&](const auto& desk) { return desk->window.get() == &window; });
  const QString path = (*at)->path;
  settings_.set_place(window.saveGeometry());
  desks_.erase(at);
  QString failure, told;
  try {
    const std::string aside = store::SqliteDatabase::restore(backup.toStdString(), path.toStdString());
    told = "Sauvegarde du " + moment + " reprise. L'ancienne base est gardée sous « " +
           QFileInfo(QString::fromStdString(aside)).fileName() + " ».";
  } catch (const std::exception& error) {
    failure = QString::fromStdString(text::failure_sentence(error));
  }
  try {
    StoreOptions options;
    options.url = path.toStdString();
    Desk& desk = open_desk(options, path, IfMissing::kFail);
    show(desk);
    desk.window->tell(told);
    if (!failure.isEmpty()) tell_failure(*desk.window, failure);
  } catch (const std::exception& error) {
    QMessageBox::critical(nullptr, kTitle, QString::fromStdString(text::failure_sentence(error)));
    if (desks_.empty()) QCoreApplication::quit();
  }
}

// ---- Closing.

void Program::quit() {
  if (quitting_) return;
  const screen::Scope quitting(quitting_);
  std::vector<QPointer<MainWindow>> all;
  for (MainWindow* window : windows()) all.emplace_back(window);
  const QWidget* active = QApplication::activeWindow();
  std::stable_partition(all.begin(), all.end(), [&](const auto& window) { return window != active; });
  for (const auto& window : all) {
    if (!window) continue;
    if (!window->may_leave(MainWindow::Leaving::kQuitting)) return;
    window->leave();
  }
}

// It may still be in the middle of something, and goes when that is over.
void Program::closed(MainWindow& window) {
  settings_.set_place(window.saveGeometry());
  const MainWindow::Layout layout = window.layout_now();
  settings_.set_docks(layout.docks);
  settings_.set_employees(layout.employees);
  if (const Desk* desk = desk_of(window); desk && desk->started && !desk->path.isEmpty())
    settings_.set_last(desk->path);
  QMetaObject::invokeMethod(
      this, [this, gone = QPointer<MainWindow>(&window)] { forget(gone); }, Qt::QueuedConnection);
}

void Program::forget(const MainWindow* window) {
  const auto is_gone = [&](const auto& desk) { return desk->window.get() == window; };
  desks_.erase(std::remove_if(desks_.begin(), desks_.end(), is_gone), desks_.end());
  if (desks_.empty()) QCoreApplication::quit();
}

std::vector<MainWindow*> Program::windows() const {
  std::vector<MainWindow*> windows;
  for (const auto& desk : desks_) windows.push_back(desk->window.get());
  return windows;
}

Program::Desk* Program::desk_of(const MainWindow& window) const {
  const auto at = std::find_if(desks_.begin(), desks_.end(),
                               [&](const auto& desk) { return desk->window.get() == &window; });
  return at == desks_.end() ? nullptr : at->get();
}

Program::Desk* Program::desk_on(const QString& path) const {
  if (is_server(path)) {
    const auto same =
        std::find_if(desks_.begin(), desks_.end(), [&](const auto& desk) { return desk->path == path; });
    return same == desks_.end() ? nullptr : same->get();
  }
  const QString file = QFileInfo(path).canonicalFilePath();
  const auto at = std::find_if(desks_.begin(), desks_.end(), [&](const auto& desk) {
    return !file.isEmpty() && QFileInfo(desk->path).canonicalFilePath() == file;
  });
  return at == desks_.end() ? nullptr : at->get();
}

}  // namespace velanor::app
