// What the table of the employees costs: 50,000 cards of one entity and year in memory.
#include <benchmark/benchmark.h>

#include <memory>
#include <random>

#include "demo/demo.h"
#include "office/employee_filter.h"
#include "office/employees.h"
#include "velanor/memory_database.h"

namespace velanor::office {
namespace {

constexpr int kCards = 50'000;
const Employees::Reach kReach{"001", "2030"};

class Sink : public demo::Sink {
 public:
  explicit Sink(store::MemoryDatabase& database) : database_(database) {}
  void put(std::string_view file, std::string_view id, const store::DbRecord& record) override {
    database_.put(file, id, record);
  }

 private:
  store::MemoryDatabase& database_;
};

std::string padded(int number) {
  const std::string digits = std::to_string(number);
  return std::string(5 - digits.size(), '0') + digits;
}

// Cards of the demonstration under new codes and names, almost all of them different.
std::unique_ptr<store::MemoryDatabase> make_cards() {
  static const char* const kNames[] = {"MARTIN", "LEFÈVRE", "DUPONT",  "ÉTIENNE", "GARCÍA",
                                       "NOËL",   "PETIT",   "ŒUVRARD", "BERNARD", "D'ARC"};
  auto database = std::make_unique<store::MemoryDatabase>();
  Sink sink(*database);
  demo::fill(sink);
  const auto cards = database->OpenFile("VELANORO");
  const auto ids =
      database->Select(store::DbQuery("SSELECT VELANORO AVEC 0 = \"[0012026\"", "VELANORO", "0").encoded());
  std::mt19937 random(1);
  const auto name = [&] { return std::string(kNames[random() % 10]); };
  for (int i = 0; i < kCards; ++i) {
    store::DbRecord card = cards->Read(ids(1 + i % ids.DCount()));
    card.set(1, name() + " " + name() + " " + name() + " " + padded(static_cast<int>(random() % 10'000)));
    database->put("VELANORO", padded(i) + "0012030", card);
  }
  return database;
}

struct Table {
  std::unique_ptr<store::MemoryDatabase> database = make_cards();
  Employees employees{*database};
  Table() {
    employees.read(kReach);
    while (employees.examine(kCards)) {
    }
  }
};
Table& table() {
  static Table made;
  return made;
}

void Read(benchmark::State& state) {
  Table& made = table();
  for (auto _ : state) {
    Employees employees(*made.database);
    employees.read(kReach);
    benchmark::DoNotOptimize(employees.sorted({}));
  }
}
BENCHMARK(Read)->Unit(benchmark::kMillisecond);

void ExamineOneCard(benchmark::State& state) {
  Employees employees(*table().database);
  employees.read(kReach);
  for (auto _ : state) benchmark::DoNotOptimize(employees.examine(1));
}
BENCHMARK(ExamineOneCard)->Iterations(kCards / 2)->Unit(benchmark::kMicrosecond);

// As a clerk types, and what a key costs at its worst.
void Filter(benchmark::State& state, const char* typed) {
  const Employees& employees = table().employees;
  const auto rows = employees.sorted({});
  std::size_t found = 0;
  for (auto _ : state) found = office::Filter(typed, employees.today()).filtered(employees, rows).size();
  state.counters["found"] = static_cast<double>(found);
}
BENCHMARK_CAPTURE(Filter, one_letter, "e")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Filter, part_of_a_name, "arti")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Filter, nobody, "zzzz")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Filter, a_date, "fin<01/09/2026")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Filter, four_words, "mar -cdd prod du")->Unit(benchmark::kMillisecond);

void Sort(benchmark::State& state, Column column) {
  const Employees& employees = table().employees;
  for (auto _ : state) benchmark::DoNotOptimize(employees.sorted({column, true}));
}
BENCHMARK_CAPTURE(Sort, by_name, Column::kName)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Sort, by_start, Column::kStart)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velanor::office

BENCHMARK_MAIN();
