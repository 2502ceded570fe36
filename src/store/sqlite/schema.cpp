#include "store/sqlite/schema.h"

#include <sqlite3.h>

#include <string>

#include "store/sqlite/failure.h"

namespace velanor::store::sqlite {
namespace {

// `tail` is the id backwards, so that the ids with a common end stand together. The unique index
// answers a scan of ids alone without touching the records. The triggers keep the revision of a
// file right whoever writes.
constexpr const char* kVersion1 = R"sql(
CREATE TABLE file(
  number INTEGER PRIMARY KEY,
  name TEXT NOT NULL UNIQUE,
  revision INTEGER NOT NULL DEFAULT 0
) STRICT;
CREATE TABLE record(
  file INTEGER NOT NULL,
  id TEXT NOT NULL,
  tail BLOB NOT NULL,
  content BLOB NOT NULL
) STRICT;
CREATE UNIQUE INDEX record_by_id ON record(file, id);
CREATE INDEX record_by_tail ON record(file, tail);
CREATE TRIGGER record_inserted AFTER INSERT ON record
  BEGIN UPDATE file SET revision = revision + 1 WHERE number = NEW.file; END;
CREATE TRIGGER record_updated AFTER UPDATE ON record
  BEGIN UPDATE file SET revision = revision + 1 WHERE number IN (OLD.file, NEW.file); END;
CREATE TRIGGER record_deleted AFTER DELETE ON record
  BEGIN UPDATE file SET revision = revision + 1 WHERE number = OLD.file; END;
)sql";

constexpr const char* kSteps[] = {kVersion1};

std::int64_t version(Connection& connection) { return connection.number("PRAGMA user_version"); }

bool is_new(Connection& connection) {
  return version(connection) == 0 && connection.number("SELECT count(*) FROM sqlite_schema") == 0;
}

void refuse_others(Connection& connection, std::int64_t known) {
  const bool ours = connection.number("PRAGMA application_id") == kApplicationId;
  if (!ours && !is_new(connection)) throw failure(SQLITE_NOTADB, connection.path(), "");
  if (version(connection) > known) {
    throw DbError(kStoreFailure, "La base « " + connection.path() +
                                     " » a été écrite par une version plus récente du programme. Installez "
                                     "cette version pour l'ouvrir ; la base n'a pas été modifiée.");
  }
}

void take_steps(Connection& connection, std::span<const char* const> steps) {
  Transaction transaction(connection);
  // Another program may have done it while this one waited.
  const auto from = static_cast<std::size_t>(version(connection));
  for (std::size_t step = from; step < steps.size(); ++step) connection.run(steps[step]);
  if (from < steps.size()) {
    connection.run(("PRAGMA application_id = " + std::to_string(kApplicationId)).c_str());
    connection.run(("PRAGMA user_version = " + std::to_string(steps.size())).c_str());
  }
  transaction.commit();
}

// Where the file system cannot do it the file stays as it is, which is as safe and only slower.
void write_ahead(Connection& connection) {
  constexpr int kTries = 100, kPause = 20;
  for (int n = 0; connection.text("PRAGMA journal_mode") == "delete"; ++n) {
    // While another program does the same SQLite says so at once, without patience.
    const int code =
        sqlite3_exec(connection.handle(), "PRAGMA journal_mode = WAL", nullptr, nullptr, nullptr);
    if ((code & 0xFF) != SQLITE_BUSY || n == kTries) {
      connection.check(code);
      return;
    }
    sqlite3_sleep(kPause);
  }
}

}  // namespace

std::span<const char* const> schema_steps() { return kSteps; }

void prepare(Connection& connection, std::span<const char* const> steps) {
  const auto known = static_cast<std::int64_t>(steps.size());
  refuse_others(connection, known);
  if (version(connection) < known) take_steps(connection, steps);
  if (connection.access() == Access::kWrite) write_ahead(connection);
  connection.run("PRAGMA synchronous = FULL");
  connection.run("PRAGMA cache_size = -32768");  // KiB
}

}  // namespace velanor::store::sqlite
