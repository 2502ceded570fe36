#include "store/postgres/postgres_backend.h"

#include <chrono>
#include <thread>
#include <utility>

#include "store/postgres/failure.h"
#include "store/postgres/ids.h"

namespace velanor::store::postgres {
namespace {

constexpr std::size_t kLongestId = 2000, kLongestFile = 500;
constexpr std::size_t kLongestAuthor = 400;

constexpr const char* kFind =
    "SELECT s.content FROM velanor.stored s JOIN velanor.file f ON f.number = s.file "
    "WHERE f.name = $1 AND s.id = $2 AND NOT s.deleted";
constexpr const char* kPut = "SELECT velanor.put($1, $2, $3, $4, $5, $6, $7, $8, $9)";
constexpr const char* kIsThere =
    "SELECT EXISTS (SELECT FROM velanor.stored s WHERE s.file = f.number AND s.id = $2 AND s.token = $3) "
    "OR EXISTS (SELECT FROM velanor.history h WHERE h.file = f.number AND h.id = $2 AND h.token = $3) "
    "FROM velanor.file f WHERE f.name = $1";

// The first row is the revision, those behind it are the records, all of one moment; no record where the
// revision is $2 still.
std::string scan_statement(const std::string& content, const std::string& column, const std::string& order) {
  return "WITH f AS MATERIALIZED (SELECT number, revision FROM velanor.file WHERE name = $1) "
         "SELECT revision, NULL::bytea, NULL::bytea FROM f UNION ALL "
         "(SELECT NULL, id, " +
         content +
         " FROM velanor.stored WHERE file = (SELECT number FROM f WHERE revision <> $2) AND NOT deleted "
         "AND " +
         column + " >= $3 AND ($4 IS NULL OR " + column + " < $4)" + order + ")";
}
const std::string kScanIds = scan_statement("NULL::bytea", "id", " ORDER BY id");
const std::string kScanRecords = scan_statement("content", "id", " ORDER BY id");
const std::string kScanTails = scan_statement("content", "tail", "");

// Of so many files the first $1 records each: which file, its revision, id and content. It holds places for
// values, and no value.
std::string load_statement(std::size_t files) {
  std::string sql;
  for (std::size_t i = 0; i < files; ++i) {
    sql.append(i == 0 ? "" : " UNION ALL ").append("(SELECT " + std::to_string(i));
    sql.append("::bigint, f.revision, s.id, s.content FROM velanor.stored s JOIN velanor.file f ");
    sql.append("ON f.number = s.file WHERE f.name = $" + std::to_string(i + 2) +
               " AND NOT s.deleted LIMIT $1)");
  }
  return sql;
}

// One call of `put` for each of so many deletions; it holds places for values, and no value.
std::string erase_statement(std::size_t count) {
  std::string sql = "SELECT ";
  for (std::size_t i = 0; i < count; ++i) {
    const std::string id = std::to_string(2 * i + 4), tail = std::to_string(2 * i + 5);
    sql.append(i == 0 ? "" : ", ").append("velanor.put($1, $").append(id).append(", $").append(tail);
    sql.append(", NULL, 0, ''::bytea, $2, $3, 0)");
  }
  return sql;
}

DbError change_is_broken() {
  return {kStoreFailure,
          "Rien n'a été modifié : une des écritures ou des lectures a échoué, et les autres avec elle. "
          "Recommencez."};
}

DbError outcome_unknown() {
  return {
      kStoreFailure,
      "La liaison avec le serveur s'est coupée pendant l'enregistrement, et il ne répond plus : on ne sait "
      "pas encore si c'est enregistré. Gardez la fiche à l'écran et recommencez dans un moment ; elle ne "
      "sera pas enregistrée deux fois."};
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

void check_sizes(std::string_view file, std::string_view id) {
  if (id.size() <= kLongestId && !file.empty() && file.size() <= kLongestFile) return;
  throw DbError(
      kStoreFailure,
      "L'enregistrement n'a pas été écrit : son identifiant, ou le nom de son fichier, est vide ou trop "
      "long. Vérifiez les codes saisis.");
}

PostgresBackend::PostgresBackend(std::string url, const PostgresDatabase::Options& options)
    : url_(std::move(url)),
      limits_{options.connect_seconds, options.statement, options.patience},
      kept_(options.kept_files),
      newsstand_([this] { take_notices(); }) {
  session();
}

void PostgresBackend::open(std::string_view) {}

void PostgresBackend::set_author(std::string_view name) {
  author_ = clean_text(name);
  if (author_->size() <= kLongestAuthor) return;
  author_->resize(kLongestAuthor);
  author_ = clean_text(*author_);  // what was cut in the middle of a character
}

// Who has not been named writes under the name of the session.
std::string PostgresBackend::author() {
  if (author_) return *author_;
  return clean_text(session().connection().run("SELECT convert_to(session_user, 'UTF8')").bytes(0, 0));
}

// ---- Sessions.

Session& PostgresBackend::session() {
  if (session_ && !session_->connection().alive()) lost();
  if (session_) return *session_;
  auto fresh = std::make_unique<Session>(url_, limits_, round_trips_);
  if (lost_session_ != 0 && fresh->may_write()) fresh->end_other(lost_session_);
  lost_session_ = 0;
  may_write_ = fresh->may_write();
  newsstand_.listen_to(fresh->connection().socket());
  session_ = std::move(fresh);
  if (std::exchange(missed_news_, false)) newsstand_.tell({});
  return *session_;
}

// A server that has just fallen is back in a moment, most often.
Session& PostgresBackend::session_again() {
  using Clock = std::chrono::steady_clock;
  constexpr std::chrono::milliseconds kPause(50);
  const auto end = Clock::now() + std::chrono::seconds(limits_.connect_seconds);
  for (;;) {
    try {
      return session();
    } catch (const ConnectionLost&) {
      if (Clock::now() >= end) throw;
    } catch (const Unreachable&) {
      if (Clock::now() >= end) throw;
    }
    std::this_thread::sleep_for(kPause);
  }
}

// From here on anything may change unheard, which is told when it can be read again.
void PostgresBackend::lost() {
  if (session_ && session_->may_write()) lost_session_ = session_->key();
  session_.reset();
  kept_.clear();
  ++own_revision_;
  newsstand_.listen_to(-1);
  missed_news_ = true;
}

void PostgresBackend::read(const std::function<void(Connection&)>& reads) {
  if (mode_ != Mode::kPlain) return in_transaction(reads);
  on_a_connection(reads);
  take_notices();
}

void PostgresBackend::on_a_connection(const std::function<void(Connection&)>& act) {
  try {
    act(session().connection());
  } catch (const ConnectionLost&) {
    lost();
    act(session().connection());
  }
}

// ---- Reading.

std::optional<DbRecord> PostgresBackend::find(std::string_view file, std::string_view id) {
  if (answers_from_kept(file)) return find_kept(file, id);
  std::optional<DbRecord> found;
  read([&](Connection& connection) { found = find(connection, file, id); });
  // Who reads it knows how the write has ended.
  if (unknown_ && unknown_->file == file && unknown_->id == id) unknown_.reset();
  return found;
}

// Looked at, for other tools can write to the base too.
std::optional<DbRecord> PostgresBackend::find(Connection& connection, std::string_view file,
                                              std::string_view id) {
  const Result found = connection.run(kFind, {file, id});
  return found.rows() == 0 ? std::nullopt : std::optional(DbRecord::from_encoded(found.bytes(0, 0)));
}

std::optional<DbRecord> PostgresBackend::find_kept(std::string_view file, std::string_view id) {
  take_notices();
  if (const auto* known = kept_.find(file, id)) return *known;
  std::optional<DbRecord> found;
  // What is told of while this is read is dropped again behind it.
  read([&](Connection& connection) {
    if (!kept_.is_known(file)) load_kept(connection);
    if (kept_.is_large(file)) kept_.keep(file, id, find(connection, file, id));
    found = *kept_.find(file, id);
  });
  return found;
}

// All at once: what one asks for now is what the next act asks for.
void PostgresBackend::load_kept(Connection& connection) {
  const std::vector<std::string> files = kept_.missing();
  Parameters parameters{std::int64_t{KeptRecords::kMostRecords + 1}};
  for (const std::string& file : files) parameters.emplace_back(file);
  const Result all = connection.run(load_statement(files.size()).c_str(), parameters);
  std::vector<int> counts(files.size());
  for (int row = 0; row < all.rows(); ++row) {
    const auto which = static_cast<std::size_t>(all.number(row, 0));
    kept_.set_revision(files[which], static_cast<std::uint64_t>(all.number(row, 1)));
    ++counts[which];
    kept_.keep(files[which], clean_text(all.bytes(row, 2)), DbRecord::from_encoded(all.bytes(row, 3)));
  }
  for (std::size_t i = 0; i < files.size(); ++i)
    counts[i] > KeptRecords::kMostRecords ? kept_.set_large(files[i]) : kept_.set_complete(files[i]);
}

std::optional<std::uint64_t> PostgresBackend::scan_kept(std::string_view file,
                                                        std::optional<std::uint64_t> seen,
                                                        const Visit& visit) {
  take_notices();
  if (!kept_.is_known(file)) {
    read([&](Connection& connection) { load_kept(connection); });
    // Somebody may have changed it in the very same moment.
    if (!kept_.is_known(file)) return std::nullopt;
  }
  const std::uint64_t revision = own(kept_.revision(file).value_or(0));
  if (seen == revision) return revision;
  if (kept_.is_large(file)) return std::nullopt;
  kept_.visit(file, visit);
  return revision;
}

void PostgresBackend::scan(std::string_view file, const Narrowing& narrowing, Content content,
                           const Visit& visit) {
  scan_if_changed(file, std::nullopt, narrowing, content, visit);
}

std::uint64_t PostgresBackend::scan_if_changed(std::string_view file, std::optional<std::uint64_t> seen,
                                               const Narrowing& narrowing, Content content,
                                               const Visit& visit) {
  if (answers_from_kept(file)) {
    if (const auto revision = scan_kept(file, seen, visit)) return *revision;
  }
  const bool by_tail = narrowing.kind == Narrowing::Kind::kIdSuffix;
  const bool by_start =
      narrowing.kind == Narrowing::Kind::kId || narrowing.kind == Narrowing::Kind::kIdPrefix;
  const std::string from = by_tail ? reversed(narrowing.text) : by_start ? narrowing.text : std::string();
  const auto to = narrowing.kind == Narrowing::Kind::kId ? std::optional(from + '\0') : end_of(from);
  const std::string& sql = by_tail ? kScanTails : content == Content::kIdsOnly ? kScanIds : kScanRecords;
  std::uint64_t found = 0;
  bool visited = false;
  const auto take = [&](const Result& row) {
    if (row.is_null(0, 0)) {
      visited = true;
      return visit({row.bytes(0, 1), row.bytes(0, 2)});
    }
    found = static_cast<std::uint64_t>(row.number(0, 0));
  };
  read([&](Connection& connection) {
    // Begun again, it would visit records twice.
    if (visited) throw ConnectionLost(connection.place());
    connection.stream(sql.c_str(), {file, server_revision(seen), from, std::optional<std::string_view>(to)},
                      take);
    if (kept_.is_large(file)) kept_.set_revision(file, found);
  });
  return own(found);
}

std::uint64_t PostgresBackend::revision(std::string_view file) {
  std::uint64_t found = 0;
  read([&](Connection& connection) {
    const Result row = connection.run("SELECT revision FROM velanor.file WHERE name = $1", {file});
    found = row.rows() == 0 ? 0 : static_cast<std::uint64_t>(row.number(0, 0));
  });
  return own(found);
}

std::int64_t PostgresBackend::server_revision(std::optional<std::uint64_t> own_revision) const {
  constexpr std::uint64_t kAll = (std::uint64_t{1} << kRoomForWrites) - 1;
  if (!own_revision) return -1;
  const std::uint64_t written = *own_revision & kAll;
  return own(written) == *own_revision ? static_cast<std::int64_t>(written) : -1;
}

std::vector<std::string> PostgresBackend::files() {
  std::vector<std::string> names;
  read([&](Connection& connection) {
    names.clear();
    const Result found = connection.run(
        "SELECT name FROM velanor.file WHERE EXISTS "
        "(SELECT FROM velanor.stored WHERE file = number AND NOT deleted) ORDER BY name");
    for (int row = 0; row < found.rows(); ++row) names.emplace_back(found.bytes(row, 0));
  });
  return names;
}

// ---- Writing.

bool PostgresBackend::put(std::string_view file, std::string_view id, const DbRecord& record,
                          const Expected& expected) {
  check_sizes(file, id);
  return write_record(file, id, record.encoded(), expected);
}

bool PostgresBackend::erase(std::string_view file, std::string_view id, const Expected& expected) {
  return write_record(file, id, std::nullopt, expected);
}

// All under the token of the change, so that any of them shows whether it was committed.
void PostgresBackend::erase_each(std::string_view file, const std::vector<std::string>& ids) {
  if (ids.empty()) return;
  const std::string sql = erase_statement(ids.size());
  std::vector<std::string> tails;
  tails.reserve(ids.size());
  for (const std::string& id : ids) tails.push_back(reversed(id));
  Parameters parameters{file, std::optional<std::string_view>(author_), change_};
  for (std::size_t i = 0; i < ids.size(); ++i) parameters.insert(parameters.end(), {ids[i], tails[i]});
  Result answers(nullptr);
  in_transaction([&](Connection& connection) { answers = connection.run(sql.c_str(), parameters); });
  ++own_revision_;
  kept_.drop(file);
  for (std::size_t i = 0; i < ids.size(); ++i) {
    if (static_cast<Answer>(answers.number(0, static_cast<int>(i))) == Answer::kDone)
      last_done_ = Write{std::string(file), ids[i], std::nullopt, change_};
  }
}

bool PostgresBackend::write_record(std::string_view file, std::string_view id,
                                   std::optional<std::string> content, const Expected& expected) {
  refuse_in_view();
  Write write{std::string(file), std::string(id), std::move(content)};
  const Answer answer =
      mode_ == Mode::kChange ? write_in_change(write, expected) : write_surely(write, expected);
  kept_.drop(file);
  return answer != Answer::kConflict;
}

PostgresBackend::Answer PostgresBackend::write_in_change(Write& write, const Expected& expected) {
  Answer answer{};
  write.token = change_;
  in_transaction([&](Connection& connection) { answer = send(connection, write, false, expected); });
  ++own_revision_;
  if (answer == Answer::kDone) last_done_ = std::move(write);
  return answer;
}

// Sent again under the same token until it is known to be done, once. Nothing is unknown of what was never
// sent.
PostgresBackend::Answer PostgresBackend::write_surely(Write& write, const Expected& expected) {
  const bool resumed = unknown_ && unknown_->file == write.file && unknown_->id == write.id &&
                       unknown_->content == write.content;
  write.token = resumed ? unknown_->token : random_number();
  write.again = resumed;
  constexpr int kTries = 3;
  for (int tries = 1;; ++tries) {
    Connection& connection = session_for(write);
    const bool again = std::exchange(write.again, true);
    try {
      const Answer answer = send(connection, write, again, expected);
      unknown_.reset();
      take_notices();
      return answer;
    } catch (const ConnectionLost&) {
      lost();
      if (tries == kTries) leave_unknown(write);
    }
  }
}

Connection& PostgresBackend::session_for(const Write& write) {
  if (!write.again) return session().connection();
  try {
    return session_again().connection();
  } catch (const DbError&) {
    leave_unknown(write);
  }
}

void PostgresBackend::leave_unknown(const Write& write) {
  unknown_ = write;
  throw outcome_unknown();
}

PostgresBackend::Answer PostgresBackend::send(Connection& connection, const Write& write, bool again,
                                              const Expected& expected) {
  const std::int64_t kind = expected.wants_anything() ? 0 : expected.wants_absence() ? 1 : 2;
  const auto view = [](const std::optional<std::string>& text) {
    return std::optional<std::string_view>(text);
  };
  const Result answer =
      connection.run(kPut, {write.file, write.id, reversed(write.id), view(write.content), kind,
                            expected.content(), view(author_), write.token, std::int64_t{again}});
  return static_cast<Answer>(answer.number(0, 0));
}

void PostgresBackend::write(const std::function<void(Connection&)>& writes) {
  refuse_in_view();
  if (mode_ != Mode::kChange) return in_one_change([&] { write(writes); });
  in_transaction(writes);
  ++own_revision_;
  wrote_otherwise_ = true;
}

// ---- Changes and views.

void PostgresBackend::refuse_in_view() const {
  if (mode_ != Mode::kView) return;
  throw DbError(
      kStoreFailure,
      "Rien n'a été modifié : la base est lue à un instant donné, et on ne peut pas y écrire pendant ce "
      "temps. Recommencez.");
}

// Unless it comes to its end, what belongs to it has failed as a whole.
void PostgresBackend::in_transaction(const std::function<void(Connection&)>& act) {
  if (broken_) throw change_is_broken();
  broken_ = true;
  act(session_->connection());
  broken_ = false;
}

void PostgresBackend::in_one_change(const std::function<void()>& writes) {
  if (mode_ == Mode::kChange) return writes();
  refuse_in_view();
  change_ = random_number();
  try {
    transaction("BEGIN ISOLATION LEVEL READ COMMITTED", Mode::kChange, writes);
  } catch (...) {
    // What was read inside it must not pass for what comes after.
    ++own_revision_;
    throw;
  }
  kept_.clear();
}

void PostgresBackend::in_one_view(const std::function<void()>& reads) {
  if (mode_ != Mode::kPlain) return reads();
  transaction("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY", Mode::kView, reads);
}

void PostgresBackend::transaction(const char* begin, Mode mode, const std::function<void()>& acts) {
  on_a_connection([&](Connection& connection) { connection.run(begin); });
  broken_ = false;
  last_done_.reset();
  wrote_otherwise_ = false;
  {
    mode_ = mode;
    const OnExit plain([&] { mode_ = Mode::kPlain; });
    try {
      acts();
      if (broken_) throw change_is_broken();
    } catch (...) {
      roll_back();
      throw;
    }
  }
  commit();
}

void PostgresBackend::roll_back() {
  try {
    session_->connection().run("ROLLBACK");
  } catch (const DbError&) {
    // The server does it by itself when the connection goes.
    lost();
  }
}

void PostgresBackend::commit() {
  try {
    const bool done = session_->connection().run("COMMIT").tag() == "COMMIT";
    if (!done) throw change_is_broken();
  } catch (const ConnectionLost&) {
    lost();
    if (wrote_otherwise_ || (last_done_ && !was_committed())) throw;
  }
  take_notices();
}

bool PostgresBackend::was_committed() {
  try {
    const Result found =
        session_again().connection().run(kIsThere, {last_done_->file, last_done_->id, change_});
    return found.rows() == 1 && found.number(0, 0) != 0;
  } catch (const DbError&) {
    throw outcome_unknown();
  }
}

// ---- What others write.

void PostgresBackend::take_notices() {
  if (mode_ != Mode::kPlain || !session_) return;
  for (const Change& change : session_->take_notices()) {
    change.file.empty() ? kept_.clear() : kept_.drop(change.file);
    newsstand_.tell(change);
  }
  if (!session_->connection().alive()) lost();
}

}  // namespace velanor::store::postgres
