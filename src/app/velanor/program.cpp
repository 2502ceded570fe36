#include "app/velanor/program.h"

#include <QApplication>
#include <QDate>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QPointer>
#include <QStandardPaths>
#include <algorithm>
#include <optional>

#include "app/velanor/backups_dialog.h"
#include "app/velanor/daily_backup.h"
#include "app/velanor/main_window.h"
#include "app/velanor/new_base_dialog.h"
#include "app/velanor/place.h"
#include "app/velanor/server_dialog.h"
#include "app/velanor/start_page.h"
#include "app/velanor/work_bar.h"
#include "qt/strings.h"
#include "screen/scope.h"
#include "text/failure.h"
#include "velanor/sqlite_database.h"

namespace velanor::app {
namespace {

using qt::from_qt, qt::to_qt;

const QString kTitle = QStringLiteral("Fiches du personnel");

QString own_folder() {
  QString folder = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
  QDir().mkpath(folder);
  return folder;
}

// One of today's, under a name that is free.
QString example_path() {
  const QString stem = "exemple-" + QDate::currentDate().toString(Qt::ISODate);
  const QDir own(own_folder());
  for (int number = 1;; ++number) {
    const QString name = (number == 1 ? stem : stem + "-" + QString::number(number)) + ".db";
    if (!own.exists(name)) return own.filePath(name);
  }
}

StoreOptions naming(const QString& path) {
  StoreOptions options;
  options.url = from_qt(path);
  return options;
}

Connection connection_to(const StoreOptions& options) {
  return [options] { return open_store(options, IfMissing::kFail); };
}

// The component does not start without them.
void refuse_unusable(store::Database& database, const QString& path) {
  const auto missing = missing_lists(database);
  if (missing.empty()) return;
  QStringList names;
  for (const std::string& name : missing) names << to_qt(name);
  throw store::DbError(
      store::kStoreFailure,
      from_qt(
          "La base « " + path + " » ne peut pas être ouverte : il lui manque des listes du fichier TABLES (" +
          names.join(", ") +
          "). Importez-les par « velanorctl import », ou faites une base avec vos tableaux par « Nouvelle "
          "base… »."));
}

}  // namespace

struct Program::Desk {
  std::unique_ptr<store::Database> store = {};
  Connection connection = {};
  QString path = {};  // "" for the demonstration data in memory
  Place place = {};
  std::unique_ptr<MainWindow> window = {};
  std::unique_ptr<DailyBackup> backup = {};
  std::optional<Turns::Seat> seat = {};
};

// A window that is taken away while it asks may be the last one in sight, and is not the end.
Program::Program(Appearance* appearance) : appearance_(appearance) {
  QGuiApplication::setQuitOnLastWindowClosed(false);
}
Program::~Program() = default;

// ---- Opening.

void Program::start(const StoreOptions& options) {
  MainWindow& window = *new_desk().window;
  const QString named = to_qt(options.url), last = settings_.last();
  if (options.demo) {
    if (const QString failure = open_file(options, {}, window); !failure.isEmpty())
      tell_failure(window, failure);
  } else if (!named.isEmpty()) {
    open(named, window);
  } else if (!last.isEmpty()) {
    // One that is away for the moment, on another machine or a key, stays the last for the next start.
    open(last, window);
  }
}

void Program::open(const QString& path, MainWindow& asker) {
  settings_.set_place(asker.saveGeometry());
  if (is_server(path)) {
    const ServerAddress address = ServerAddress::of(path);
    if (const QString failure = open_server(address, asker); !failure.isEmpty())
      ask_server(address, asker, failure);
    return;
  }
  if (const QString failure = open_file(naming(path), path, asker); !failure.isEmpty())
    tell_failure(asker, failure);
}

QString Program::open_file(const StoreOptions& options, const QString& named, MainWindow& asker) try {
  const bool file = is_file(options);
  const QString path = file ? QFileInfo(to_qt(path_of(options.url))).absoluteFilePath() : QString();
  if (const Desk* desk = file ? desk_on(path) : nullptr) return desk->window->bring_forward(), QString();
  auto store = open_store(options, IfMissing::kFail);
  refuse_unusable(*store, named);
  put(desk_for(asker), std::move(store), path, file ? connection_to(options) : Connection());
  return {};
} catch (const std::exception& error) {
  return to_qt(text::failure_sentence(error));
}

Program::Desk& Program::new_desk() {
  auto made = std::make_unique<Desk>();
  made->window = std::make_unique<MainWindow>();
  Desk& desk = *desks_.emplace_back(std::move(made));
  MainWindow& window = *desk.window;
  if (appearance_) window.set_appearance(*appearance_);
  window.set_recent(settings_.recent());
  follow(window);
  window.set_layout({settings_.docks(), settings_.employees(), settings_.days_ahead()});
  desk.place.give_to(window, settings_.place());
  window.show();
  return desk;
}

// Whoever asks for something may be gone when it is done, so it is done when his event is over.
void Program::follow(MainWindow& window) {
  const QPointer<MainWindow> asker(&window);
  const auto when = [&](auto signal, auto act) { connect(&window, signal, this, act, Qt::QueuedConnection); };
  const auto asked = [asker, this](void (Program::*act)(MainWindow&)) {
    return [asker, this, act] {
      if (asker) (this->*act)(*asker);
    };
  };
  when(&MainWindow::open_asked, [this, asker](const QString& path) {
    if (asker) open(path, *asker);
  });
  when(&MainWindow::new_base_asked, asked(&Program::make_base));
  when(&MainWindow::example_asked, asked(&Program::open_example));
  when(&MainWindow::base_close_asked, asked(&Program::close_base));
  when(&MainWindow::reopen_asked, asked(&Program::reopen));
  when(&MainWindow::server_asked, [this, asker] {
    if (asker) ask_server(proposed_server(), *asker);
  });
  when(&MainWindow::quit_asked, [this] { quit(); });
  connect(&window, &MainWindow::forget_asked, this, &Program::forget);
  connect(&window, &MainWindow::backups_asked, this, [this, asker] { show_backups(*asker); });
  connect(&window, &MainWindow::closed, this, [this, asker] { closed(*asker); });
}

Program::Desk& Program::desk_for(MainWindow& asker) {
  Desk* own = desk_of(asker);
  return own && !own->store ? *own : new_desk();
}

void Program::put(Desk& desk, std::unique_ptr<store::Database> store, const QString& path,
                  const Connection& connection) try {
  MainWindow& window = *desk.window;
  desk.store = std::move(store);
  desk.path = path;
  desk.connection = connection;
  window.take(*desk.store, connection);
  desk.seat.emplace(turns_, window);
  window.set_source(path);
  window.start();
  if (desk.store->read_only()) window.set_read_only();
  if (!path.isEmpty()) remember(path);
  look_after(desk);
} catch (...) {
  clear(desk);
  throw;
}

void Program::clear(Desk& desk) {
  desk.seat.reset();
  if (desk.window->has_base()) desk.window->release();
  desk.backup.reset();
  desk.store.reset();
  desk.path.clear();
}

// What can only be told, in the window that has come up.
void Program::look_after(Desk& desk) {
  const auto* base = dynamic_cast<const store::SqliteDatabase*>(desk.store.get());
  if (base == nullptr || base->read_only()) return;
  if (const std::string remark = base->remark(); !remark.empty()) desk.window->tell(to_qt(remark));
  desk.backup = std::make_unique<DailyBackup>(desk.path);
  connect(desk.backup.get(), &DailyBackup::failed, desk.window.get(), &MainWindow::tell);
  desk.backup->start();
}

void Program::tell_failure(MainWindow& window, const QString& sentence) {
  if (!window.has_base()) return window.start_page().show_failure(sentence);
  auto* box = new QMessageBox(QMessageBox::Critical, kTitle, sentence, QMessageBox::Ok, &window);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->open();
}

void Program::remember(const QString& path) {
  settings_.remember(path);
  for (MainWindow* window : windows()) window->set_recent(settings_.recent());
}

void Program::forget(const QString& path) {
  settings_.forget(path);
  for (MainWindow* window : windows()) window->set_recent(settings_.recent());
}

// ---- Servers.

QString Program::open_server(const ServerAddress& address, MainWindow& asker) try {
  if (const Desk* desk = desk_on(address.url())) return desk->window->bring_forward(), QString();
  const StoreOptions options = naming(address.url_with_password());
  auto store = open_store(options, IfMissing::kFail);
  refuse_unusable(*store, address.name());
  put(desk_for(asker), std::move(store), address.url(), connection_to(options));
  settings_.set_server(address.url());
  return {};
} catch (const std::exception& error) {
  return to_qt(text::failure_sentence(error));
}

ServerAddress Program::proposed_server() const {
  const QString last = settings_.server();
  return last.isEmpty() ? ServerAddress() : ServerAddress::of(last);
}

void Program::ask_server(const ServerAddress& proposed, MainWindow& asker, const QString& failure) {
  settings_.set_place(asker.saveGeometry());
  auto* dialog = new ServerDialog(
      proposed, [this, &asker](const ServerAddress& asked) { return open_server(asked, asker); }, &asker);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  if (!failure.isEmpty()) dialog->show_failure(failure);
  dialog->open();
}

// ---- New bases.

void Program::make_base(MainWindow& asker) {
  auto* dialog =
      new NewBaseDialog(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation), &asker);
  connect(
      dialog, &NewBaseDialog::made, this,
      [this, asker = QPointer<MainWindow>(&asker)](const QString& path) {
        if (asker) open(path, *asker);
      },
      Qt::QueuedConnection);
  dialog->open();
}

