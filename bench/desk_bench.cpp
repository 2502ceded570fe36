// What the work on the cards of one entity and year costs in a large SQLite file. VELANOR_BENCH_CARDS: all
// cards of the file, a tenth of them of the entity and year that is worked on; 100,000 without it.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <memory>

#include "demo/demo.h"
#include "office/checking.h"
#include "office/employee_filter.h"
#include "office/employees.h"
#include "velanor/controle_velanor.h"
#include "velanor/sqlite_database.h"

namespace velanor::office {
namespace {

const Employees::Reach kReach{"001", "2030"};

int all_cards() {
  const char* const wanted = std::getenv("VELANOR_BENCH_CARDS");
  return wanted ? std::atoi(wanted) : 100'000;
}

std::string padded(int number) {
  const std::string digits = std::to_string(number);
  return std::string(5 - digits.size(), '0') + digits;
}

class Sink : public demo::Sink {
 public:
  explicit Sink(store::Database& database) : database_(database) {}
  void put(std::string_view file, std::string_view id, const store::DbRecord& record) override {
    database_.OpenFile(file)->write(id, record);
  }

 private:
  store::Database& database_;
};

// Removed with the program.
struct Base {
  std::filesystem::path path = std::filesystem::temp_directory_path() / "velanor_desk_bench.db";
  std::unique_ptr<store::SqliteDatabase> database;

  Base() {
    std::filesystem::remove(path);
    database = std::make_unique<store::SqliteDatabase>(
        path.string(), store::SqliteDatabase::Options{.missing = store::SqliteDatabase::Missing::kCreate});
    database->in_one_change([this] { fill(); });
  }
  ~Base() {
    database.reset();
    std::filesystem::remove(path);
  }

  // Cards of the demonstration under new codes, in ten years of the entity.
  void fill() const {
    Sink sink(*database);
    demo::fill(sink);
    const auto cards = database->OpenFile("VELANORO");
    const auto ids =
        database->Select(store::DbQuery("SSELECT VELANORO AVEC 0 = \"[0012026\"", "VELANORO", "0").encoded());
    for (int i = 0; i < all_cards(); ++i) {
      store::DbRecord card = cards->Read(ids(1 + i % ids.DCount()));
      card.set(1, std::string(card(1)) + " " + padded(i * 7919 % 100'000));
      cards->write(padded(i / 10) + "001" + std::to_string(2030 - i % 10), card);
    }
  }
};
store::SqliteDatabase& database() {
  static const Base base;
  return *base.database;
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
    card = (card + 1) % (all_cards() / 10);
    if (!component.open(kReach.entity, kReach.year, padded(card)).is_open())
      return state.SkipWithError("the card did not open");
  }
}
BENCHMARK(NextCard)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velanor::office

BENCHMARK_MAIN();
