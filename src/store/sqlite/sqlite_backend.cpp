#include "store/sqlite/sqlite_backend.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <utility>

#include "store/sqlite/place.h"
#include "store/sqlite/row_keeper.h"
#include "store/sqlite/row_sum.h"
#include "store/sqlite/schema.h"
#include "store/sqlite/sqlite_history.h"

namespace velanor::store::sqlite {
namespace {

std::string reversed(std::string_view id) { return {id.rbegin(), id.rend()}; }

// What the checksum of a record is over, and the checksum; then what else is asked for.
constexpr int kStoredColumns = 5;
std::string select(const char* what) {
  return std::string("SELECT content, version, author, time, sum ") + what;
}

std::string user_of_the_system() {
  const passwd* user = getpwuid(geteuid());
  return user == nullptr ? std::to_string(geteuid()) : clean_text(user->pw_name);
}

Connection opened(const std::string& path, Missing missing, int patience) {
  refuse_unsafe_place(path);
  Connection connection(path, missing, patience);
  prepare(connection);
  return connection;
}

std::string day_of(std::int64_t moment) {
  if (moment == 0) return "début";
  const std::time_t time = moment;
  std::tm local{};
  localtime_r(&time, &local);
  char text[32];
  return {text, std::strftime(text, sizeof text, "%d/%m/%Y", &local)};
}

DbError change_is_broken(const std::string& path) {
  return {kStoreFailure, "La base « " + path +
                             " » n'a pas été modifiée : une des écritures a échoué, et les autres avec elle. "
                             "Recommencez."};
}

// What is written to a file that has no name any more is gone with the program.
void refuse_moved(const Connection& connection, const std::string& what_was_done) {
  if (connection.access() != Access::kWrite || !connection.moved()) return;
  throw DbError(kStoreFailure,
                "La base « " + connection.path() +
                    " » n'est plus à sa place : son fichier a été déplacé, supprimé ou remplacé "
                    "pendant qu'il était ouvert. " +
                    what_was_done + ". Fermez le programme, remettez le fichier, puis recommencez.");
}

// Above the revision that the file tells stand the changes that were undone here.
constexpr int kRoomForWrites = 40;
std::int64_t told_by_the_file(std::uint64_t revision) {
  return static_cast<std::int64_t>(revision & ((std::uint64_t{1} << kRoomForWrites) - 1));
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
      find(connection, select("FROM record WHERE file = ?1 AND id = ?2")),
      ids(connection, "SELECT id FROM record WHERE file = ?1 AND id >= ?2 ORDER BY id"),
      records(connection, select(", id FROM record WHERE file = ?1 AND id >= ?2 ORDER BY id")),
      tails(connection, select(", id, tail FROM record WHERE file = ?1 AND tail >= ?2 ORDER BY tail")),
      number(connection, "SELECT number FROM file WHERE name = ?1"),
      revision(connection, "SELECT revision FROM file WHERE name = ?1") {}

SqliteBackend::SqliteBackend(std::string path, Missing missing, int patience, Clock clock)
    : path_(std::move(path)),
      patience_(patience),
      shelf_(std::make_shared<Shelf>(path_, missing, patience)),
      clock_(std::move(clock)) {}

// Looking up the user takes as long as opening the file.
const std::string& SqliteBackend::author() {
  if (!author_) author_ = user_of_the_system();
  return *author_;
}

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
  return DbRecord::from_encoded(sound_content(*run, {file, *number}, id));
}

bool SqliteBackend::put(std::string_view file, std::string_view id, const DbRecord& record,
                        const Expected& expected) {
  bool as_expected = true;
  write([&](RecordWriter& writer) {
    const auto number = this->number(file);
    const auto current = number ? writer.current(*number, id) : std::nullopt;
    as_expected = holds(expected, current, file, id);
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
    as_expected = holds(expected, current, file, id);
    if (as_expected && current) writer.erase(*number, id, *current, hand());
  });
  return as_expected;
}

void SqliteBackend::lay_down(std::string_view file, std::string_view id,
                             const std::vector<Version>& versions) {
  write([&](RecordWriter& writer) {
    const std::int64_t number = number_for_writing(writer, file);
    for (std::size_t i = 0; i < versions.size(); ++i) {
      const Version& version = versions[i];
      StoredVersion row{number,         id,           static_cast<std::int64_t>(version.number),
                        version.author, version.time, std::nullopt};
      if (version.record) row.content = version.record->encoded();
      const bool last = i + 1 == versions.size();
      writer.lay_down(row, last ? std::nullopt : std::optional(versions[i + 1].time));
    }
  });
}

bool SqliteBackend::holds(const Expected& expected, const std::optional<RecordWriter::Current>& current,
                          std::string_view file, std::string_view id) {
  if (!current || expected.wants_absence())
    return expected.wants_anything() || !current == expected.wants_absence();
  if (!current->sound && !expected.wants_anything()) throw damaged(file, id);
  return expected.wants_anything() || expected.holds_for(DbRecord::from_encoded(current->content));
}

std::string_view SqliteBackend::sound_content(const Statement& row, const File& file, std::string_view id) {
  const std::string_view content = row.bytes(0);
  // A file of the first version that may only be read has no checksums.
  if (row.is_null(4)) return content;
  const std::int64_t sum = row_sum({file.number, id, row.number(1), row.bytes(2), row.number(3), content});
  if (sum != row.number(4)) throw damaged(file.name, id);
  return content;
}

DamagedRecord SqliteBackend::damaged(std::string_view file, std::string_view id) {
  std::string sentence = "L'enregistrement « " + clean_text(id) + " » du fichier ";
  sentence.append(file).append(" est endommagé dans la base « ").append(path_).append(" ». ");
  const auto versions = SqliteHistory(*this).versions(file, id);
  const auto sound = std::find_if(versions.rbegin(), versions.rend(),
                                  [](const Version& version) { return version.sound && version.record; });
  if (sound == versions.rend()) {
    return {kStoreFailure,
            sentence + "Aucune version saine n'en est gardée : reprenez la dernière sauvegarde."};
  }
  sentence += "La version du " + day_of(sound->time) + " est saine : velanorctl restore-version ";
  sentence.append(file).append(" ").append(clean_text(id)).append(" ").append(std::to_string(sound->number));
  return {kStoreFailure, sentence.append(" --store ").append(path_)};
}

// A write that fails may have rolled everything back, or have been half done: what the change wrote before
// must not stay without it, nor what it goes on to write.
void SqliteBackend::write(const std::function<void(RecordWriter&)>& act) {
  const auto write_one = [&] {
    const auto held = shelf();
    if (!held->writer) held->writer.emplace(held->connection);
    have_checkpoints(*held);
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
    return scan_tails({file, *number}, narrowing.text, visit);
  }
  if (narrowing.kind == Narrowing::Kind::kId) {
    const auto record = find(file, narrowing.text);
    if (record) visit({narrowing.text, record->encoded()});
    return;
  }
  const bool by_prefix = narrowing.kind == Narrowing::Kind::kIdPrefix;
  scan_ids(content, {file, *number}, by_prefix ? std::string_view(narrowing.text) : "", visit);
}

void SqliteBackend::scan_ids(Content content, const File& file, std::string_view prefix, const Visit& visit) {
  const bool with_records = content != Content::kIdsOnly;
  const auto held = shelf();
  Run run(with_records ? held->records : held->ids);
  run->bind(1, file.number);
  run->bind_text(2, prefix);
  while (run->step()) {
    const std::string_view id = run->bytes(with_records ? kStoredColumns : 0);
    if (!id.starts_with(prefix)) return;
    visit({id, with_records ? sound_content(*run, file, id) : std::string_view()});
  }
}

void SqliteBackend::scan_tails(const File& file, std::string_view suffix, const Visit& visit) {
  const std::string tail = reversed(suffix);
  const auto held = shelf();
  Run run(held->tails);
  run->bind(1, file.number);
  run->bind_blob(2, tail);
  while (run->step() && run->bytes(kStoredColumns + 1).starts_with(tail)) {
    const std::string_view id = run->bytes(kStoredColumns);
    visit({id, sound_content(*run, file, id)});
  }
}

std::uint64_t SqliteBackend::revision(std::string_view file) {
  Run run(shelf()->revision);
  run->bind_text(1, file);
  const std::uint64_t written = run->step() ? static_cast<std::uint64_t>(run->number(0)) : 0;
  return written + (undone_ << kRoomForWrites);
}

std::optional<std::uint64_t> SqliteBackend::changes_since(std::string_view file, std::uint64_t seen,
                                                          const VisitChange& visit) {
  const std::uint64_t now = revision(file);
  if (now == seen) return now;
  const auto number = this->number(file);
  if (!number || seen >> kRoomForWrites != undone_ || seen > now) return std::nullopt;
  const auto ids = changed_ids(*number, told_by_the_file(seen), told_by_the_file(now));
  if (!ids) return std::nullopt;
  for (const std::string& id : *ids) {
    const auto record = find(file, id);
    visit({id, record ? std::optional<std::string_view>(record->encoded()) : std::nullopt});
  }
  return now;
}

std::optional<std::set<std::string>> SqliteBackend::changed_ids(std::int64_t number, std::int64_t seen,
                                                                std::int64_t now) {
  constexpr std::int64_t kRemembered = 1024;
  if (now - seen > kRemembered) return std::nullopt;
  const auto held = shelf();
  if (!held->changed)
    held->changed.emplace(held->connection, "SELECT revision, id FROM changed WHERE slot = ?1");
  std::set<std::string> ids;
  for (std::int64_t revision = seen + 1; revision <= now; ++revision) {
    Run run(*held->changed);
    run->bind(1, number * kRemembered + revision % kRemembered);
    if (!run->step() || run->number(0) != revision) return std::nullopt;
    ids.emplace(run->bytes(1));
  }
  return ids;
}

std::optional<KeptRows> SqliteBackend::kept_rows(std::string_view file, std::string_view name) {
  const auto number = this->number(file);
  auto rows = number ? RowKeeper(shelf()->connection).rows(*number, name) : std::nullopt;
  if (rows) rows->revision += undone_ << kRoomForWrites;
  return rows;
}

// Only what is stored for good, and only where writing waits for nobody.
void SqliteBackend::keep_rows(std::string_view file, std::string_view name, const KeptRows& rows) {
  const auto held = shelf();
  const auto number = this->number(file);
  if (!number || in_change_ || in_view_ || held->connection.access() != Access::kWrite) return;
  if (held->connection.moved()) return;
  have_checkpoints(*held);
  RowKeeper(held->connection)
      .keep(*number, name, {static_cast<std::uint64_t>(told_by_the_file(rows.revision)), rows.bytes});
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
    const auto held = shelf();
    refuse_moved(held->connection, "Rien n'a été écrit");
    Transaction transaction(held->connection);
    writes();
    transaction.commit();
    refuse_moved(held->connection, "Ce qui vient d'être écrit est perdu");
  } catch (...) {
    // Files that were new in it are gone with it.
    numbers_.clear();
    ++undone_;
    throw;
  }
}

void SqliteBackend::end_checkpoints() { shelf()->checkpointer.reset(); }

// A statement that is not at its end keeps the view of its connection.
void SqliteBackend::in_one_view(const std::function<void()>& reads) {
  const auto held = shelf();
  const bool writable = held->connection.access() == Access::kWrite;
  if (writable) have_checkpoints(*held);
  const bool outermost = !std::exchange(in_view_, true);
  const OnExit gone([&] {
    if (outermost) in_view_ = false;
    if (writable) held->checkpointer->reader_gone();
  });
  Statement view(held->connection, "SELECT 1 FROM sqlite_schema");
  view.step();
  reads();
}

}  // namespace velanor::store::sqlite
