#include "velanor/sqlite_database.h"

#include <array>
#include <ctime>

#include "store/checked_writes.h"
#include "store/sqlite/examination.h"
#include "store/sqlite/failure.h"
#include "store/sqlite/place.h"
#include "store/sqlite/raw_file.h"
#include "store/sqlite/row_sum.h"
#include "store/sqlite/schema.h"
#include "store/sqlite/sqlite_backend.h"
#include "store/sqlite/sqlite_history.h"
#include "store/sqlite/whole_files.h"

namespace velanor::store {
namespace {

using sqlite::SqliteBackend;
using sqlite::Statement;

sqlite::Missing if_missing(SqliteDatabase::Missing missing) {
  return missing == SqliteDatabase::Missing::kCreate ? sqlite::Missing::kCreate : sqlite::Missing::kFail;
}

std::function<std::int64_t()> clock_of(const SqliteDatabase::Options& options) {
  if (options.clock) return options.clock;
  return [] { return static_cast<std::int64_t>(std::time(nullptr)); };
}

// All that is stored under a checksum, the newest and what was.
constexpr const char* kRowsWithSums =
    "SELECT content, version, author, time, sum, id, file, name, 0 FROM record JOIN file ON number = file "
    "UNION ALL SELECT content, version, author, time, sum, id, file, name, 1 FROM history "
    "JOIN file ON number = file";

std::string of_history(std::string_view file, std::string_view id, std::int64_t version) {
  std::string sentence = "La version " + std::to_string(version) + " de l'enregistrement « " + clean_text(id);
  return sentence.append(" » du fichier ")
      .append(file)
      .append(" est endommagée dans l'historique. Ce qui est stocké ne l'est pas.");
}

}  // namespace

SqliteDatabase::SqliteDatabase(const std::string& path, const Options& options)
    : SqliteDatabase(std::make_unique<SqliteBackend>(path, if_missing(options.missing), options.patience,
                                                     clock_of(options))) {}

SqliteDatabase::SqliteDatabase(std::unique_ptr<SqliteBackend> backend)
    : StoreDatabase(std::move(backend)),
      backend_(static_cast<SqliteBackend*>(&StoreDatabase::backend())),
      history_(std::make_unique<sqlite::SqliteHistory>(*backend_)) {}

SqliteDatabase::~SqliteDatabase() = default;

bool SqliteDatabase::read_only() const { return backend_->connection().access() != sqlite::Access::kWrite; }

std::string SqliteDatabase::remark() const {
  const std::string& path = backend_->connection().path();
  if (!sqlite::readable_by_others(path)) return {};
  return "La base « " + path +
         " » peut être lue par d'autres utilisateurs de cette machine. Pour la réserver au vôtre : chmod "
         "600 " +
         path;
}

void SqliteDatabase::put(std::string_view file, std::string_view id, const DbRecord& record) {
  put_checked(*backend_, file, id, record);
}

std::vector<std::string> SqliteDatabase::files() { return backend_->files(); }

void SqliteDatabase::back_up(const std::string& path, const std::function<void(double)>& progress) {
  in_one_view([&] { sqlite::copy_to_new_file(backend_->connection(), path, progress); });
}

void SqliteDatabase::with_copy(const std::function<void(const std::string&)>& use,
                               const std::function<void(double)>& progress) {
  const std::string beside = backend_->connection().path() + ".copie";
  in_one_view([&] { sqlite::with_copy(backend_->connection(), beside, use, progress); });
}

void SqliteDatabase::build(const std::string& path, const std::function<bool(SqliteDatabase&)>& fill) {
  sqlite::refuse_unsafe_place(path);
  sqlite::make_new_file(path, [&](const std::string& unfinished) {
    SqliteDatabase database(unfinished);
    if (!fill(database)) return false;
    // A checkpoint of so much, beside this one, may take longer than anything waits.
    database.backend_->end_checkpoints();
    sqlite::settle(database.backend_->connection());
    return true;
  });
}

std::string SqliteDatabase::restore(const std::string& backup, const std::string& path) {
  return sqlite::put_in_place(backup, path);
}

std::vector<std::string> SqliteDatabase::damages() { return sqlite::damages_of(backend_->connection()); }

std::vector<std::string> SqliteDatabase::disagreements() {
  return sqlite::disagreements_of(backend_->connection());
}

void SqliteDatabase::repair() { sqlite::repair(backend_->connection()); }

std::vector<SqliteDatabase::DamagedRecord> SqliteDatabase::damaged_records() {
  std::vector<DamagedRecord> damaged;
  Statement rows(backend_->connection(), kRowsWithSums);
  while (rows.step()) {
    const std::string_view id = rows.bytes(5);
    sqlite::StoredVersion row{rows.number(6), id,          rows.number(1), rows.bytes(2),
                              rows.number(3), std::nullopt};
    if (!rows.is_null(0)) row.content = rows.bytes(0);
    if (rows.is_null(4) || rows.number(4) == row_sum(row)) continue;
    const std::string file = clean_text(rows.bytes(7));
    const bool old = rows.number(8) != 0;
    damaged.push_back({file, clean_text(id), old,
                       old ? of_history(file, id, row.version) : backend_->damaged(file, id).what()});
  }
  return damaged;
}

bool SqliteDatabase::is_at(const std::string& path) {
  // Both stand at fixed places in front of every SQLite file.
  constexpr std::string_view kFormat("SQLite format 3\0", 16);
  constexpr std::size_t kIdAt = 68, kIdSize = 4;
  std::array<char, kIdAt + kIdSize> header{};
  sqlite::RawFile file(path, sqlite::RawFile::For::kReading);
  if (!file.read_start(header)) return false;
  std::uint32_t id = 0;
  for (std::size_t i = kIdAt; i < header.size(); ++i) id = id << 8 | static_cast<unsigned char>(header[i]);
  return std::string_view(header.data(), kFormat.size()) == kFormat && id == sqlite::kApplicationId;
}

}  // namespace velanor::store
