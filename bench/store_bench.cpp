// What the record codec and the selections of the component cost, on 500,000 cards of about 1 KB:
// 100 entities of two years, 2,500 employees each.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "velanor/memory_database.h"

namespace velanor::store {
namespace {

constexpr int kEntities = 100, kEmployees = 2500;
constexpr int kFirstYear = 2025, kYears = 2;

enum class Order { kById, kShuffled };

std::string padded(int number, std::size_t width) {
  const std::string digits = std::to_string(number);
  return std::string(width - digits.size(), '0') + digits;
}

// A card like those of the component: single fields, and five amendments with three items each.
DbRecord card(std::mt19937& random) {
  static const char* const kNames[] = {"MARTIN", "Lefèvre", "DUPONT",  "Étienne", "GARCÍA",
                                       "NOËL",   "Petit",   "ŒUVRARD", "Bernard", "d'Arc"};
  DbRecord record;
  record.set(1, std::string(kNames[random() % 10]) + " " + kNames[random() % 10] + " " +
                    padded(random() % 10'000, 4));
  for (int field = 2; field <= 16; ++field) record.set(field, padded(random() % 1'000'000, 6 + random() % 6));
  for (int column = 17; column <= 29; ++column) {
    for (int line = 1; line <= 5; ++line) record.set(column, line, padded(random() % 100'000, 5));
  }
  for (int column = 30; column <= 33; ++column) {
    for (int line = 1; line <= 3; ++line) {
      for (int item = 1; item <= 3; ++item) record.set(column, line, item, padded(random() % 1'000'000, 6));
    }
  }
  record.set(46, std::string(150 + random() % 50, 'x'));
  return record;
}

struct Cards {
  explicit Cards(Order order) {
    std::vector<std::string> ids;
    for (int employee = 1; employee <= kEmployees; ++employee) {
      for (int entity = 1; entity <= kEntities; ++entity) {
        for (int year = kFirstYear; year < kFirstYear + kYears; ++year) {
          ids.push_back(padded(employee * 7, 5) + padded(entity, 3) + padded(year, 4));
        }
      }
    }
    std::mt19937 random(1);
    if (order == Order::kShuffled) std::shuffle(ids.begin(), ids.end(), random);
    const std::size_t before = used();
    for (const std::string& id : ids) {
      const DbRecord record = card(random);
      raw_bytes += id.size() + record.encoded().size();
      database.put("VELANORO", id, record);
    }
    allocated = used() - before;
  }
  static std::size_t used() {
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
  }

  MemoryDatabase database;
  std::size_t raw_bytes = 0;
  std::size_t allocated = 0;
};

// Made once for each order and kept for all that ask for it one after the other.
Cards& cards(Order order) {
  static std::unique_ptr<Cards> kept;
  static Order kept_order;
  if (!kept || kept_order != order) {
    kept.reset();
    kept = std::make_unique<Cards>(order);
    kept_order = order;
  }
  return *kept;
}

DbRecord one_card() {
  std::mt19937 random(1);
  return card(random);
}

void Decode(benchmark::State& state) {
  const std::string bytes = one_card().encoded();
  for (auto _ : state) benchmark::DoNotOptimize(DbRecord::from_encoded(bytes));
  state.counters["bytes"] = static_cast<double>(bytes.size());
}
BENCHMARK(Decode);

void DecodeTrusted(benchmark::State& state) {
  const std::string bytes = one_card().encoded();
  for (auto _ : state) benchmark::DoNotOptimize(DbRecord::from_trusted(bytes));
}
BENCHMARK(DecodeTrusted);

// A record filled element by element, as a card is from its screen.
void Encode(benchmark::State& state) {
  const DbRecord source = one_card();
  for (auto _ : state) {
    DbRecord filled;
    for (int a = 1; a <= source.DCount(); ++a) {
      for (int v = 1; v <= source.DCount(a); ++v) {
        for (int s = 1; s <= source.Count(a, v); ++s) filled.set(a, v, s, source(a, v, s));
      }
    }
    benchmark::DoNotOptimize(filled.encoded());
  }
}
BENCHMARK(Encode);

void ElementRead(benchmark::State& state) {
  const DbRecord record = one_card();
  for (auto _ : state) benchmark::DoNotOptimize(record(31, 2, 3));
}
BENCHMARK(ElementRead);

void InsertInTheMiddle(benchmark::State& state) {
  DbRecord record = one_card();
  for (auto _ : state) {
    record.Insert(20, 3, "12345");
    record.Delete(20, 3);
  }
  state.SetLabel("one insert and one delete");
}
BENCHMARK(InsertInTheMiddle);

const std::string kList =
    DbQuery("SSELECT VELANORO AVEC 0 = \"[0422026\" PAR 1", "VELANORO", "0 1").encoded();
const std::string kYearTable =
    DbQuery("SSELECT VELANORO PAR CodeAsso PAR-DECR Annee", "VELANORO", "0").encoded();

// A save of one card of the list, which makes the kept result old.
void save(MemoryDatabase& database) {
  const std::string id = padded(7, 5) + "0422026";
  database.put("VELANORO", id, *database.find("VELANORO", id));
}

// The very first time: nothing was asked of the cards before.
void EmployeeListCold(benchmark::State& state) {
  MemoryDatabase& database = cards(static_cast<Order>(state.range(0))).database;
  for (auto _ : state) benchmark::DoNotOptimize(database.Select(kList));
}
BENCHMARK(EmployeeListCold)->Arg(0)->Unit(benchmark::kMillisecond)->Iterations(1);

void EmployeeListAfterASave(benchmark::State& state) {
  MemoryDatabase& database = cards(static_cast<Order>(state.range(0))).database;
  for (auto _ : state) {
    state.PauseTiming();
    save(database);
    state.ResumeTiming();
    benchmark::DoNotOptimize(database.Select(kList));
  }
}
BENCHMARK(EmployeeListAfterASave)->Arg(0)->Unit(benchmark::kMillisecond);

void EmployeeListAgain(benchmark::State& state) {
  MemoryDatabase& database = cards(static_cast<Order>(state.range(0))).database;
  if (database.Select(kList).DCount() != kEmployees) state.SkipWithError("wrong list");
  for (auto _ : state) benchmark::DoNotOptimize(database.Select(kList));
}
BENCHMARK(EmployeeListAgain)->Arg(0)->Unit(benchmark::kMicrosecond);

void YearTable(benchmark::State& state) {
  Cards& all = cards(static_cast<Order>(state.range(0)));
  all.database.name_id_part("VELANORO", "CodeAsso", {.first = 6, .count = 3});
  all.database.name_id_part("VELANORO", "Annee", {.first = 9});
  for (auto _ : state) {
    state.PauseTiming();
    save(all.database);
    state.ResumeTiming();
    benchmark::DoNotOptimize(all.database.Select(kYearTable));
  }
  state.counters["memory_per_raw_byte"] =
      static_cast<double>(all.allocated) / static_cast<double>(all.raw_bytes);
  state.counters["raw_bytes_per_card"] =
      static_cast<double>(all.raw_bytes) / (kEntities * kEmployees * kYears);
}
BENCHMARK(YearTable)->Arg(0)->Unit(benchmark::kMillisecond)->Iterations(10);

BENCHMARK(EmployeeListCold)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(EmployeeListAfterASave)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(YearTable)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(10);

}  // namespace
}  // namespace velanor::store
