// The employees of the entity and year on the screen, or all of them, beside the component: to find a card,
// to open it, and to go on to the next.
#pragma once

#include <QDockWidget>
#include <QElapsedTimer>
#include <QPointer>
#include <QSet>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>

#include "app/velanor/employees_model.h"
#include "app/velanor/shown_year.h"
#include "app/velanor/task.h"
#include "app/velanor/work_bar.h"
#include "office/card_sheet.h"
#include "velanor/controle_velanor_widget.h"

class QAction;
class QCheckBox;
class QLabel;
class QLineEdit;
class QMenu;
class QSocketNotifier;
class QTableView;

namespace velanor::app {

// Reads nothing before `start`, and nothing while it is hidden. It opens nothing while the component waits
// for an answer. On a window too narrow for both it comes when it is called and goes when a card is opened.
class EmployeesDock : public QDockWidget {
  Q_OBJECT

 public:
  // Both outlive it.
  EmployeesDock(qt::ControleVelanorWidget& component, store::Database& database, QWidget* parent);
  ~EmployeesDock() override;
  // What it offers to the menus: to look for somebody, to go on from card to card, how it is shown, and to
  // export it.
  void add_search_to(QMenu& menu);
  void add_steps_to(QMenu& menu);
  void add_view_to(QMenu& menu);
  void add_export_to(QMenu& menu);
  // The component has started. Throws store::DbError.
  void start();
  // Whether the window holds it beside the whole component.
  bool has_room() const;
  bool has_cards();

  // Which columns are shown, how wide, and what sorts them, as the toolkit puts it down.
  QByteArray columns() const;
  void set_columns(const QByteArray& columns);
  // Shows there what takes long.
  void set_work_bar(WorkBar& bar) { work_bar_ = &bar; }
  // The cards of an entity and year, as it has read them; -1 where it has not.
  int cards_of(const ShownYear& at) const;
  // What is shown: rows and columns in their order, with the card and the name of each row, and what they
  // are of; entity and year are "" for all of them.
  struct Shown {
    office::SheetTable table;
    std::vector<std::string> ids;
    std::vector<QString> names;
    std::string entity, year;
    QString filter, count;
  };
  Shown shown() const;
  // Whether there is an entity and year, or all of them, to show.
  bool has_reach() const { return employees_ && reach_is_chosen(); }
  // Reads what is to be shown and calls back when all of its cells are filled in, once; the last who asks.
  void when_examined(std::function<void()> then);

  // Writes what is shown as a table, a workbook or CSV by its name, beside the window; tells what came of it.
  void export_to(const QString& path);

 signals:
  // What happened, or what stands in the way, in a sentence.
  void told(const QString& sentence);
  // Cards were read.
  void counted();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  enum class Step { kNext, kPrevious };

  void make_content();
  void make_columns();
  void follow_component();
  void listen_to_others();
  bool key_in_filter(const QKeyEvent& key);
  bool key_in_table(QKeyEvent& key);
  bool is_busy() const;
  bool is_free();

  office::Employees::Reach reach() const;
  bool reach_is_chosen() const;
  // Reads what is on the screen, if it is not read already; `anew`: others may have written.
  enum class Look { kIfElsewhere, kAnew };
  void look(Look look);
  void read(Look look);
  void renew_card(const QString& id);
  void hear_others();
  void examine();
  void read_further(int milliseconds);
  void end_reading();
  void complete_reading();
  // Selection and scroll stay where they are, by the cards they stand on.
  struct Place {
    QSet<QString> chosen;
    QString current;
    int scrolled = 0;
  };
  Place place_now() const;
  void put_back(Place place);
  void keeping_place(const std::function<void()>& change);
  void update_count();
  void show_reach();

  void search();
  void go_back();
  void typed();
  void open_row(int row);
  void step(Step step);
  void choose(int row);
  std::vector<int> shown_columns() const;
  void copy() const;
  void ask_export();

  qt::ControleVelanorWidget& component_;
  store::Database& database_;
  std::unique_ptr<office::Employees> employees_;
  EmployeesModel* model_;
  QLineEdit* filter_;
  QTableView* table_;
  QLabel* count_;
  QCheckBox* all_;
  QMenu* columns_;
  QTimer look_, read_on_, examine_;
  std::optional<Place> reading_;  // while it goes on: where to go back to
  bool opens_when_read_ = false;  // Enter was pressed meanwhile
  std::unique_ptr<Task> export_;  // while it goes on
  WorkBar* work_bar_ = nullptr;
  std::function<void()> when_examined_;
  std::unique_ptr<store::News> news_;
  QSocketNotifier* others_ = nullptr;
  QPointer<QWidget> before_;  // had the focus before the filter
  QString last_id_;           // the card opened last
  int last_row_ = -1;         // where it stood
  bool read_once_ = false;
};

}  // namespace velanor::app
