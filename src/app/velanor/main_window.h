// The window of the program around the component.
#pragma once

#include <QMainWindow>
#include <QPointer>

#include "control/host.h"
#include "qt/controle_velanor_widget.h"

class QMenu;

namespace velanor::app {

class HelpWindow;

// Shows one database, which must outlive it.
class MainWindow : public QMainWindow, private control::UserRights {
  Q_OBJECT

 public:
  explicit MainWindow(store::Database& database, QWidget* parent = nullptr);
  ~MainWindow() override;

  qt::ControleVelanorWidget& component() { return *component_; }
  // Starts the component. Throws store::DbError.
  void start();
  // The database file that the title names and beside which others are looked for; "" for the
  // demonstration data in memory.
  void set_source(const QString& path);
  void set_recent(const QStringList& files);

 signals:
  void open_asked(const QString& file);
  void closed();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  std::string rights(std::string_view) override { return {}; }
  void make_menus();
  void ask_file();
  void show_help(const QString& page, const QString& title);
  void show_about();

  qt::ControleVelanorWidget* component_;
  control::Client client_;
  store::Database& database_;
  QMenu* recent_ = nullptr;
  QString folder_;
  QPointer<HelpWindow> help_;
};

}  // namespace velanor::app
