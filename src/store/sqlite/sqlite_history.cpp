#include "store/sqlite/sqlite_history.h"

#include "store/sqlite/row_sum.h"

namespace velanor::store::sqlite {
namespace {

// Columns: version, author, time, content, sum.
Version version_of(const Statement& row, std::int64_t file, std::string_view id) {
  StoredVersion stored{file, id, row.number(0), row.bytes(1), row.number(2), std::nullopt};
  if (!row.is_null(3)) stored.content = row.bytes(3);
  Version version{static_cast<std::uint64_t>(stored.version), clean_text(stored.author), stored.time, {}};
  version.sound = row.is_null(4) || row.number(4) == row_sum(stored);
  if (version.sound && stored.content) version.record = DbRecord::from_encoded(*stored.content);
  return version;
}

}  // namespace

// One statement: a version on its way from the one table to the other is in neither or both for two.
std::vector<Version> SqliteHistory::versions(std::string_view file, std::string_view id) {
  const auto number = backend_.number(file);
  if (!number) return {};
  std::vector<Version> versions;
  Statement rows(backend_.connection(),
                 "SELECT version, author, time, content, sum FROM history WHERE file = ?1 AND id = ?2 "
                 "UNION ALL SELECT version, author, time, content, sum FROM record "
                 "WHERE file = ?1 AND id = ?2 ORDER BY version");
  rows.bind(1, *number);
  rows.bind_text(2, id);
  while (rows.step()) versions.push_back(version_of(rows, *number, id));
  return versions;
}

std::vector<std::string> SqliteHistory::files() {
  std::vector<std::string> names;
  Statement rows(backend_.connection(),
                 "SELECT name FROM file WHERE EXISTS (SELECT 1 FROM history WHERE file = number) "
                 "OR EXISTS (SELECT 1 FROM record WHERE file = number) ORDER BY name");
  while (rows.step()) names.push_back(clean_text(rows.bytes(0)));
  return names;
}

std::vector<std::string> SqliteHistory::deleted(std::string_view file, std::string_view id_suffix) {
  const auto number = backend_.number(file);
  if (!number) return {};
  std::vector<std::string> ids;
  Statement rows(backend_.connection(),
                 "SELECT id FROM history WHERE file = ?1 AND content IS NULL AND NOT EXISTS "
                 "(SELECT 1 FROM record WHERE record.file = ?1 AND record.id = history.id) "
                 "GROUP BY id ORDER BY max(time) DESC, max(rowid) DESC");
  rows.bind(1, *number);
  while (rows.step()) {
    if (rows.bytes(0).ends_with(id_suffix)) ids.push_back(clean_text(rows.bytes(0)));
  }
  return ids;
}

std::size_t SqliteHistory::purge(std::int64_t before) {
  std::size_t gone = 0;
  backend_.in_one_change([&] {
    Statement rows(backend_.connection(), "DELETE FROM history WHERE until < ?1");
    rows.bind(1, before);
    rows.step();
    gone = static_cast<std::size_t>(backend_.connection().changes());
    // It may name whom the last trace was purged of.
    backend_.connection().run("DELETE FROM kept");
  });
  return gone;
}

bool SqliteHistory::restore(std::string_view file, std::string_view id,
                            const std::vector<Version>& versions) {
  backend_.lay_down(file, id, versions);
  return true;
}

}  // namespace velanor::store::sqlite
