// What the SQLite store takes beside SQLite itself, in files of the same cards: a durable save, opening, and
// the lists of the component.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <utility>

#include "cards.h"
#include "race.h"
#include "store/mark_scanner.h"
#include "velanor/sqlite_database.h"

namespace velanor::bench {
namespace {

namespace fs = std::filesystem;
using store::DbRecord, store::SqliteDatabase;

// SQLite as one would use it for this: what is asked for is a column, with an index that covers it.
class Raw {
 public:
  explicit Raw(const std::string& path) {
    check(sqlite3_open_v2(path.c_str(), &base_,
                          SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr));
  }
  ~Raw() {
    for (auto& [sql, statement] : statements_) sqlite3_finalize(statement);
    sqlite3_close(base_);
  }
  Raw(const Raw&) = delete;
  Raw& operator=(const Raw&) = delete;

  void run(const char* sql) { check(sqlite3_exec(base_, sql, nullptr, nullptr, nullptr)); }
  // Runs a statement, prepared once, with these texts; calls `row` with each row.
  template <typename Row>
  void each(const char* sql, const std::vector<std::string_view>& texts, const Row& row) {
    sqlite3_stmt* statement = prepared(sql);
    for (std::size_t i = 0; i < texts.size(); ++i) {
      check(sqlite3_bind_text(statement, static_cast<int>(i) + 1, texts[i].data(),
                              static_cast<int>(texts[i].size()), SQLITE_STATIC));
    }
    int code = SQLITE_OK;
    while ((code = sqlite3_step(statement)) == SQLITE_ROW) row(statement);
    sqlite3_reset(statement);
    if (code != SQLITE_DONE) check(code);
  }
  void write(const char* sql, const std::vector<std::string_view>& texts) {
    each(sql, texts, [](sqlite3_stmt*) {});
  }

 private:
  void check(int code) const {
    if (code != SQLITE_OK) throw std::runtime_error(sqlite3_errmsg(base_));
  }
  sqlite3_stmt* prepared(const char* sql) {
    for (auto& [known, statement] : statements_) {
      if (known == sql) return statement;
    }
    sqlite3_stmt* statement = nullptr;
    check(sqlite3_prepare_v3(base_, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr));
    statements_.emplace_back(sql, statement);
    return statement;
  }

  sqlite3* base_ = nullptr;
  std::vector<std::pair<const char*, sqlite3_stmt*>> statements_;
};

std::string_view text_of(sqlite3_stmt* row, int column) {
  const auto* bytes = static_cast<const char*>(sqlite3_column_blob(row, column));
  return {bytes == nullptr ? "" : bytes, static_cast<std::size_t>(sqlite3_column_bytes(row, column))};
}

constexpr const char* kRawTable =
    "PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL;"
    "CREATE TABLE card(id TEXT PRIMARY KEY, suffix TEXT, name TEXT, content BLOB);";
constexpr const char* kRawIndexes =
    "CREATE INDEX by_list ON card(suffix, name, id); CREATE INDEX by_year ON card(substr(id, 6));";
constexpr const char* kRawInsert = "INSERT INTO card VALUES (?1, substr(?1, 6), ?2, CAST(?3 AS BLOB))";
constexpr const char* kRawSave =
    "INSERT INTO card(id, content) VALUES (?1, CAST(?2 AS BLOB)) "
    "ON CONFLICT(id) DO UPDATE SET content = excluded.content";
constexpr const char* kRawRead = "SELECT content FROM card WHERE id = ?1";
constexpr const char* kRawList = "SELECT id, name FROM card WHERE suffix = ?1 ORDER BY name, id";
// The entities and years that there are, one look at the index for each.
constexpr const char* kRawYears =
    "WITH RECURSIVE year(part) AS (SELECT min(substr(id, 6)) FROM card UNION ALL "
    "SELECT (SELECT substr(id, 6) FROM card WHERE substr(id, 6) > part ORDER BY substr(id, 6) LIMIT 1) "
    "FROM year WHERE part IS NOT NULL) "
    "SELECT part FROM year WHERE part IS NOT NULL ORDER BY substr(part, 1, 3), substr(part, 4) DESC";

// Two files of the same cards; both go with this.
class Files {
 public:
  explicit Files(Spread spread) : ids(card_ids(spread)) {
    std::string name = (fs::temp_directory_path() / "velanor-bench-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    folder_ = name;
    try {
      build();
    } catch (...) {
      fs::remove_all(folder_);
      throw;
    }
  }
  ~Files() { fs::remove_all(folder_); }
  Files(const Files&) = delete;
  Files& operator=(const Files&) = delete;

  std::string base() const { return folder_ / "base"; }
  std::string raw() const { return folder_ / "raw"; }

  const std::vector<std::string> ids;

 private:
  void build() {
    Raw peer(raw());
    peer.run(kRawTable);
    peer.run("BEGIN");
    std::mt19937 random(2);
    SqliteDatabase::build(base(), [&](SqliteDatabase& database) {
      database.in_one_change([&] {
        for (const std::string& id : ids) {
          const DbRecord record = card(random);
          database.put(kFile, id, record);
          peer.write(kRawInsert, {id, record(1), record.encoded()});
        }
      });
      return true;
    });
    peer.run("COMMIT");
    peer.run(kRawIndexes);
    peer.run("PRAGMA wal_checkpoint(TRUNCATE)");
    // As they are when they have been in use.
    SqliteDatabase database(base());
    database.Select(employee_list());
    name_parts(database);
    database.Select(year_table());
  }

 public:
  static void name_parts(SqliteDatabase& database) {
    database.name_id_part(kFile, "CodeAsso", {.first = 6, .count = 3});
    database.name_id_part(kFile, "Annee", {.first = 9});
  }

 private:
  fs::path folder_;
};

// Built for the first benchmark that asks for its spread; one at a time.
Files& files(Spread spread) {
  static std::unique_ptr<Files> kept;
  static Spread kept_spread;
  if (!kept || kept_spread != spread) {
    kept.reset();
    kept = std::make_unique<Files>(spread);
    kept_spread = spread;
  }
  return *kept;
}

DbRecord read(SqliteDatabase& database, const std::string& id) { return database.OpenFile(kFile)->Read(id); }

// ---- A save. Both have just read the card, as a clerk has who saves it.

class Saves {
 public:
  explicit Saves(Files& files)
      : ids_(files.ids), database_(files.base()), file_(database_.OpenFile(kFile)), raw_(files.raw()) {
    raw_.run("PRAGMA synchronous = FULL");
  }

