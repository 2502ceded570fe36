#include "store/sqlite/sqlite_database.h"

#include <sqlite3.h>

#include <filesystem>

#include "store/sqlite/failure.h"
#include "store/sqlite/sqlite_backend.h"

namespace velanor::store {
namespace {

using sqlite::Connection;
using sqlite::SqliteBackend;
using sqlite::Statement;

sqlite::Missing if_missing(SqliteDatabase::Missing missing) {
  return missing == SqliteDatabase::Missing::kCreate ? sqlite::Missing::kCreate : sqlite::Missing::kFail;
}

// Copies all pages within one view of the source, so that writers neither wait nor disturb it.
void copy_pages(Connection& from, Connection& to, const std::function<void(double)>& progress) {
  constexpr int kPages = 4096;
  sqlite3_backup* backup = sqlite3_backup_init(to.handle(), "main", from.handle(), "main");
  if (backup == nullptr) to.fail(sqlite3_errcode(to.handle()));
  int code = SQLITE_OK;
  while (code == SQLITE_OK) {
    code = sqlite3_backup_step(backup, kPages);
    const double pages = sqlite3_backup_pagecount(backup);
    if (progress && pages > 0) progress(1.0 - sqlite3_backup_remaining(backup) / pages);
  }
  sqlite3_backup_finish(backup);
  if (code != SQLITE_DONE) to.fail(code);
}

}  // namespace

SqliteDatabase::SqliteDatabase(const std::string& path, Options options)
    : SqliteDatabase(std::make_unique<SqliteBackend>(path, if_missing(options.missing), options.patience),
                     std::move(options.dictionary)) {}

SqliteDatabase::SqliteDatabase(std::unique_ptr<SqliteBackend> backend, select::Dictionary dictionary)
    : StoreDatabase(std::move(backend), std::move(dictionary)),
      backend_(static_cast<SqliteBackend*>(&StoreDatabase::backend())) {}

void SqliteDatabase::in_one_change(const std::function<void()>& writes) { backend_->in_one_change(writes); }

// A statement that is not at its end keeps the view of its connection.
void SqliteDatabase::in_one_view(const std::function<void()>& reads) {
  Statement view(backend_->connection(), "SELECT 1 FROM sqlite_schema");
  view.step();
  reads();
}

void SqliteDatabase::put(std::string_view file, std::string_view id, const DbRecord& record) {
  put_checked(*backend_, file, id, record);
}

std::vector<std::string> SqliteDatabase::files() { return backend_->files(); }

void SqliteDatabase::back_up(const std::string& path, const std::function<void(double)>& progress) {
  namespace fs = std::filesystem;
  if (fs::exists(path)) {
    throw DbError(kStoreFailure, "Le fichier « " + path +
                                     " » existe déjà. Donnez un autre nom à la sauvegarde, ou ôtez-le.");
  }
  const std::string unfinished = path + ".partiel";
  std::error_code ignored;
  fs::remove(unfinished, ignored);
  try {
    {
      Connection copy(unfinished, sqlite::Missing::kCreate, 0);
      in_one_view([&] { copy_pages(backend_->connection(), copy, progress); });
    }
    fs::rename(unfinished, path);
  } catch (const fs::filesystem_error&) {
    throw sqlite::failure(SQLITE_CANTOPEN, path, "");
  } catch (...) {
    fs::remove(unfinished, ignored);
    throw;
  }
}

std::vector<std::string> SqliteDatabase::damages() {
  std::vector<std::string> damages;
  Statement statement(backend_->connection(), "PRAGMA integrity_check(20)");
  while (statement.step()) damages.emplace_back(statement.bytes(0));
  if (damages.size() == 1 && damages.front() == "ok") damages.clear();
  return damages;
}

}  // namespace velanor::store