void Program::open_example(MainWindow& asker) {
  if (example_) return;
  const QString path = example_path();
  example_ = std::make_unique<Task>([file = from_qt(path)](Task::Report& report) {
    store::SqliteDatabase::build(file, [&](store::SqliteDatabase& database) {
      put_example(database, Example::kWhole, [&](double part) { report.part(part); });
      return true;
    });
  });
  Task* task = example_.get();
  const QPointer<MainWindow> window(&asker);
  const auto end = [this, window, task] {
    if (window) window->work_bar().done(*task);
    example_.reset();
  };
  const auto show = [window, task](double part) {
    if (window)
      window->work_bar().show_part(*task, "Création de l'exemple", part, [task] { task->cancel(); });
  };
  connect(task, &Task::progressed, this, show);
  connect(task, &Task::done, this, [this, end, window, path] {
    end();
    if (!window) return;
    open(path, *window);
    if (Desk* desk = desk_on(path)) desk->window->tell("Une copie de l'exemple, dans « " + path + " »");
  });
  connect(task, &Task::cancelled, this, end);
  connect(task, &Task::failed, this, [this, end, window](const QString& sentence) {
    end();
    if (window) tell_failure(*window, sentence);
  });
  show(-1);
  task->start();
}

// ---- Backups.

void Program::show_backups(MainWindow& window) try {
  const Desk* desk = desk_of(window);
  if (!desk || !desk->store || window.component().open_message()) return;
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
  Desk* desk = desk_of(window);
  if (!desk || !desk->store || window.component().modified() || window.component().open_message()) return;
  const QString path = desk->path;
  clear(*desk);
  QString failure, told;
  try {
    const std::string aside = store::SqliteDatabase::restore(from_qt(backup), from_qt(path));
    told = "Sauvegarde du " + moment + " reprise. L'ancienne base est gardée sous « " +
           QFileInfo(to_qt(aside)).fileName() + " ».";
  } catch (const std::exception& error) {
    failure = to_qt(text::failure_sentence(error));
  }
  open(path, window);
  if (!window.has_base()) return;
  window.tell(told);
  if (!failure.isEmpty()) tell_failure(window, failure);
}

