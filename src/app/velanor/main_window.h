// The window of the program around the component.
#pragma once

#include <QMainWindow>
#include <QPointer>
#include <memory>

#include "app/velanor/connection.h"
#include "velanor/controle_velanor_widget.h"

class QLabel;
class QPushButton;
class QStackedWidget;

namespace velanor::app {

class Appearance;
class HelpWindow;
class Menus;
class StartPage;
class WorkBar;
class Workplace;

// Shows a database, or the start page while it has none.
class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  explicit MainWindow(QWidget* parent = nullptr);
  // On a database that it has taken.
  explicit MainWindow(store::Database& database, QWidget* parent = nullptr);
  ~MainWindow() override;

  // Takes a database, which must outlive the window, or its release. The start page stays until `start`.
  void take(store::Database& database, Connection connection = {});
  // Starts the component. Throws store::DbError; the window is then on its start page again, and the database
  // is of no use but to be released.
  void start();
  // Back to the start page, without a question: the user has been asked. The database is not used any more.
  void release();

  bool has_base() const { return workplace_ != nullptr; }
  // Of the database that was taken.
  qt::ControleVelanorWidget& component() const;
  StartPage& start_page() const { return *start_page_; }
  WorkBar& work_bar() const { return *work_; }

  // The database file that the title names and beside which others are looked for; "" for the
  // demonstration data in memory.
  void set_source(const QString& path);
  // The title and the status bar say that nothing can be written.
  void set_read_only();
  void set_recent(const QStringList& files);
  // Colours and sizes to be chosen in the menus; outlives the window.
  void set_appearance(Appearance& appearance);
  // Where the docks stand and what they show, as the toolkit puts it down; what was kept of it applies from
  // `start` on.
  struct Layout {
    QByteArray docks, employees;
    int days_ahead = 0;  // see ChecksDock; 0: not kept
  };
  Layout layout_now() const;
  void set_layout(const Layout& layout) { layout_ = layout; }
  // In the status bar, until the next thing is told.
  void tell(const QString& sentence);

  void ask_file();
  void show_guide();
  void show_about();
  void set_full_screen(bool on);

  void bring_forward();
  enum class Leaving { kNot, kBase, kClosing, kQuitting };
  // Whether the base, or the window with it, may go: the user is asked when a card is open. A message that
  // waits gets the answer of its close box first; then this is false, and the closing, or the quitting of the
  // program, is asked for anew when the rules have answered.
  bool may_leave(Leaving leaving);
  // Closes without a question: the user has been asked.
  void leave();

 signals:
  void backups_asked();
  // A file, or a server by its URL.
  void open_asked(const QString& source);
  void new_base_asked();
  void example_asked();
  void server_asked();
  void forget_asked(const QString& source);
  void base_close_asked();
  void reopen_asked();
  void quit_asked();
  void closed();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void make_start_page();
  void make_menus();
  void make_status_bar();
  void show_help(const QString& page, const QString& title);
  bool is_started() const;
  void start_docks();
  void follow_place();
  void follow_card();
  void update_title();
  void update_count();
  void wipe_what_no_longer_holds();
  bool would_ask() const;
  bool asks_and_may_leave();
  void end_message();
  void go_on_leaving();

  QStackedWidget* pages_;
  StartPage* start_page_;
  std::unique_ptr<Workplace> workplace_;
  std::unique_ptr<Menus> menus_;
  Appearance* appearance_ = nullptr;
  QStringList recent_;
  Layout layout_;
  QLabel *told_, *where_, *mode_;
  QPushButton* restore_;  // the card that was deleted last, as long as that is told
  WorkBar* work_;
  QString source_, folder_;
  QString refusal_;  // that was told last, until something is done
  bool has_backups_ = false;
  QPointer<HelpWindow> help_;
  Leaving leaving_ = Leaving::kNot;  // as soon as the message that waits is answered
  bool asking_to_leave_ = false;
  bool leaves_ = false;
};

}  // namespace velanor::app
