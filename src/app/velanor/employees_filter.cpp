#include "app/velanor/employees_filter.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <algorithm>
#include <utility>

#include "app/velanor/employees_reading.h"
#include "app/velanor/employees_table.h"

namespace velanor::app {
namespace {

bool is_enter(const QKeyEvent& key) { return key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter; }

bool is_character(const QKeyEvent& key) {
  const bool chord = key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
  return !chord && !key.text().isEmpty() && key.text().front().isPrint();
}

}  // namespace

EmployeesFilter::EmployeesFilter(EmployeesTable& table, const EmployeesReading& reading)
    : table_(table), reading_(reading) {
  setObjectName("employees_filter");
  setAccessibleName("Chercher un employé");
  setPlaceholderText("Chercher : nom, secteur:nord, fin<01/09, -cdd");
  setToolTip(
      "Une partie de n'importe quelle colonne ; plusieurs mots se cumulent.\nsecteur:nord dans une colonne, "
      "fin<01/09 pour comparer, -cdd pour ceux qui ne l'ont pas");
  setClearButtonEnabled(true);
  installEventFilter(this);
  table_.installEventFilter(this);
  connect(&reading_, &EmployeesReading::all_read, this, [this] {
    if (std::exchange(opens_when_read_, false)) open_chosen();
  });
}

bool EmployeesFilter::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::ShortcutOverride && event->type() != QEvent::KeyPress)
    return QLineEdit::eventFilter(watched, event);
  auto& key = static_cast<QKeyEvent&>(*event);
  if (event->type() == QEvent::ShortcutOverride) {
    if (key.key() != Qt::Key_Escape && !is_enter(key)) return false;
    return key.accept(), true;
  }
  return watched == this ? key_here(key) : key_in_table(key);
}

bool EmployeesFilter::key_here(const QKeyEvent& key) {
  constexpr int kPage = 10;
  if (is_enter(key)) {
    // While the table is being read it is meant for what will stand there.
    if (reading_.is_reading()) return opens_when_read_ = true;
    return open_chosen(), true;
  }
  opens_when_read_ = false;
  if (key.key() == Qt::Key_Escape) return escape(), true;
  if (key.modifiers() & Qt::AltModifier || table_.cards().rowCount() == 0) return false;
  if (key.key() == Qt::Key_Down) return move(1);
  if (key.key() == Qt::Key_Up) return move(-1);
  if (key.key() == Qt::Key_PageDown) return move(kPage);
  if (key.key() == Qt::Key_PageUp) return move(-kPage);
  return false;
}

// What is typed there is looked for.
bool EmployeesFilter::key_in_table(QKeyEvent& key) {
  if (is_enter(key)) {
    emit open_asked(table_.currentIndex().row());
    return true;
  }
  if (key.key() == Qt::Key_Escape) return escape(), true;
  if (key.matches(QKeySequence::Copy)) return table_.copy(), true;
  if (!is_character(key)) return false;
  setFocus();
  QCoreApplication::sendEvent(this, &key);
  return true;
}

bool EmployeesFilter::move(int by) {
  table_.choose(std::clamp(table_.currentIndex().row() + by, 0, table_.cards().rowCount() - 1));
  return true;
}

void EmployeesFilter::escape() {
  if (text().isEmpty()) {
    emit left();
  } else {
    clear();
  }
}

void EmployeesFilter::open_chosen() { emit open_asked(std::max(table_.currentIndex().row(), 0)); }

}  // namespace velanor::app
