#include "store/sqlite/schema.h"

#include <sqlite3.h>

#include <chrono>
#include <string>

#include "store/sqlite/failure.h"
#include "store/sqlite/impatient_scope.h"
#include "store/sqlite/row_sum.h"

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

// The record holds its newest version; what it replaces goes to `history`, so that new records are
// written once. A deletion is a row without content, which also keeps the numbers going on. `until` is
// when a version was replaced; nothing for a deletion that still holds. `sum` is checked at each read.
constexpr const char* kVersion2 = R"sql(
ALTER TABLE record ADD COLUMN version INTEGER NOT NULL DEFAULT 1;
ALTER TABLE record ADD COLUMN author TEXT NOT NULL DEFAULT '';
ALTER TABLE record ADD COLUMN time INTEGER NOT NULL DEFAULT 0;
ALTER TABLE record ADD COLUMN sum INTEGER NOT NULL DEFAULT 0;
UPDATE record SET sum = velanor_sum(file, id, version, author, time, content);
CREATE TABLE history(
  file INTEGER NOT NULL,
  id TEXT NOT NULL,
  version INTEGER NOT NULL,
  author TEXT NOT NULL,
  time INTEGER NOT NULL,
  until INTEGER,
  content BLOB,
  sum INTEGER NOT NULL
) STRICT;
CREATE UNIQUE INDEX history_by_id ON history(file, id, version);
CREATE INDEX history_of_deletions ON history(file, id) WHERE content IS NULL;
)sql";

// `changed` says which record the last revisions of a file have written or removed; a revision moves by one
// for each, and by two where an id becomes another, so that there is one that nobody can explain. `kept`
// holds what was selected. Both only save work: a file without their rows says the same.
constexpr const char* kVersion3 = R"sql(
CREATE TABLE changed(
  slot INTEGER PRIMARY KEY,
  revision INTEGER NOT NULL,
  id TEXT NOT NULL
) STRICT;
CREATE TABLE kept(
  number INTEGER PRIMARY KEY,
  file INTEGER NOT NULL,
  name BLOB NOT NULL,
  revision INTEGER NOT NULL,
  sum INTEGER NOT NULL,
  content BLOB NOT NULL
) STRICT;
CREATE UNIQUE INDEX kept_by_name ON kept(file, name);
DROP TRIGGER record_inserted;
DROP TRIGGER record_updated;
DROP TRIGGER record_deleted;
CREATE TRIGGER record_inserted AFTER INSERT ON record
  BEGIN UPDATE file SET revision = revision + 1 WHERE number = NEW.file;
  INSERT OR REPLACE INTO changed(slot, revision, id)
    SELECT number * 1024 + revision % 1024, revision, NEW.id FROM file WHERE number = NEW.file; END;
CREATE TRIGGER record_updated AFTER UPDATE ON record
  BEGIN UPDATE file SET revision = revision + iif(OLD.file = NEW.file AND OLD.id = NEW.id, 1, 2)
    WHERE number IN (OLD.file, NEW.file);
  INSERT OR REPLACE INTO changed(slot, revision, id)
    SELECT number * 1024 + revision % 1024, revision, NEW.id FROM file WHERE number = NEW.file; END;
CREATE TRIGGER record_deleted AFTER DELETE ON record
  BEGIN UPDATE file SET revision = revision + 1 WHERE number = OLD.file;
  INSERT OR REPLACE INTO changed(slot, revision, id)
    SELECT number * 1024 + revision % 1024, revision, OLD.id FROM file WHERE number = OLD.file; END;
)sql";

constexpr const char* kSteps[] = {kVersion1, kVersion2, kVersion3};

// A file of an earlier version that may not be written is read as if it had taken the next steps.
constexpr const char* kVersion1AsRead = R"sql(
CREATE TEMP VIEW record AS SELECT file, id, tail, content, 1 AS version, '' AS author, 0 AS time, NULL AS sum
  FROM main.record;
CREATE TEMP VIEW history AS SELECT file, id, 0 AS version, '' AS author, 0 AS time, NULL AS until, content,
  NULL AS sum FROM main.record WHERE 0;
)sql";
constexpr const char* kVersion2AsRead = R"sql(
CREATE TEMP VIEW changed AS SELECT 0 AS slot, 0 AS revision, '' AS id WHERE 0;
CREATE TEMP VIEW kept AS SELECT 0 AS file, x'' AS name, 0 AS revision, 0 AS sum, x'' AS content WHERE 0;
)sql";

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
  offer_row_sum(connection);
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

void read_older(Connection& connection, std::int64_t known) {
  const std::int64_t version_there = version(connection);
  if (version_there < 2 && known >= 2) connection.run(kVersion1AsRead);
  if (version_there < 3 && known >= 3) connection.run(kVersion2AsRead);
}

// Where the file system cannot do it the file stays as it is, which is as safe and only slower. While another
// program does the same SQLite says so at once, without patience.
void write_ahead(Connection& connection) {
  constexpr int kPause = 20;
  const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(connection.patience());
  const ImpatientScope impatient(connection);
  while (connection.text("PRAGMA journal_mode") == "delete") {
    const int code =
        sqlite3_exec(connection.handle(), "PRAGMA journal_mode = WAL", nullptr, nullptr, nullptr);
    if ((code & 0xFF) != SQLITE_BUSY || std::chrono::steady_clock::now() >= until) {
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
  if (connection.access() == Access::kWrite) {
    // A journal that comes back because its removal was never brought to the disk would undo what is then
    // in the log.
    connection.run("PRAGMA synchronous = EXTRA");
    if (version(connection) < known) take_steps(connection, steps);
    write_ahead(connection);
  } else {
    read_older(connection, known);
  }
  connection.run("PRAGMA synchronous = FULL");
  connection.run("PRAGMA cache_size = -32768");  // KiB
}

}  // namespace velanor::store::sqlite
