#include "store/sqlite/connection.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <utility>

#include "store/sqlite/failure.h"

namespace velanor::store::sqlite {
namespace {

bool may(int what, const std::string& path) {
  return ::faccessat(AT_FDCWD, path.c_str(), what, AT_EACCESS) == 0;
}

bool has_log(const std::string& path) { return may(F_OK, path + "-wal"); }

Access access_to(const std::string& path) {
  const std::filesystem::path folder = std::filesystem::path(path).parent_path();
  const bool writable = may(W_OK, path) && may(W_OK, folder.empty() ? "." : folder.string());
  if (writable || !may(F_OK, path)) return Access::kWrite;
  return has_log(path) ? Access::kReadAlong : Access::kReadAlone;
}

// As SQLite takes a name with options.
std::string as_uri(const std::string& path) {
  std::string uri = "file:";
  for (const char c : path) {
    if (c == '%' || c == '?' || c == '#') {
      constexpr const char* kDigits = "0123456789ABCDEF";
      uri += {'%', kDigits[c / 16], kDigits[c % 16]};
    } else {
      uri += c;
    }
  }
  return uri;
}

int open_handle(const std::string& path, Access access, sqlite3** handle) {
  constexpr int kFlags = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
  if (access == Access::kWrite)
    return sqlite3_open_v2(path.c_str(), handle, kFlags | SQLITE_OPEN_READWRITE, nullptr);
  if (access == Access::kReadAlong)
    return sqlite3_open_v2(path.c_str(), handle, kFlags | SQLITE_OPEN_READONLY, nullptr);
  return sqlite3_open_v2((as_uri(path) + "?immutable=1").c_str(), handle,
                         kFlags | SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, nullptr);
}

// A null pointer would bind NULL, which is not the empty text.
const char* start_of(std::string_view bytes) { return bytes.empty() ? "" : bytes.data(); }

}  // namespace

// SQLite would give a new file the rights that the user's mask allows; its companions get the
// rights of the file.
bool create_private(const std::string& path) {
  const int file = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (file < 0 && errno != EEXIST) throw failure(errno == ENOSPC ? SQLITE_FULL : SQLITE_CANTOPEN, path, "");
  if (file >= 0) ::close(file);
  return file >= 0;
}

void Statement::Finalize::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

sqlite3_stmt* Statement::prepared() {
  if (!statement_) {
    sqlite3_stmt* statement = nullptr;
    check(sqlite3_prepare_v3(connection_->handle(), sql_.data(), static_cast<int>(sql_.size()),
                             SQLITE_PREPARE_PERSISTENT, &statement, nullptr));
    statement_.reset(statement);
  }
  return statement_.get();
}

void Statement::check(int code) { connection_->check(code); }

void Statement::bind(int parameter, std::int64_t number) {
  check(sqlite3_bind_int64(prepared(), parameter, number));
}

void Statement::bind_text(int parameter, std::string_view text) {
  check(sqlite3_bind_text64(prepared(), parameter, start_of(text), text.size(), SQLITE_STATIC, SQLITE_UTF8));
}

void Statement::bind_blob(int parameter, std::string_view bytes) {
  check(sqlite3_bind_blob64(prepared(), parameter, start_of(bytes), bytes.size(), SQLITE_STATIC));
}

bool Statement::step() {
  const int code = sqlite3_step(prepared());
  if (code != SQLITE_ROW && code != SQLITE_DONE) check(code);
  return code == SQLITE_ROW;
}

std::int64_t Statement::number(int column) const { return sqlite3_column_int64(statement_.get(), column); }

std::string_view Statement::bytes(int column) const {
  const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement_.get(), column));
  if (bytes == nullptr) return {};
  return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column))};
}

bool Statement::is_null(int column) const {
  return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL;
}

// What it returns has been said by the step already.
void Statement::reset() {
  if (!statement_) return;
  sqlite3_reset(statement_.get());
  // What the next run does not bind is null, not what the last one had.
  sqlite3_clear_bindings(statement_.get());
}

void Connection::Close::operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }

Connection::Stamp Connection::stamp_of(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return {};
  return {static_cast<std::int64_t>(status.st_dev), static_cast<std::int64_t>(status.st_ino), status.st_size,
          status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

Connection::Connection(std::string path, Missing missing, int patience)
    : path_(std::move(path)), patience_(patience) {
  if (missing == Missing::kCreate) create_private(path_);
  access_ = access_to(path_);
  stamp_ = stamp_of(path_);
  sqlite3* handle = nullptr;
  const int code = open_handle(path_, access_, &handle);
  handle_.reset(handle);
  check(code);
  int other_file = 0;
  sqlite3_file_control(handle, "main", SQLITE_FCNTL_HAS_MOVED, &other_file);
  if (other_file != 0) fail(SQLITE_CANTOPEN);
  sqlite3_busy_timeout(handle, patience);
  // The file may come from anyone: what is written in its schema may not do more than plain SQL.
  sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0, nullptr);
  run("PRAGMA cell_size_check = 1");
  // As long as it is needed a log may be longer.
  run("PRAGMA journal_size_limit = 67108864");
}

bool Connection::outdated() const {
  return access_ == Access::kReadAlone && (has_log(path_) || stamp_of(path_) != stamp_);
}

bool Connection::moved() const {
  if (!same_file(stamp_of(path_), stamp_)) return true;
  const Stamp log = stamp_of(path_ + "-wal");
  if (log_ == Stamp{}) log_ = log;
  return !same_file(log, log_);
}

void Connection::run(const char* sql) { check(sqlite3_exec(handle(), sql, nullptr, nullptr, nullptr)); }

std::int64_t Connection::number(std::string_view sql) {
  Statement statement(*this, sql);
  return statement.step() ? statement.number(0) : 0;
}

std::string Connection::text(std::string_view sql) {
  Statement statement(*this, sql);
  return statement.step() ? std::string(statement.bytes(0)) : std::string();
}

int Connection::changes() const { return sqlite3_changes(handle_.get()); }

bool Connection::in_transaction() const { return sqlite3_get_autocommit(handle()) == 0; }

void Connection::fail(int code) {
  const DbError error = failure(code, path_, handle_ ? sqlite3_errmsg(handle()) : sqlite3_errstr(code));
  constexpr int kPrimaryCode = 0xFF;
  if ((code & kPrimaryCode) == SQLITE_CORRUPT) throw DamagedError(error.number(), error.what());
  throw error;
}

Transaction::Transaction(Connection& connection)
    : connection_(connection.in_transaction() ? nullptr : &connection) {
  // At once with the right to write, so that waiting for others happens here and nowhere else.
  if (connection_ != nullptr) connection_->run("BEGIN IMMEDIATE");
}

Transaction::~Transaction() {
  // Some failures have rolled back already.
  if (connection_ == nullptr || !connection_->in_transaction()) return;
  sqlite3_exec(connection_->handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Transaction::commit() {
  if (connection_ == nullptr) return;
  connection_->run("COMMIT");
  connection_ = nullptr;
}

}  // namespace velanor::store::sqlite
