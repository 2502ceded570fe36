// The window of the program around the component.
#pragma once

#include <QMainWindow>
#include <QPointer>
#include <functional>

#include "velanor/controle_velanor_widget.h"
#include "velanor/host.h"

class QAction;
class QLabel;
class QMenu;
class QStackedWidget;

namespace velanor::app {

class CardHistory;
class EmployeesDock;
class ChecksDock;
class HelpWindow;

// Shows one database, which must outlive it. Before `start` it shows an empty page, on which the program
// can ask something.
class MainWindow : public QMainWindow, private control::UserRights {
  Q_OBJECT

 public:
  explicit MainWindow(store::Database& database, QWidget* parent = nullptr);
  ~MainWindow() override;

  qt::ControleVelanorWidget& component() { return *component_; }
  // Starts the component. Throws store::DbError; the window then shows its empty page again.
  void start();
  // Asks on the empty page, without waiting for the answer; a question that the window takes with it has
  // none.
  void ask_before_start(const screen::Message& message, std::function<void(screen::Answer)> then);

  // The database file that the title names and beside which others are looked for; "" for the
  // demonstration data in memory.
  void set_source(const QString& path);
  // The title and the status bar say that nothing can be written.
  void set_read_only();
  void set_recent(const QStringList& files);
  // Where the docks stand and what they show, as the toolkit puts it down; what was kept of it applies from
  // `start` on.
  struct Layout {
    QByteArray docks, employees;
  };
  Layout layout_now() const;
  void set_layout(const Layout& layout) { layout_ = layout; }
  // In the status bar, until the next thing is told.
  void tell(const QString& sentence) const;

  void bring_forward();
  enum class Leaving { kNot, kClosing, kQuitting };
  // Whether the window may go: the user is asked when a card is open. A message that waits gets the answer
  // of its close box first; then this is false, and the closing, or the quitting of the program, is
  // asked for anew when the rules have answered.
  bool may_leave(Leaving leaving);
  // Closes without a question: the user has been asked.
  void leave();

 signals:
  void backups_asked();
  // A file, or a server by its URL.
  void open_asked(const QString& source);
  void server_asked();
  void quit_asked();
  void closed();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  std::string rights(std::string_view) override { return {}; }
  void make_menus();
  void make_status_bar();
  void ask_file();
  void show_help(const QString& page, const QString& title);
  void show_about();
  bool is_started() const;
  void start_docks();
  void follow_card();
  void update_title();
  bool would_ask() const;
  bool asks_and_may_leave();
  void end_message();
  void go_on_leaving();

  qt::ControleVelanorWidget* component_;
  control::Client client_;
  CardHistory* history_;
  EmployeesDock* employees_;
  Layout layout_;
  ChecksDock* checks_;
  QStackedWidget* pages_;
  QMenu* recent_ = nullptr;
  QAction* backups_ = nullptr;
  QLabel* told_;
  QLabel* mode_;
  QString source_;
  QString folder_;
  QPointer<HelpWindow> help_;
  Leaving leaving_ = Leaving::kNot;  // as soon as the message that waits is answered
  bool asking_to_leave_ = false;
  bool leaves_ = false;
};

}  // namespace velanor::app