  void take_another_card() {
    id_ = ids_[random_() % ids_.size()];
    before_ = file_->Read(id_);
    after_ = with_another_figure(before_);
    raw_.write(kRawRead, {id_});
  }
  void save() { file_->write(id_, after_, store::Expected::record(before_)); }
  void save_raw() { raw_.write(kRawSave, {id_, after_.encoded()}); }

 private:
  const std::vector<std::string>& ids_;
  SqliteDatabase database_;
  std::unique_ptr<store::DbFile> file_;
  Raw raw_;
  std::mt19937 random_{3};
  std::string id_;
  DbRecord before_, after_;
};

void Save(benchmark::State& state) {
  Saves saves(files(Spread::kOneEntity));
  race(state, {.goal = 1 / 1.8}, {.run = [&] { saves.save_raw(); }},
       {.prepare = [&] { saves.take_another_card(); }, .run = [&] { saves.save(); }});
}
BENCHMARK(Save)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(32 * turns());

// One after the other, so that neither is in the other's way.
void SaveOfManyInARow(benchmark::State& state) {
  Saves saves(files(Spread::kOneEntity));
  std::vector<double> raw, ours;
  const auto take = [&] { saves.take_another_card(); };
  for (auto _ : state) {
    for (int i = 0; i < 160 * turns(); ++i) raw.push_back(timed({take, [&] { saves.save_raw(); }}, 1));
    for (int i = 0; i < 160 * turns(); ++i) ours.push_back(timed({take, [&] { saves.save(); }}, 1));
  }
  const auto tell = [&](const std::string& whose, std::vector<double>& times) {
    std::sort(times.begin(), times.end());
    state.counters[whose + "_median_us"] = times[times.size() / 2];
    state.counters[whose + "_p999_us"] = times[times.size() * 999 / 1000];
    state.counters[whose + "_slowest_us"] = times.back();
  };
  tell("peer", raw);
  tell("ours", ours);
}
BENCHMARK(SaveOfManyInARow)->Unit(benchmark::kMillisecond)->Iterations(1);

// ---- Opening, and the first card.

void open_and_read(benchmark::State& state, Files& files) {
  std::unique_ptr<SqliteDatabase> database;
  std::unique_ptr<Raw> raw;
  std::mt19937 random(4);
  std::string id;
  const auto close = [&] {
    database.reset();
    raw.reset();
    id = files.ids[random() % files.ids.size()];
  };
  race(state, {.goal = 1 / 1.3},
       {close,
        [&] {
          raw = std::make_unique<Raw>(files.raw());
          raw->write(kRawRead, {id});
        }},
       {close, [&] {
          database = std::make_unique<SqliteDatabase>(files.base());
          benchmark::DoNotOptimize(read(*database, id));
        }});
}

void OpeningAnIdleFile(benchmark::State& state) { open_and_read(state, files(Spread::kOneEntity)); }
BENCHMARK(OpeningAnIdleFile)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(16 * turns());

void OpeningAFileInUse(benchmark::State& state) {
  Files& both = files(Spread::kOneEntity);
  SqliteDatabase other(both.base());
  Raw other_raw(both.raw());
  read(other, both.ids.front());
  other_raw.write(kRawRead, {both.ids.front()});
  open_and_read(state, both);
}
BENCHMARK(OpeningAFileInUse)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(16 * turns());

// ---- Lists.

// What a list tells, as both sides leave it: texts in memory.
struct RawList {
  std::string texts;
  std::vector<std::size_t> ends;
  void add(std::string_view text) {
    texts.append(text);
    ends.push_back(texts.size());
  }
};

class Lists {
 public:
  Lists(Files& files, std::string request, const char* sql)
      : files_(files), request_(std::move(request)), sql_(sql) {
    reopen();
    select();
    select_raw();
  }
  void reopen() {
    database_.reset();
    raw_.reset();
    database_ = std::make_unique<SqliteDatabase>(files_.base());
    Files::name_parts(*database_);
    raw_ = std::make_unique<Raw>(files_.raw());
  }
  void select() { rows_ = database_->Select(request_).DCount(); }
  void select_raw() {
    RawList list;
    const std::string suffix = card_id(0, 1, kYears - 1).substr(5);
    std::vector<std::string_view> texts;
    if (sql_ == kRawList) texts.emplace_back(suffix);
    raw_->each(sql_, texts, [&](sqlite3_stmt* row) {
      for (int i = 0; i < sqlite3_column_count(row); ++i) list.add(text_of(row, i));
    });
    benchmark::DoNotOptimize(list);
  }
  void save() {
    const DbRecord changed = with_another_figure(read(*database_, listed_id()));
    database_->put(kFile, listed_id(), changed);
  }
  void save_raw() {
    const DbRecord changed = with_another_figure(read(*database_, listed_id()));
    raw_->write(kRawSave, {listed_id(), changed.encoded()});
  }
  int rows() const { return rows_; }

