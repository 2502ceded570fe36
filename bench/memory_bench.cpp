// The in-memory store against SQLite in memory and a hash table of strings, on the cards of bench/cards.h.
#include <malloc.h>
#include <sqlite3.h>

#include <ctime>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>
#include <unordered_map>

#include "cards.h"
#include "race.h"
#include "store/memory_backend.h"
#include "store/select/parser.h"
#include "velanor/backend.h"

namespace velanor::bench {
namespace {

using store::Content;
using store::DbRecord;
using store::DbResult;
using store::Expected;

std::size_t used_memory() {
  const auto info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

double part(std::size_t used, std::size_t raw) {
  return static_cast<double>(used) / static_cast<double>(raw);
}

// A database of its own, that remembers nothing yet, over a backend that lives on.
class Borrowed : public store::Backend {
 public:
  explicit Borrowed(store::MemoryBackend& backend) : backend_(backend) {}
  void open(std::string_view file) override { backend_.open(file); }
  std::optional<DbRecord> find(std::string_view file, std::string_view id) override {
    return backend_.find(file, id);
  }
  bool put(std::string_view file, std::string_view id, const DbRecord& record,
           const Expected& expected) override {
    return backend_.put(file, id, record, expected);
  }
  bool erase(std::string_view file, std::string_view id, const Expected& expected) override {
    return backend_.erase(file, id, expected);
  }
  void scan(std::string_view file, const store::Narrowing& narrowing, Content content,
            const Visit& visit) override {
    backend_.scan(file, narrowing, content, visit);
  }
  std::optional<std::uint64_t> changes_since(std::string_view file, std::uint64_t seen,
                                             const VisitChange& visit) override {
    return backend_.changes_since(file, seen, visit);
  }
  std::uint64_t revision(std::string_view file) override { return backend_.revision(file); }
  void in_one_change(const std::function<void()>& writes) override { backend_.in_one_change(writes); }
  void in_one_view(const std::function<void()>& reads) override { backend_.in_one_view(reads); }

 private:
  store::MemoryBackend& backend_;
};

// The cards as we keep them.
struct Ours {
  explicit Ours(Spread spread) {
    std::mt19937 random(1);
    const std::size_t before = used_memory();
    for (const std::string& id : card_ids(spread)) put(id, card(random));
    // The ids are gone by now.
    used = used_memory() - before;
    forget();
  }
  void put(const std::string& id, const DbRecord& record) {
    backend.put(kFile, id, record, Expected::anything());
  }
  DbRecord find(const std::string& id) { return backend.find(kFile, id).value(); }
  void save(const std::string& id) { put(id, with_another_figure(find(id))); }
  // Whatever was asked before.
  void forget() {
    database = std::make_unique<store::StoreDatabase>(std::make_unique<Borrowed>(backend));
    database->name_id_part(kFile, "CodeAsso", {.first = 6, .count = 3});
    database->name_id_part(kFile, "Annee", {.first = 9});
  }
  std::size_t raw_bytes() {
    std::size_t bytes = 0;
    backend.scan(kFile, {}, Content::kRecords,
                 [&](const store::Row& row) { bytes += row.id.size() + row.encoded.size(); });
    return bytes;
  }

  store::MemoryBackend backend;
  std::size_t used = 0;
  std::unique_ptr<store::StoreDatabase> database;
};

class Statement {
 public:
  Statement(sqlite3* base, const char* sql) : base_(base) {
    if (sqlite3_prepare_v3(base, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement_, nullptr) != SQLITE_OK)
      throw std::runtime_error(std::string(sql) + ": " + sqlite3_errmsg(base));
  }
  ~Statement() { sqlite3_finalize(statement_); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  void bind(int at, std::string_view text) {
    sqlite3_bind_text(statement_, at, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
  }
  bool step() {
    const int result = sqlite3_step(statement_);
    if (result != SQLITE_ROW && result != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(base_));
    return result == SQLITE_ROW;
  }
  std::string_view text(int column) const {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
  }
  void reset() { sqlite3_reset(statement_); }

 private:
  sqlite3* base_;
  sqlite3_stmt* statement_ = nullptr;
};

// The same cards in SQLite: a table with a covering index on what the lists ask for, an index on the parts
// of the ids, and the condition's field in a column of its own before the content.
class Sqlite {
 public:
  explicit Sqlite(Ours& ours) {
    if (sqlite3_open(":memory:", &base_) != SQLITE_OK) throw std::runtime_error("no SQLite");
    run("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; PRAGMA temp_store = MEMORY;"
        "PRAGMA case_sensitive_like = ON");
    run("CREATE TABLE card (id TEXT PRIMARY KEY, suffix TEXT, name TEXT, field5 TEXT, content TEXT)");
    run("BEGIN");
    Statement insert(base_, "INSERT INTO card VALUES (?1, ?2, ?3, ?4, ?5)");
    ours.backend.scan(kFile, {}, Content::kRecords, [&](const store::Row& row) {
      const DbRecord record = DbRecord::from_trusted(std::string(row.encoded));
      insert.bind(1, row.id);
      insert.bind(2, row.id.substr(5));
      insert.bind(3, record(1));
      insert.bind(4, record(5));
      insert.bind(5, row.encoded);
      insert.step();
      insert.reset();
    });
    run("COMMIT; CREATE INDEX by_name ON card (suffix, name, id)");
    run("CREATE INDEX by_year ON card (substr(id, 6)); ANALYZE");
    find = std::make_unique<Statement>(base_, "SELECT content FROM card WHERE id = ?1");
    update = std::make_unique<Statement>(base_, "UPDATE card SET name = ?2, content = ?3 WHERE id = ?1");
    list =
        std::make_unique<Statement>(base_, "SELECT id, name FROM card WHERE suffix = ?1 ORDER BY name, id");
    list_by_like = std::make_unique<Statement>(
        base_, "SELECT id, name FROM card NOT INDEXED WHERE id LIKE ?1 ORDER BY name, id");
    cards = std::make_unique<Statement>(base_,
                                        "SELECT id, content FROM card WHERE suffix = ?1 ORDER BY name, id");
    condition = std::make_unique<Statement>(base_, "SELECT id FROM card WHERE field5 = ?1");
    years = std::make_unique<Statement>(base_, kYears);
  }
  ~Sqlite() {
    for (auto* statement : {&find, &update, &list, &list_by_like, &cards, &condition, &years})
      statement->reset();
    sqlite3_close(base_);
  }
  Sqlite(const Sqlite&) = delete;
  Sqlite& operator=(const Sqlite&) = delete;

  void run(const char* sql) {
    if (sqlite3_exec(base_, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
      throw std::runtime_error(std::string(sql) + ": " + sqlite3_errmsg(base_));
  }
  void put(std::string_view id, const DbRecord& record) {
    update->bind(1, id);
    update->bind(2, record(1));
    update->bind(3, record.encoded());
    update->step();
    update->reset();
  }

 private:
  // From one entity and year to the next, by the index.
  static constexpr const char* kYears =
      "WITH RECURSIVE part(text) AS (SELECT min(substr(id, 6)) FROM card UNION ALL"
      " SELECT (SELECT min(substr(id, 6)) FROM card WHERE substr(id, 6) > part.text) FROM part"
      " WHERE part.text IS NOT NULL)"
      " SELECT substr(text, 1, 3), substr(text, 4) FROM part WHERE text IS NOT NULL ORDER BY 1, 2 DESC";

  sqlite3* base_ = nullptr;

 public:
  std::unique_ptr<Statement> find, update, list, list_by_like, cards, condition, years;
};

struct Base {
  explicit Base(Spread of) : spread(of), ours(of), sqlite(ours) {}

  Spread spread;
  Ours ours;
  Sqlite sqlite;
  std::vector<std::string> ids = card_ids(spread);
  std::mt19937 random{7};

  const std::string& any_id() { return ids[random() % ids.size()]; }
  std::vector<std::string> any_ids(int count) {
    std::vector<std::string> some;
    some.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) some.push_back(any_id());
    return some;
  }
};

// One of them at a time, for there is not memory enough for all.
Base& base(Spread spread) {
  static std::unique_ptr<Base> kept;
  if (!kept || kept->spread != spread) {
    kept.reset();
    malloc_trim(0);
    kept = std::make_unique<Base>(spread);
  }
  return *kept;
}

void expect(benchmark::State& state, bool same) {
  if (!same) state.SkipWithError("both sides found something else");
}

constexpr int kTimes = 10'000;

// What was read is looked at, at its far end, on all sides alike.
void FindAgainstSqlite(benchmark::State& state) {
  Base& all = base(Spread::kOneEntity);
  const auto ids = all.any_ids(kTimes);
  std::size_t peers = 0, our = 0;
  race(state, {.goal = 10, .times = kTimes},
       {.run =
            [&] {
              for (const std::string& id : ids) {
                all.sqlite.find->bind(1, id);
                if (all.sqlite.find->step()) {
                  const std::string_view found = all.sqlite.find->text(0);
                  peers += found.size() + static_cast<unsigned char>(found.back());
                }
                all.sqlite.find->reset();
              }
            }},
       {.run = [&] {
         for (const std::string& id : ids) {
           const auto found = all.ours.backend.find(kFile, id);
           our += found->encoded().size() + static_cast<unsigned char>(found->encoded().back());
         }
       }});
  expect(state, peers == our);
}
VELANOR_RACE(FindAgainstSqlite);

void FindAgainstHashTable(benchmark::State& state) {
  Base& all = base(Spread::kOneEntity);
  const auto ids = all.any_ids(kTimes);
  std::unordered_map<std::string, std::string> map;
  map.reserve(all.ids.size());
  for (const std::string& id : all.ids) map.emplace(id, all.ours.find(id).encoded());
  std::size_t peers = 0, our = 0;
  race(state, {.goal = 1, .times = kTimes},
       {.run =
            [&] {
              for (const std::string& id : ids) {
                const std::string found = map.find(id)->second;
                peers += found.size() + static_cast<unsigned char>(found.back());
              }
            }},
       {.run = [&] {
         for (const std::string& id : ids) {
           const auto found = all.ours.backend.find(kFile, id);
           our += found->encoded().size() + static_cast<unsigned char>(found->encoded().back());
         }
       }});
  expect(state, peers == our);
}
VELANOR_RACE(FindAgainstHashTable);

enum class Rewrite { kSameSize, kOtherSize, kOtherName };

DbRecord rewritten(const DbRecord& before, Rewrite how, std::mt19937& random) {
  DbRecord record = with_another_figure(before);
  if (how == Rewrite::kOtherSize) record.set(46, std::string(115 + random() % 50, 'x'));
  if (how == Rewrite::kOtherName) record.set(1, card_name(random));
  return record;
}

void Replace(benchmark::State& state, Rewrite how) {
  Base& all = base(Spread::kOneEntity);
  std::vector<std::pair<std::string, DbRecord>> records;
  const auto make = [&] {
    records.clear();
    for (int i = 0; i < kTimes; ++i) {
      const std::string& id = all.any_id();
      records.emplace_back(id, rewritten(all.ours.find(id), how, all.random));
    }
  };
  race(state, {.goal = 8, .times = kTimes},
       {.prepare = make,
        .run =
            [&] {
              for (const auto& [id, record] : records) all.sqlite.put(id, record);
            }},
       {.run = [&] {
         for (const auto& [id, record] : records) all.ours.put(id, record);
       }});
  const auto& [id, record] = records.back();
  all.sqlite.find->bind(1, id);
  expect(state, all.sqlite.find->step() && all.sqlite.find->text(0) == record.encoded() &&
                    all.ours.find(id) == record);
  all.sqlite.find->reset();
}
void ReplaceSameSize(benchmark::State& state) { Replace(state, Rewrite::kSameSize); }
void ReplaceOtherSize(benchmark::State& state) { Replace(state, Rewrite::kOtherSize); }
void ReplaceOtherName(benchmark::State& state) { Replace(state, Rewrite::kOtherName); }
VELANOR_RACE(ReplaceSameSize);
VELANOR_RACE(ReplaceOtherSize);
VELANOR_RACE(ReplaceOtherName);

// Nothing is known of the cards; the peer's index would not help it either.
void FirstList(benchmark::State& state) {
  Base& all = base(Spread::kOneEntity);
  const std::string pattern = "%" + listed_id().substr(5), request = employee_list();
  std::vector<std::string> peers;
  DbResult our;
  race(state, {.goal = 8},
       {.prepare = [&] { peers.clear(); },
        .run =
            [&] {
              all.sqlite.list_by_like->bind(1, pattern);
              while (all.sqlite.list_by_like->step())
                peers.emplace_back(all.sqlite.list_by_like->text(0)).append(all.sqlite.list_by_like->text(1));
              all.sqlite.list_by_like->reset();
            }},
       {.prepare = [&] { all.ours.forget(); }, .run = [&] { our = all.ours.database->Select(request); }});
  expect(state, static_cast<int>(peers.size()) == our.DCount() && our.DCount() == cards_a_year(all.spread));
}
VELANOR_RACE(FirstList);

// What of that is the scan: the rows brought to whoever makes the list.
void ScanOfTheList(benchmark::State& state) {
  Base& all = base(Spread::kOneEntity);
  const store::Narrowing narrowing{store::Narrowing::Kind::kIdSuffix, listed_id().substr(5)};
  std::size_t names = 0, rows = 0;
  for (auto _ : state) {
    rows = 0;
    all.ours.backend.scan(kFile, narrowing, Content::kRecords, [&](const store::Row& row) {
      ++rows;
      names += static_cast<unsigned char>(row.encoded[5]) + row.id.size();
    });
  }
  benchmark::DoNotOptimize(names);
  expect(state, static_cast<int>(rows) == cards_a_year(all.spread));
}
BENCHMARK(ScanOfTheList)->Unit(benchmark::kMillisecond);

// `prepare` stands for what makes what is known old, or forgotten.
void by_condition(benchmark::State& state, double goal, const std::function<void(Base&)>& prepare) {
  Base& all = base(Spread::kOneEntity);
  const std::string wanted(all.ours.find(listed_id())(5));
  const std::string request =
      store::DbQuery(std::string("SSELECT ") + kFile + " AVEC 5 = " + store::quoted(wanted), kFile, "0")
          .encoded();
  std::set<std::string> peers, our;
  race(state, {.goal = goal},
       {.prepare = [&] { peers.clear(); },
        .run =
            [&] {
              all.sqlite.condition->bind(1, wanted);
              while (all.sqlite.condition->step()) peers.emplace(all.sqlite.condition->text(0));
              all.sqlite.condition->reset();
            }},
       {.prepare =
            [&] {
              prepare(all);
              our.clear();
            },
        .run =
            [&] {
              const DbResult found = all.ours.database->Select(request);
              for (int i = 1; i <= found.DCount(); ++i) our.emplace(found(i, 1));
            }});
  expect(state, peers == our && our.contains(listed_id()));
}
void ConditionFirst(benchmark::State& state) {
  by_condition(state, 4, [](Base& all) { all.ours.forget(); });
}
void ConditionAfterASave(benchmark::State& state) {
  by_condition(state, 50, [](Base& all) { all.ours.save(other_id()); });
}
VELANOR_RACE(ConditionFirst);
VELANOR_RACE(ConditionAfterASave);

// The peer saves the same card; neither save is measured.
void list_after_a_save(benchmark::State& state, Spread spread, double goal, const std::string& saved) {
  Base& all = base(spread);
  const std::string suffix = listed_id().substr(5), request = employee_list();
  std::size_t peers = 0;
  std::vector<std::string> peer_ids;
  DbResult our;
  race(state, {.goal = goal},
       {.prepare =
            [&] {
              all.sqlite.put(saved, with_another_figure(all.ours.find(saved)));
              peer_ids.clear();
            },
        .run =
            [&] {
              all.sqlite.list->bind(1, suffix);
              while (all.sqlite.list->step()) {
                peers += all.sqlite.list->text(1).size();
                peer_ids.emplace_back(all.sqlite.list->text(0));
              }
              all.sqlite.list->reset();
            }},
       {.prepare = [&] { all.ours.save(saved); }, .run = [&] { our = all.ours.database->Select(request); }});
  std::set<std::string> our_ids;
  for (int i = 1; i <= our.DCount(); ++i) our_ids.emplace(our(i, 1));
  expect(state, our_ids == std::set<std::string>(peer_ids.begin(), peer_ids.end()) &&
                    our.DCount() == cards_a_year(spread));
}
void ListAfterASaveInIt(benchmark::State& state) {
  list_after_a_save(state, Spread::kOneEntity, 10, listed_id());
}
void ListAfterASaveElsewhere(benchmark::State& state) {
  list_after_a_save(state, Spread::kOneEntity, 300, other_id());
}
void ListOfOneOfTwentyAfterASaveInIt(benchmark::State& state) {
  list_after_a_save(state, Spread::kTwentyEntities, 15, listed_id());
}
VELANOR_RACE(ListAfterASaveInIt);
VELANOR_RACE(ListAfterASaveElsewhere);

// Five attributes of each card of the list, cell by cell.
void FiveAttributesAfterASave(benchmark::State& state) {
  Base& all = base(Spread::kOneEntity);
  const std::string suffix = listed_id().substr(5);
  const std::string request =
      store::DbQuery(std::string("SSELECT ") + kFile + " AVEC 0 = \"[" + suffix + "\" PAR 1", kFile,
                     "0 1 5 7 9")
          .encoded();
  std::size_t peers = 0, our = 0;
  race(state, {.goal = 15},
       {.prepare =
            [&] {
              peers = 0;
              all.sqlite.put(listed_id(), with_another_figure(all.ours.find(listed_id())));
            },
        .run =
            [&] {
              all.sqlite.cards->bind(1, suffix);
              while (all.sqlite.cards->step()) {
                peers += all.sqlite.cards->text(0).size();
                std::string_view rest = all.sqlite.cards->text(1);
                for (int attribute = 1; attribute <= 9; ++attribute) {
                  const std::size_t end = rest.find(store::kAttributeMark);
                  if (attribute % 2 == 1 && attribute != 3) peers += end;
                  rest.remove_prefix(end + 1);
                }
              }
              all.sqlite.cards->reset();
            }},
       {.prepare =
            [&] {
              our = 0;
              all.ours.save(listed_id());
            },
        .run =
            [&] {
              const DbResult found = all.ours.database->Select(request);
              for (int i = 1; i <= found.DCount(); ++i) {
                for (int field = 1; field <= 5; ++field) our += found(i, field).size();
              }
            }});
  expect(state, peers == our);
}
VELANOR_RACE(FiveAttributesAfterASave);

// The years of each entity, as the component reads them: one id for all that have both alike.
void year_table_after_a_save(benchmark::State& state, Spread spread) {
  Base& all = base(spread);
  const std::string request = year_table();
  std::vector<std::string> peers, ours;
  race(state, {.goal = 10},
       {.prepare =
            [&] {
              peers.clear();
              all.sqlite.put(listed_id(), with_another_figure(all.ours.find(listed_id())));
            },
        .run =
            [&] {
              while (all.sqlite.years->step())
                peers.emplace_back(all.sqlite.years->text(0)).append(all.sqlite.years->text(1));
              all.sqlite.years->reset();
            }},
       {.prepare =
            [&] {
              ours.clear();
              all.ours.save(listed_id());
            },
        .run =
            [&] {
              const DbResult ids = all.ours.database->Select(request);
              for (int i = 1; i <= ids.DCount(); i = ids.run_end(i)) ours.emplace_back(ids(i, 1).substr(5));
            }});
  expect(state, peers == ours && !ours.empty());
}
void YearTableAfterASave(benchmark::State& state) { year_table_after_a_save(state, Spread::kOneEntity); }
void YearTableOfTwentyAfterASave(benchmark::State& state) {
  year_table_after_a_save(state, Spread::kTwentyEntities);
}
VELANOR_RACE(YearTableAfterASave);
VELANOR_RACE(ListOfOneOfTwentyAfterASaveInIt);
VELANOR_RACE(YearTableOfTwentyAfterASave);

// Of this thread: what other programs take of the processor is not in it.
double processor_us() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) / 1e3;
}

// The list as a statement, against the same in SQL on a table with the index for it.
void ParseAStatement(benchmark::State& state) {
  constexpr int kTurn = 1000;
  sqlite3* base = nullptr;
  sqlite3_open(":memory:", &base);
  sqlite3_exec(base,
               "CREATE TABLE card (id TEXT PRIMARY KEY, suffix TEXT, name TEXT);"
               "CREATE INDEX list ON card (suffix, name, id)",
               nullptr, nullptr, nullptr);
  const store::select::Dictionary dictionary;
  const auto prepare = [base] {
    for (int i = 0; i < kTurn; ++i)
      Statement(base, "SELECT id, name FROM card WHERE suffix = '0012030' ORDER BY name, id");
  };
  const auto parse = [&] {
    for (int i = 0; i < kTurn; ++i) {
      benchmark::DoNotOptimize(
          store::select::parse_statement("SSELECT VELANORO AVEC 0 = \"[0012030\" PAR 1", kFile, dictionary));
    }
  };
  race(state, {.goal = 7, .times = kTurn}, {.run = prepare}, {.run = parse});
  sqlite3_close(base);
}
VELANOR_RACE(ParseAStatement);

// Memory for each byte of ids and contents, and what the slowest of many replacements takes meanwhile.
void Memory(benchmark::State& state) {
  Base& all = base(Spread::kOneEntity);
  std::vector<std::string> ids = all.ids;
  std::mt19937 random(9);
  for (auto _ : state) {
    Ours cards(Spread::kOneEntity);
    const std::size_t filled = used_memory();
    const auto now = [&] { return part(cards.used + used_memory() - filled, cards.raw_bytes()); };
    state.counters["of_a_raw_byte"] = now();
    double slowest = 0, slowest_of_processor = 0;
    for (std::size_t i = 0; i < ids.size() / 3; ++i) {
      const DbRecord record = rewritten(cards.find(ids[i]), Rewrite::kOtherSize, random);
      const double before = processor_us();
      slowest = std::max(slowest, timed({.run = [&] { cards.put(ids[i], record); }}, 1));
      slowest_of_processor = std::max(slowest_of_processor, processor_us() - before);
    }
    state.counters["slowest_replacement_processor_us"] = slowest_of_processor;
    state.counters["a_third_rewritten"] = now();
    state.counters["slowest_replacement_us"] = slowest;
    for (std::size_t i = 0; i < ids.size() / 2; ++i) cards.backend.erase(kFile, ids[i], Expected::anything());
    state.counters["half_removed"] = now();
  }
}
BENCHMARK(Memory)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velanor::bench
