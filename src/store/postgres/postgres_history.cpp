#include "store/postgres/postgres_history.h"

#include "store/postgres/ids.h"

namespace velanor::store::postgres {
namespace {

// One statement: a version on its way from the one table to the other is in neither or both for two.
constexpr const char* kVersions =
    "WITH f AS (SELECT number FROM velanor.file WHERE name = $1) "
    "SELECT version, author, coalesce(floor(extract(epoch FROM time))::bigint, 0), content FROM ("
    "SELECT file, id, version, author, time, content FROM velanor.history UNION ALL "
    "SELECT file, id, version, author, time, content FROM velanor.stored) v "
    "WHERE file = (SELECT number FROM f) AND id = $2 ORDER BY version";
constexpr const char* kDeleted =
    "SELECT id FROM velanor.stored WHERE file = (SELECT number FROM velanor.file WHERE name = $1) AND "
    "deleted "
    "AND tail >= $2 AND ($3 IS NULL OR tail < $3) ORDER BY time DESC NULLS LAST, version DESC";
constexpr const char* kPurge =
    "WITH gone AS (DELETE FROM velanor.history WHERE until < to_timestamp($1::bigint) RETURNING 1) "
    "SELECT count(*) FROM gone";
constexpr const char* kRestoreOld =
    "INSERT INTO velanor.history(file, id, version, author, time, until, content) "
    "SELECT number, $2, $4, $5, to_timestamp(nullif($6, 0)), to_timestamp($7::bigint), $3 FROM velanor.file "
    "WHERE name = $1";
constexpr const char* kRestoreLast =
    "INSERT INTO velanor.stored(file, id, tail, content, version, author, time) "
    "SELECT number, $2, $7, $3, $4, $5, to_timestamp(nullif($6, 0)) FROM velanor.file WHERE name = $1";

Version version_of(const Result& rows, int row) {
  Version version{static_cast<std::uint64_t>(rows.number(row, 0)), clean_text(rows.bytes(row, 1)),
                  rows.number(row, 2), std::nullopt};
  if (!rows.is_null(row, 3)) version.record = DbRecord::from_encoded(rows.bytes(row, 3));
  return version;
}

}  // namespace

std::vector<Version> PostgresHistory::versions(std::string_view file, std::string_view id) {
  std::vector<Version> versions;
  backend_.read([&](Connection& connection) {
    versions.clear();
    const Result rows = connection.run(kVersions, {file, id});
    for (int row = 0; row < rows.rows(); ++row) versions.push_back(version_of(rows, row));
  });
  return versions;
}

std::vector<std::string> PostgresHistory::files() {
  std::vector<std::string> names;
  backend_.read([&](Connection& connection) {
    names.clear();
    const Result rows = connection.run(
        "SELECT name FROM velanor.file WHERE EXISTS (SELECT FROM velanor.stored WHERE file = number) "
        "ORDER BY name");
    for (int row = 0; row < rows.rows(); ++row) names.push_back(clean_text(rows.bytes(row, 0)));
  });
  return names;
}

std::vector<std::string> PostgresHistory::deleted(std::string_view file, std::string_view id_suffix) {
  std::vector<std::string> ids;
  const std::string from = reversed(id_suffix);
  const auto to = end_of(from);
  backend_.read([&](Connection& connection) {
    ids.clear();
    const Result rows = connection.run(kDeleted, {file, from, std::optional<std::string_view>(to)});
    for (int row = 0; row < rows.rows(); ++row) ids.push_back(clean_text(rows.bytes(row, 0)));
  });
  return ids;
}

std::size_t PostgresHistory::purge(std::int64_t before) {
  std::size_t gone = 0;
  backend_.write([&](Connection& connection) {
    gone = static_cast<std::size_t>(connection.run(kPurge, {before}).number(0, 0));
  });
  return gone;
}

bool PostgresHistory::restore(std::string_view file, std::string_view id,
                              const std::vector<Version>& versions) {
  check_sizes(file, id);
  const std::string tail = reversed(id);
  backend_.write([&](Connection& connection) {
    connection.run("INSERT INTO velanor.file(name) VALUES ($1) ON CONFLICT DO NOTHING", {file});
    for (std::size_t i = 0; i < versions.size(); ++i) {
      const Version& version = versions[i];
      std::optional<std::string_view> content;
      if (version.record) content = version.record->encoded();
      const auto number = static_cast<std::int64_t>(version.number);
      if (i + 1 == versions.size()) {
        connection.run(kRestoreLast, {file, id, content, number, version.author, version.time, tail});
      } else {
        connection.run(kRestoreOld,
                       {file, id, content, number, version.author, version.time, versions[i + 1].time});
      }
    }
  });
  return true;
}

}  // namespace velanor::store::postgres