 private:
  Files& files_;
  std::string request_;
  const char* sql_;
  std::unique_ptr<SqliteDatabase> database_;
  std::unique_ptr<Raw> raw_;
  int rows_ = 0;
};

enum class Before { kOpening, kNothing, kOwnSave, kOthersSave };

void list_race(benchmark::State& state, Before before, double goal, Lists& lists, Lists& others) {
  Runner peer{.run = [&] { lists.select_raw(); }}, ours{.run = [&] { lists.select(); }};
  if (before == Before::kOpening) peer.prepare = ours.prepare = [&] { lists.reopen(); };
  if (before == Before::kOwnSave)
    peer.prepare = [&] { lists.save_raw(); }, ours.prepare = [&] { lists.save(); };
  if (before == Before::kOthersSave)
    peer.prepare = [&] { others.save_raw(); }, ours.prepare = [&] { others.save(); };
  race(state, {.goal = goal}, peer, ours);
}

template <Spread S, Before B>
void EmployeeList(benchmark::State& state) {
  constexpr double kGoals[] = {1 / 1.2, 15, 5, 2};
  Files& both = files(S);
  Lists lists(both, employee_list(), kRawList), others(both, employee_list(), kRawList);
  if (lists.rows() != cards_a_year(S)) return state.SkipWithError("wrong list");
  list_race(state, B, kGoals[static_cast<int>(B)], lists, others);
}

template <Spread S, Before B>
void YearTable(benchmark::State& state) {
  Files& both = files(S);
  Lists lists(both, year_table(), kRawYears), others(both, year_table(), kRawYears);
  list_race(state, B, B == Before::kOpening ? 1 : 10, lists, others);
}

VELANOR_RACE((EmployeeList<Spread::kOneEntity, Before::kOpening>))
    ->Name("EmployeeListOfOneEntityFirstAfterOpening");
VELANOR_RACE((EmployeeList<Spread::kOneEntity, Before::kNothing>))->Name("EmployeeListOfOneEntityRepeated");
VELANOR_RACE((EmployeeList<Spread::kOneEntity, Before::kOwnSave>))
    ->Name("EmployeeListOfOneEntityAfterAnOwnSave");
VELANOR_RACE((EmployeeList<Spread::kOneEntity, Before::kOthersSave>))
    ->Name("EmployeeListOfOneEntityAfterAnothersSave");
VELANOR_RACE((YearTable<Spread::kOneEntity, Before::kOpening>))
    ->Name("YearTableOfOneEntityFirstAfterOpening");
VELANOR_RACE((YearTable<Spread::kOneEntity, Before::kOwnSave>))->Name("YearTableOfOneEntityAfterASave");
VELANOR_RACE((EmployeeList<Spread::kTwentyEntities, Before::kOpening>))
    ->Name("EmployeeListOfOneOfTwentyFirstAfterOpening");
VELANOR_RACE((EmployeeList<Spread::kTwentyEntities, Before::kNothing>))
    ->Name("EmployeeListOfOneOfTwentyRepeated");
VELANOR_RACE((EmployeeList<Spread::kTwentyEntities, Before::kOwnSave>))
    ->Name("EmployeeListOfOneOfTwentyAfterAnOwnSave");
VELANOR_RACE((EmployeeList<Spread::kTwentyEntities, Before::kOthersSave>))
    ->Name("EmployeeListOfOneOfTwentyAfterAnothersSave");
VELANOR_RACE((YearTable<Spread::kTwentyEntities, Before::kOpening>))
    ->Name("YearTableOfTwentyFirstAfterOpening");
VELANOR_RACE((YearTable<Spread::kTwentyEntities, Before::kOwnSave>))->Name("YearTableOfTwentyAfterASave");

}  // namespace
}  // namespace velanor::bench
