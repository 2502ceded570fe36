#include "store/sqlite/sqlite_backend.h"

#include <pwd.h>
#include <unistd.h>

#include <utility>

#include "store/sqlite/schema.h"

namespace velanor::store::sqlite {
namespace {

std::string reversed(std::string_view id) { return {id.rbegin(), id.rend()}; }

std::string user_of_the_system() {
  const passwd* user = getpwuid(geteuid());
  return user == nullptr ? std::to_string(geteuid()) : clean_text(user->pw_name);
}

Connection opened(const std::string& path, Missing missing, int patience) {
  Connection connection(path, missing, patience);
  prepare(connection);
  return connection;
}

// Whether what stands there is as expected.
bool holds(const Expected& expected, const std::optional<RecordWriter::Current>& current) {
  if (!current) return expected.holds_for(std::nullopt);
  // A damaged record is none that anybody can have read.
  return expected.holds_for(current->sound ? DbRecord::from_encoded(current->content) : DbRecord());
}

DbError change_is_broken(const std::string& path) {
  return {kStoreFailure, "La base « " + path +
                             " » n'a pas été modifiée : une des écritures a échoué, et les autres avec elle. "
                             "Recommencez."};
}

// A mode that ends however its scope is left.
template <class Act>
class OnExit {
 public:
  explicit OnExit(Act act) : act_(std::move(act)) {}
  ~OnExit() { act_(); }
  OnExit(const OnExit&) = delete;
  OnExit& operator=(const OnExit&) = delete;

 private:
  Act act_;
};

}  // namespace

SqliteBackend::Shelf::Shelf(const std::string& path, Missing missing, int patience)
    : connection(opened(path, missing, patience)),
      find(connection, "SELECT content FROM record WHERE file = ?1 AND id = ?2"),
      ids(connection, "SELECT id FROM record WHERE file = ?1 AND id >= ?2 ORDER BY id"),
      records(connection, "SELECT id, content FROM record WHERE file = ?1 AND id >= ?2 ORDER BY id"),
      tails(connection, "SELECT id, content, tail FROM record WHERE file = ?1 AND tail >= ?2 ORDER BY tail"),
      number(connection, "SELECT number FROM file WHERE name = ?1"),
      revision(connection, "SELECT revision FROM file WHERE name = ?1") {}

SqliteBackend::SqliteBackend(std::string path, Missing missing, int patience, Clock clock)
    : path_(std::move(path)),
      patience_(patience),
      shelf_(std::make_shared<Shelf>(path_, missing, patience)),
      clock_(std::move(clock)),
      author_(user_of_the_system()) {}

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

std::int64_t SqliteBackend::number_for_writing(RecordWriter& writer, std::string_view file) {
  if (const auto known = number(file)) return *known;
  writer.add_file(file);
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
  bool as_expected = true;
  write([&](RecordWriter& writer) {
    const auto number = this->number(file);
    const auto current = number ? writer.current(*number, id) : std::nullopt;
    as_expected = holds(expected, current);
    if (!as_expected || (current && current->sound && current->content == record.encoded())) return;
    writer.put(number_for_writing(writer, file), id, record.encoded(), current, hand());
  });
  return as_expected;
}

bool SqliteBackend::erase(std::string_view file, std::string_view id, const Expected& expected) {
  bool as_expected = true;
  write([&](RecordWriter& writer) {
    const auto number = this->number(file);
    const auto current = number ? writer.current(*number, id) : std::nullopt;
    as_expected = holds(expected, current);
    if (as_expected && current) writer.erase(*number, id, *current, hand());
  });
  return as_expected;
}

// A write that fails may have rolled everything back, or have been half done: what the change wrote before
// must not stay without it, nor what it goes on to write.
void SqliteBackend::write(const std::function<void(RecordWriter&)>& act) {
  const auto write_one = [&] {
    const auto held = shelf();
    if (!held->writer) held->writer.emplace(held->connection);
    act(*held->writer);
  };
  if (!in_change_) return run_change(write_one);
  if (broken_) throw change_is_broken(path_);
  broken_ = true;
  write_one();
  broken_ = false;
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
  if (in_change_) return writes();
  in_change_ = true;
  broken_ = false;
  const OnExit no_longer([&] { in_change_ = false; });
  run_change([&] {
    writes();
    if (broken_) throw change_is_broken(path_);
  });
}

void SqliteBackend::run_change(const std::function<void()>& writes) {
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