// ---- Closing.

void Program::close_base(MainWindow& window) {
  Desk* desk = desk_of(window);
  if (!desk || !desk->store || !window.may_leave(MainWindow::Leaving::kBase)) return;
  // The question ran an event loop.
  desk = desk_of(window);
  if (!desk || !desk->store) return;
  if (desks_.size() > 1) return window.leave();
  clear(*desk);
  settings_.set_last({});
}

void Program::reopen(MainWindow& window) {
  Desk* desk = desk_of(window);
  if (!desk || !desk->store || window.component().state() != control::State::kNone ||
      window.component().open_message())
    return;
  const QString path = desk->path;
  auto store = std::move(desk->store);
  desk->seat.reset();
  window.release();
  desk->backup.reset();
  try {
    put(*desk, std::move(store), path, Connection(desk->connection));
  } catch (const std::exception& error) {
    tell_failure(window, to_qt(text::failure_sentence(error)));
  }
}

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
  settings_.set_days_ahead(layout.days_ahead);
  if (const Desk* desk = desk_of(window); desk && desk->store && !desk->path.isEmpty())
    settings_.set_last(desk->path);
  QMetaObject::invokeMethod(
      this, [this, gone = QPointer<MainWindow>(&window)] { drop(gone); }, Qt::QueuedConnection);
}

void Program::drop(const MainWindow* window) {
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
