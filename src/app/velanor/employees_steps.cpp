#include "app/velanor/employees_steps.h"

#include <QApplication>
#include <QPointer>
#include <algorithm>

#include "app/velanor/busy.h"
#include "app/velanor/employees_table.h"
#include "qt/strings.h"
#include "text/failure.h"

namespace velanor::app {
namespace {

using qt::to_qt;

constexpr int kEmployee = 5, kEntity = 3;  // characters of the id of a card, before those of the year

}  // namespace

EmployeesSteps::EmployeesSteps(qt::ControleVelanorWidget& component, EmployeesTable& table, QObject* parent)
    : QObject(parent), component_(component), table_(table) {
  connect(&component_, &qt::ControleVelanorWidget::card_opened, this, &EmployeesSteps::note);
}

void EmployeesSteps::note(const QString& id) {
  if (id.isEmpty()) return;
  last_id_ = id;
  const int row = last_row();
  if (row >= 0) last_row_ = row;
  table_.choose(row);
}

int EmployeesSteps::last_row() const { return table_.cards().row_of(last_id_); }

void EmployeesSteps::choose_last() { table_.choose(last_row()); }

// Whoever hears of it may close the window.
void EmployeesSteps::open(int row) try {
  const QString id = table_.cards().id(row);
  if (id.isEmpty()) return;
  if (is_busy(component_)) return emit told(kFinishFirst);
  if (would_lose_line(component_)) return emit told(kEndLineFirst);
  const QPointer<EmployeesSteps> self(this);
  const auto opening =
      component_.open(id.mid(kEmployee, kEntity), id.mid(kEmployee + kEntity), id.left(kEmployee));
  if (!self) return;
  if (!opening.is_open()) return emit told(to_qt(opening.why));
  if (!component_.isAncestorOf(QApplication::focusWidget())) component_.setFocus();
  emit opened();
} catch (const std::exception& error) {
  emit told(to_qt(text::failure_sentence(error)));
}

void EmployeesSteps::go(Step step) {
  const int rows = table_.cards().rowCount();
  const bool next = step == Step::kNext;
  if (rows == 0) return emit told("Le tableau des employés ne montre aucune fiche.");
  const int here = last_row();
  const int row = here >= 0 ? here + (next ? 1 : -1) : next ? std::max(last_row_, 0) : last_row_ - 1;
  if (row < 0) return emit told("C'est la première fiche du tableau.");
  if (row >= rows) return emit told("C'est la dernière fiche du tableau.");
  open(row);
}

}  // namespace velanor::app
