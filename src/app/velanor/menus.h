// The menus of a window: of the program alone, and while a base is open of the base and its cards.
#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>

class QAction;
class QMenu;

namespace velanor::app {

class Appearance;
class MainWindow;
class TableDialogs;
class Workplace;

// Made anew whenever a base is opened or closed. The letters of the menus are none that the component's own
// buttons, labels or pages answer; where all of its letters are taken a menu has none, and is opened by its
// first letter once Alt has led into the bar.
class Menus : public QObject {
 public:
  // `place`: null while no base is open; has started, and outlives this.
  Menus(MainWindow& window, Workplace* place, Appearance* appearance);
  ~Menus() override;

  void set_recent(const QStringList& bases);
  // Whether the base is a file whose backups can take its place.
  void set_backups(bool on);

 private:
  QMenu* add_menu(const QString& title);
  void make_file();
  void make_edit();
  void make_card();
  void make_year();
  void make_tables();
  void make_view(Appearance* appearance);
  void make_help();
  void copy_table();

  MainWindow& window_;
  Workplace* place_;
  TableDialogs* tables_ = nullptr;
  QMenu* recent_ = nullptr;
  QAction* backups_ = nullptr;
};

}  // namespace velanor::app
