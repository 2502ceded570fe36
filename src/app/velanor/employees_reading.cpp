#include "app/velanor/employees_reading.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QScopeGuard>
#include <climits>
#include <utility>

#include "app/velanor/busy.h"
#include "app/velanor/work_bar.h"
#include "qt/strings.h"
#include "text/failure.h"

namespace velanor::app {
namespace {

constexpr int kAtOnce = 8;                // milliseconds of looking at cards between two keys
constexpr int kFirst = 100, kSlice = 15;  // milliseconds of reading, at first and between two keys

}  // namespace

EmployeesReading::EmployeesReading(qt::ControleVelanorWidget& component, EmployeesTable& table,
                                   QObject* parent)
    : QObject(parent), component_(component), table_(table) {
  read_on_.setSingleShot(true);
  examine_.setSingleShot(true);
  connect(&read_on_, &QTimer::timeout, this, [this] { read_on(kSlice); });
  connect(&examine_, &QTimer::timeout, this, &EmployeesReading::examine);
}

EmployeesReading::~EmployeesReading() { table_.cards().show(nullptr); }

void EmployeesReading::start(store::Database& database) {
  employees_ = std::make_unique<office::Employees>(database);
  table_.cards().show(employees_.get());
}

std::optional<EmployeesReading::Reach> EmployeesReading::reach() const {
  return employees_ && read_once_ ? std::optional(employees_->reach()) : std::nullopt;
}

void EmployeesReading::fail(const std::exception& error) {
  emit told(qt::to_qt(text::failure_sentence(error)));
}

// ---- The rows.

void EmployeesReading::read(const Reach& wanted, Look look) try {
  if (reach() == wanted && look == Look::kIfElsewhere) return;
  if (!reading_) reading_ = table_.place_now();
  examine_.stop();
  // Where it fails half way nothing is shown of what was read.
  table_.cards().show(nullptr);
  const bool long_work = wanted.is_all();
  if (long_work) QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  const auto restore = qScopeGuard([long_work] {
    if (long_work) QGuiApplication::restoreOverrideCursor();
  });
  employees_->begin(wanted);
  read_once_ = true;
  emit counted();
  read_on(kFirst);
} catch (const std::exception& error) {
  end();
  fail(error);
}

// Needs the store no more, so it goes on whatever the component is at.
void EmployeesReading::read_on(int milliseconds) {
  QElapsedTimer since;
  since.start();
  constexpr int kRows = 64;
  bool more = employees_->read_on(kRows);
  while (more && since.elapsed() < milliseconds) more = employees_->read_on(kRows);
  if (!more) return end();
  const double part = employees_->part_read();
  emit read_part(part);
  if (work_bar_) work_bar_->show_part(*this, "Lecture des fiches", part, [this] { end(); });
  read_on_.start(0);
}

// Also where not all was read: the rows that there are can be worked with.
void EmployeesReading::end() {
  read_on_.stop();
  if (work_bar_) work_bar_->done(*this);
  table_.cards().show(employees_.get());
  if (auto place = std::exchange(reading_, std::nullopt)) table_.put_back(std::move(*place));
  examine_.start(0);
  emit counted();
  emit all_read();
}

void EmployeesReading::complete() {
  if (!reading_) return;
  while (employees_->read_on(INT_MAX)) {
  }
  end();
}

void EmployeesReading::renew_card(const QString& id) try {
  if (!reach()) return;
  complete();
  bool renewed = false;
  table_.keeping_place([&] {
    renewed = employees_->renew(qt::from_qt(id));
    table_.cards().renew();
  });
  emit counted();
  if (renewed) examine_.start(0);
} catch (const std::exception& error) {
  fail(error);
}

// ---- What takes the whole card.

void EmployeesReading::examine() try {
  if (!employees_ || reading_) return;
  if (waits(component_)) return examine_.start(kPatience);
  QElapsedTimer since;
  since.start();
  bool more = true;
  while (more && since.elapsed() < kAtOnce) more = employees_->examine(1);
  if (more) {
    table_.cards().cells_changed();
    if (work_bar_)
      work_bar_->show_part(*this, "Heures et fautes des fiches", employees_->part_examined(),
                           [this] { stop_examining(); });
    examine_.start(0);
  } else {
    if (work_bar_) work_bar_->done(*this);
    table_.keeping_place([this] { table_.cards().renew(); });
  }
  emit examined();
  if (const auto then = more ? nullptr : std::exchange(when_examined_, nullptr)) then();
} catch (const std::exception& error) {
  when_examined_ = nullptr;
  fail(error);
}

void EmployeesReading::stop_examining() {
  examine_.stop();
  when_examined_ = nullptr;
  work_bar_->done(*this);
}

void EmployeesReading::when_examined(std::function<void()> then) {
  when_examined_ = std::move(then);
  if (!reading_) examine_.start(0);
}

}  // namespace velanor::app
