// What the work on the cards of one entity and year costs in a large SQLite file (desk_base.h).
#include <benchmark/benchmark.h>

#include <memory>

#include "desk_base.h"
#include "office/checking.h"
#include "office/employee_filter.h"
#include "office/employees.h"
#include "velanor/controle_velanor.h"

namespace velanor::office {
namespace {

const Employees::Reach kReach{bench::DeskBase::kEntity, bench::DeskBase::kYear};

store::SqliteDatabase& database() {
  static bench::DeskBase base;
  return base.database();
}

void TableAfterTheYearIsChosen(benchmark::State& state) {
  store::SqliteDatabase& base = database();
  for (auto _ : state) {
    Employees employees(base);
    employees.read(kReach);
    benchmark::DoNotOptimize(employees.sorted({}));
  }
}
BENCHMARK(TableAfterTheYearIsChosen)->Unit(benchmark::kMillisecond);

void KeyInTheFilter(benchmark::State& state) {
  Employees employees(database());
  employees.read(kReach);
  const auto rows = employees.sorted({});
  for (auto _ : state)
    benchmark::DoNotOptimize(office::Filter("arti", employees.today()).filtered(employees, rows));
}
BENCHMARK(KeyInTheFilter)->Unit(benchmark::kMillisecond);

void ChecksOfAll(benchmark::State& state) {
  store::SqliteDatabase& base = database();
  int cards = 0;
  for (auto _ : state) {
    Checking checking(base, kReach.entity + kReach.year);
    while (checking.step()) cards = checking.cards();
    benchmark::DoNotOptimize(checking.findings());
  }
  state.counters["cards"] = cards;
}
BENCHMARK(ChecksOfAll)->Unit(benchmark::kMillisecond);

class Silent : public screen::Toolkit, public control::HelpViewer, public control::HostWindow {
 public:
  screen::Answer message(const screen::Message&) override { return screen::Answer::Yes; }
  void show(control::Client*, store::Database&, std::string_view, std::string_view,
            std::string_view) override {}
  void unload() override {}
};

void NextCard(benchmark::State& state) {
  Silent silent;
  ControleVelanor component({silent, silent, silent});
  component.TheDatabase(database());
  component.init();
  int card = 0;
  for (auto _ : state) {
    card = (card + 1) % (bench::all_cards() / 10);
    if (!component.open(kReach.entity, kReach.year, bench::DeskBase::code(card)).is_open())
      return state.SkipWithError("the card did not open");
  }
}
BENCHMARK(NextCard)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velanor::office

BENCHMARK_MAIN();
