#include "store/sqlite/sqlite_backend.h"

#include <utility>

#include "store/sqlite/schema.h"

namespace velanor::store::sqlite {
namespace {

std::string reversed(std::string_view id) { return {id.rbegin(), id.rend()}; }

Connection opened(const std::string& path, Missing missing, int patience) {
  Connection connection(path, missing, patience);
  prepare(connection);
  return connection;
}

}  // namespace

SqliteBackend::Shelf::Shelf(const std::string& path, Missing missing, int patience)
    : connection(opened(path, missing, patience)),
      find(connection, "SELECT content FROM record WHERE file = ?1 AND id = ?2"),
      put(connection,
          "INSERT INTO record(file, id, tail, content) VALUES (?1, ?2, ?3, ?4) "
          "ON CONFLICT(file, id) DO UPDATE SET content = excluded.content"),
      create(connection,
             "INSERT INTO record(file, id, tail, content) VALUES (?1, ?2, ?3, ?4) ON CONFLICT DO NOTHING"),
      erase(connection, "DELETE FROM record WHERE file = ?1 AND id = ?2"),
      ids(connection, "SELECT id FROM record WHERE file = ?1 AND id >= ?2 ORDER BY id"),
      records(connection, "SELECT id, content FROM record WHERE file = ?1 AND id >= ?2 ORDER BY id"),
      tails(connection, "SELECT id, content, tail FROM record WHERE file = ?1 AND tail >= ?2 ORDER BY tail"),
      number(connection, "SELECT number FROM file WHERE name = ?1"),
      add_file(connection, "INSERT OR IGNORE INTO file(name) VALUES (?1)"),
      revision(connection, "SELECT revision FROM file WHERE name = ?1") {}

SqliteBackend::SqliteBackend(std::string path, Missing missing, int patience)
    : path_(std::move(path)),
      patience_(patience),
      shelf_(std::make_shared<Shelf>(path_, missing, patience)) {}

const std::shared_ptr<SqliteBackend::Shelf>& SqliteBackend::shelf() {
  if (shelf_->connection.outdated()) {
    shelf_ = std::make_shared<Shelf>(path_, Missing::kFail, patience_);
    numbers_.clear();
  }
  return shelf_;
}

void SqliteBackend::open(std::string_view) {}

std::optional<std::int64_t> SqliteBackend::number(std::string_view file) {
  const auto known = numbers_.find(file);
  if (known != numbers_.end()) return known->second;
  Run run(shelf()->number);
  run->bind_text(1, file);
  if (!run->step()) return std::nullopt;
  return numbers_[std::string(file)] = run->number(0);
}

std::int64_t SqliteBackend::number_for_writing(std::string_view file) {
  if (const auto known = number(file)) return *known;
  {
    Run run(shelf()->add_file);
    run->bind_text(1, file);
    run->step();
  }
  return number(file).value();
}

std::optional<DbRecord> SqliteBackend::find(std::string_view file, std::string_view id) {
  const auto number = this->number(file);
  if (!number) return std::nullopt;
  Run run(shelf()->find);
  run->bind(1, *number);
  run->bind_text(2, id);
  if (!run->step()) return std::nullopt;
  // Looked at, for other tools can write to the file too.
  return DbRecord::from_encoded(run->bytes(0));
}

bool SqliteBackend::put(std::string_view file, std::string_view id, const DbRecord& record,
                        const Expected& expected) {
  if (expected.wants_anything() || expected.wants_absence())
    return put(file, id, record, expected.wants_absence());
  Transaction transaction(connection());
  const bool as_expected = expected.holds_for(find(file, id));
  if (as_expected) put(file, id, record, false);
  transaction.commit();
  return as_expected;
}

bool SqliteBackend::put(std::string_view file, std::string_view id, const DbRecord& record, bool only_new) {
  const std::int64_t number = number_for_writing(file);
  const std::string tail = reversed(id);
  const auto held = shelf();
  Run run(only_new ? held->create : held->put);
  run->bind(1, number);
  run->bind_text(2, id);
  run->bind_blob(3, tail);
  run->bind_blob(4, record.encoded());
  run->step();
  return held->connection.changes() > 0;
}

bool SqliteBackend::erase(std::string_view file, std::string_view id, const Expected& expected) {
  if (expected.wants_anything()) return erase(file, id), true;
  Transaction transaction(connection());
  const bool as_expected = expected.holds_for(find(file, id));
  if (as_expected) erase(file, id);
  transaction.commit();
  return as_expected;
}

void SqliteBackend::erase(std::string_view file, std::string_view id) {
  const auto number = this->number(file);
  if (!number) return;
  Run run(shelf()->erase);
  run->bind(1, *number);
  run->bind_text(2, id);
  run->step();
}

void SqliteBackend::scan(std::string_view file, const Narrowing& narrowing, Content content,
                         const Visit& visit) {
  const auto number = this->number(file);
  if (!number) return;
  if (narrowing.kind == Narrowing::Kind::kIdSuffix && !narrowing.text.empty()) {
    return scan_tails(*number, narrowing.text, visit);
  }
  if (narrowing.kind == Narrowing::Kind::kId) {
    const auto record = find(file, narrowing.text);
    if (record) visit({narrowing.text, record->encoded()});
    return;
  }
  const bool by_prefix = narrowing.kind == Narrowing::Kind::kIdPrefix;
  scan_ids(content, *number, by_prefix ? std::string_view(narrowing.text) : "", visit);
}

void SqliteBackend::scan_ids(Content content, std::int64_t file, std::string_view prefix,
                             const Visit& visit) {
  const bool with_records = content != Content::kIdsOnly;
  const auto held = shelf();
  Run run(with_records ? held->records : held->ids);
  run->bind(1, file);
  run->bind_text(2, prefix);
  while (run->step()) {
    const std::string_view id = run->bytes(0);
    if (!id.starts_with(prefix)) return;
    visit({id, with_records ? run->bytes(1) : std::string_view()});
  }
}

void SqliteBackend::scan_tails(std::int64_t file, std::string_view suffix, const Visit& visit) {
  const std::string tail = reversed(suffix);
  const auto held = shelf();
  Run run(held->tails);
  run->bind(1, file);
  run->bind_blob(2, tail);
  while (run->step() && run->bytes(2).starts_with(tail)) visit({run->bytes(0), run->bytes(1)});
}

std::uint64_t SqliteBackend::revision(std::string_view file) {
  constexpr int kRoomForWrites = 40;
  Run run(shelf()->revision);
  run->bind_text(1, file);
  const std::uint64_t written = run->step() ? static_cast<std::uint64_t>(run->number(0)) : 0;
  return written + (undone_ << kRoomForWrites);
}

std::vector<std::string> SqliteBackend::files() {
  std::vector<std::string> names;
  Statement statement(connection(),
                      "SELECT name FROM file WHERE EXISTS (SELECT 1 FROM record WHERE file = number) "
                      "ORDER BY name");
  while (statement.step()) names.emplace_back(statement.bytes(0));
  return names;
}

void SqliteBackend::in_one_change(const std::function<void()>& writes) {
  try {
    Transaction transaction(connection());
    writes();
    transaction.commit();
  } catch (...) {
    // Files that were new in it are gone with it.
    numbers_.clear();
    ++undone_;
    throw;
  }
}

// A statement that is not at its end keeps the view of its connection.
void SqliteBackend::in_one_view(const std::function<void()>& reads) {
  const auto held = shelf();
  Statement view(held->connection, "SELECT 1 FROM sqlite_schema");
  view.step();
  reads();
}

}  // namespace velanor::store::sqlite
