// What the program remembers from one start to the next, in a file of its own name that its user
// alone can read: it says where the bases are.
#pragma once

#include <QByteArray>
#include <QSettings>
#include <QStringList>

namespace velanor::app {

class Settings {
 public:
  // Takes over what an earlier version kept under another name.
  Settings();

  // The databases opened lately, the latest first: paths, and URLs of servers without a password.
  QStringList recent() const { return settings_.value("recent").toStringList(); }
  void remember(const QString& path);
  void forget(const QString& path);
  // The database that was in use at the end of the last run; "" when there was none.
  QString last() const { return settings_.value("last").toString(); }
  void set_last(const QString& path) { settings_.setValue("last", path); }
  // The server that was asked for last, as a URL without a password.
  QString server() const { return settings_.value("server").toString(); }
  void set_server(const QString& url) { settings_.setValue("server", url); }
  // The colours and the size of the text, by names that `Appearance` knows; "" where none were chosen.
  QString colours() const { return settings_.value("colours").toString(); }
  void set_colours(const QString& name) { settings_.setValue("colours", name); }
  int text_size() const { return settings_.value("text_size").toInt(); }
  void set_text_size(int percent) { settings_.setValue("text_size", percent); }
  // Size and place of a window, as the toolkit puts them down.
  QByteArray place() const { return settings_.value("place").toByteArray(); }
  void set_place(const QByteArray& place) { settings_.setValue("place", place); }
  // The docks of a window, and the columns of the employees, likewise.
  QByteArray docks() const { return settings_.value("docks").toByteArray(); }
  void set_docks(const QByteArray& docks) { settings_.setValue("docks", docks); }
  QByteArray employees() const { return settings_.value("employees").toByteArray(); }
  void set_employees(const QByteArray& columns) { settings_.setValue("employees", columns); }
  // Within how many days a contract ends soon; 0 where nothing was chosen.
  int days_ahead() const { return settings_.value("days_ahead").toInt(); }
  void set_days_ahead(int days) { settings_.setValue("days_ahead", days); }

 private:
  QSettings settings_{"velanor", "velanor"};
};

}  // namespace velanor::app
