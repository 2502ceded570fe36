// The program at work: the databases that are open, each in its window, and those opened lately.
#pragma once

#include <QObject>
#include <memory>
#include <vector>

#include "app/velanor/connection.h"
#include "app/velanor/server_address.h"
#include "app/velanor/settings.h"
#include "app/velanor/task.h"
#include "app/velanor/turns.h"
#include "app/velanorctl/open_store.h"

namespace velanor::app {

class Appearance;
class MainWindow;

// Ends the application when its last window has been closed.
class Program : public QObject {
 public:
  // Colours and sizes that its windows offer; none where there are none. Outlives it.
  explicit Program(Appearance* appearance = nullptr);
  ~Program() override;

  // Opens what the options name; when they name nothing the database that was in use at the end of the last
  // run. The first window shows its start page where there is none, and says there what fails.
  void start(const StoreOptions& options);
  // Opens a database in `asker` where that has none, else beside it; one that is open already comes to the
  // front. What cannot be opened is told on `asker`.
  void open(const QString& path, MainWindow& asker);
  // A new base, as its user wants it, is opened likewise.
  void make_base(MainWindow& asker);
  void open_example(MainWindow& asker);
  // Shows the backups of a window's database file.
  void show_backups(MainWindow& window);
  // Asks over `asker` for a server, and opens it likewise; `failure`: what was just tried in vain.
  void ask_server(const ServerAddress& proposed, MainWindow& asker, const QString& failure = {});
  // Closes a window's database, and the window with it where there is another.
  void close_base(MainWindow& window);
  // The database of a window is read from its beginning: its tables have changed.
  void reopen(MainWindow& window);
  // Closes one window after the other; each that has an open card asks first, and one that is to stay
  // keeps those that have not been asked.
  void quit();

  std::vector<MainWindow*> windows() const;

 private:
  struct Desk;
  Desk& new_desk();
  void follow(MainWindow& window);
  // The desk of `asker` where it is free, else a new one.
  Desk& desk_for(MainWindow& asker);
  // Puts a database on a desk and starts it. Throws store::DbError; the desk is then free again.
  void put(Desk& desk, std::unique_ptr<store::Database> store, const QString& path,
           const Connection& connection);
  void clear(Desk& desk);
  // The sentence of what failed; "" where nothing did.
  QString open_file(const StoreOptions& options, const QString& path, MainWindow& asker);
  QString open_server(const ServerAddress& address, MainWindow& asker);
  ServerAddress proposed_server() const;
  void tell_failure(MainWindow& window, const QString& sentence);
  // Its daily backup, and what is to be remarked on its file.
  void look_after(Desk& desk);
  // Puts the backup in the place of the window's database, and opens that again; or says why not.
  void take_backup(MainWindow& window, const QString& backup, const QString& moment);
  void remember(const QString& path);
  void forget(const QString& path);
  void closed(MainWindow& window);
  void drop(const MainWindow* window);
  Desk* desk_of(const MainWindow& window) const;
  Desk* desk_on(const QString& path) const;

  Settings settings_;
  Turns turns_;
  Appearance* appearance_;
  std::vector<std::unique_ptr<Desk>> desks_;
  std::unique_ptr<Task> example_;  // while it is being made
  bool quitting_ = false;
};

}  // namespace velanor::app
