// The program at work: the databases that are open, each in its window, and those opened lately.
#pragma once

#include <QObject>
#include <memory>
#include <vector>

#include "app/velanor/server_address.h"
#include "app/velanor/settings.h"
#include "app/velanor/turns.h"
#include "app/velanorctl/open_store.h"

namespace velanor::app {

class MainWindow;

// Ends the application when its last window has been closed.
class Program : public QObject {
 public:
  Program();
  ~Program() override;

  // Opens what the options name; when they name nothing the database that was in use last, or the
  // user's own, which is made on the first run. False when there is none: the user has been told.
  bool start(const StoreOptions& options);
  // Opens a database beside the others; one that is open already comes to the front. What cannot be
  // opened is told over `asker`.
  void open(const QString& path, MainWindow& asker);
  // Shows the backups of a window's database file.
  void show_backups(MainWindow& window);
  // Asks over `asker` for a server, and opens it beside the others; `failure`: what was just tried in vain.
  void ask_server(const ServerAddress& proposed, MainWindow& asker, const QString& failure = {});
  // Closes one window after the other; each that has an open card asks first, and one that is to stay
  // keeps those that have not been asked.
  void quit();

  std::vector<MainWindow*> windows() const;

 private:
  struct Desk;
  Desk& open_desk(const StoreOptions& options, const QString& path, IfMissing if_missing);
  bool open_own();
  bool open_last(const QString& path);
  // The sentence of what failed; "" where nothing did.
  QString open_server(const ServerAddress& address);
  // The same without a window to ask over: until it stands or the user gives up.
  bool start_on_server(const ServerAddress& address);
  bool open_own_instead(const QString& why = {});
  ServerAddress proposed_server() const;
  void show(Desk& desk);
  // Starts the component; an empty database is offered the demonstration data.
  void begin(Desk& desk);
  // Its daily backup, and what is to be remarked on its file.
  void look_after(Desk& desk);
  void offer_demonstration(Desk& desk);
  // Tells it in the window itself, which then goes.
  void give_up(Desk& desk, const std::string& sentence);
  // Closes the window, puts the backup in the place of its database, and opens that again; or says why not.
  void take_backup(MainWindow& window, const QString& backup, const QString& moment);
  void remember(const QString& path);
  void closed(MainWindow& window);
  void forget(const MainWindow* window);
  Desk* desk_of(const MainWindow& window) const;
  Desk* desk_on(const QString& path) const;

  Settings settings_;
  Turns turns_;
  std::vector<std::unique_ptr<Desk>> desks_;
  bool quitting_ = false;
};

}  // namespace velanor::app
