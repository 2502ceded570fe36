// The employees of the entity and year on the screen, or all of them, beside the component: to find a card,
// to open it, and to go on to the next.
#pragma once

#include <QDockWidget>
#include <QPointer>
#include <QTimer>
#include <functional>

#include "app/velanor/employees_export.h"
#include "app/velanor/employees_reading.h"
#include "app/velanor/employees_steps.h"
#include "app/velanor/employees_table.h"
#include "app/velanor/shown_year.h"
#include "velanor/controle_velanor_widget.h"

class QCheckBox;
class QLabel;

namespace velanor::app {

class EmployeesFilter;

// Reads nothing before `start`, and nothing while it is hidden. It opens nothing while the component waits
// for an answer. On a window too narrow for both it comes when it is called and goes when a card is opened.
class EmployeesDock : public QDockWidget {
  Q_OBJECT

 public:
  // Both outlive it.
  EmployeesDock(qt::ControleVelanorWidget& component, store::Database& database, QWidget* parent);
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
  QByteArray columns() const { return table_->columns(); }
  void set_columns(const QByteArray& columns) { table_->set_columns(columns); }
  // Shows there what takes long.
  void set_work_bar(WorkBar& bar);
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
  bool has_reach() const { return reading_.is_started() && reach() != kNobody; }
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
  void showEvent(QShowEvent* event) override;

 private:
  using Reach = EmployeesReading::Reach;
  using Look = EmployeesReading::Look;
  using Step = EmployeesSteps::Step;
  // Of which there are no cards: nothing is chosen on the screen.
  static const Reach kNobody;

  void make_content();
  void join();
  void follow_component();
  void follow_others();
  bool is_free();

  Reach reach() const;
  void look(Look look);
  void update_count();

  void search();
  void go_back();
  void typed();
  void step(Step step);
  void ask_export();

  qt::ControleVelanorWidget& component_;
  store::Database& database_;
  EmployeesTable* table_;
  QLabel* count_;
  QCheckBox* all_;
  EmployeesReading reading_;
  EmployeesFilter* filter_;
  EmployeesSteps steps_;
  EmployeesExport export_;
  QTimer look_;
  QPointer<QWidget> before_;  // had the focus before the filter
};

}  // namespace velanor::app
