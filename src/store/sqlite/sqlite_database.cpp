#include "velanor/sqlite_database.h"

#include <sqlite3.h>

#include <array>
#include <filesystem>
#include <fstream>

#include "store/checked_writes.h"
#include "store/sqlite/failure.h"
#include "store/sqlite/schema.h"
#include "store/sqlite/sqlite_backend.h"

namespace velanor::store {
namespace {

namespace fs = std::filesystem;

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
  if (code == SQLITE_CORRUPT) from.fail(code);
  if (code != SQLITE_DONE) to.fail(code);
}

std::vector<std::string> damages_of(Connection& connection) {
  std::vector<std::string> damages;
  Statement statement(connection, "PRAGMA integrity_check(20)");
  while (statement.step()) damages.emplace_back(statement.bytes(0));
  if (damages.size() == 1 && damages.front() == "ok") damages.clear();
  return damages;
}

// Opened anew, to be read from the file.
bool is_sound(const std::string& path) try {
  Connection copy(path, sqlite::Missing::kFail, 0);
  return damages_of(copy).empty();
} catch (const sqlite::DamagedError&) {
  return false;
}

// The file that a copy is made in. It goes with this, unless it took its name.
class Copy {
 public:
  explicit Copy(const std::string& path) : path_(path), unfinished_(path + ".partiel") {
    if (fs::exists(path_)) throw taken();
    if (sqlite::create_private(unfinished_)) return;
    throw NameTaken(kStoreFailure, "Le fichier « " + unfinished_ +
                                       " » existe déjà : une sauvegarde est en cours, ou a été interrompue. "
                                       "Attendez qu'elle se termine, ou ôtez ce fichier, puis recommencez.");
  }
  ~Copy() {
    std::error_code ignored;
    for (const char* companion : {"", "-journal", "-wal", "-shm"})
      fs::remove(unfinished_ + companion, ignored);
  }
  Copy(const Copy&) = delete;
  Copy& operator=(const Copy&) = delete;

  const std::string& unfinished() const { return unfinished_; }

  // A second name, where the file system has such, never takes the place of a file that has come up
  // meanwhile.
  void take_name() {
    std::error_code refused;
    fs::create_hard_link(unfinished_, path_, refused);
    if (!refused) return;
    if (fs::exists(path_)) throw taken();
    fs::rename(unfinished_, path_, refused);
    if (refused) throw sqlite::failure(SQLITE_CANTOPEN, path_, "");
  }

 private:
  NameTaken taken() const {
    return {kStoreFailure,
            "Le fichier « " + path_ + " » existe déjà. Donnez un autre nom à la sauvegarde, ou ôtez-le."};
  }

  std::string path_, unfinished_;
};

}  // namespace

SqliteDatabase::SqliteDatabase(const std::string& path, Options options)
    : SqliteDatabase(std::make_unique<SqliteBackend>(path, if_missing(options.missing), options.patience)) {}

SqliteDatabase::SqliteDatabase(std::unique_ptr<SqliteBackend> backend)
    : StoreDatabase(std::move(backend)), backend_(static_cast<SqliteBackend*>(&StoreDatabase::backend())) {}

bool SqliteDatabase::read_only() const { return backend_->connection().access() != sqlite::Access::kWrite; }

void SqliteDatabase::put(std::string_view file, std::string_view id, const DbRecord& record) {
  put_checked(*backend_, file, id, record);
}

std::vector<std::string> SqliteDatabase::files() { return backend_->files(); }

void SqliteDatabase::back_up(const std::string& path, const std::function<void(double)>& progress) {
  Copy file(path);
  {
    Connection copy(file.unfinished(), sqlite::Missing::kFail, 0);
    in_one_view([&] { copy_pages(backend_->connection(), copy, progress); });
  }
  if (!is_sound(file.unfinished())) {
    throw sqlite::DamagedError(kStoreFailure,
                               "La base « " + backend_->connection().path() +
                                   " » est endommagée, elle n'a pas été sauvegardée. Fermez le programme et "
                                   "reprenez la dernière sauvegarde.");
  }
  file.take_name();
}

std::vector<std::string> SqliteDatabase::damages() { return damages_of(backend_->connection()); }

bool SqliteDatabase::is_at(const std::string& path) {
  // Both stand at fixed places in front of every SQLite file.
  constexpr std::string_view kFormat("SQLite format 3\0", 16);
  constexpr std::size_t kIdAt = 68, kIdSize = 4;
  std::array<char, kIdAt + kIdSize> header{};
  std::ifstream in(path, std::ios::binary);
  if (!in.read(header.data(), header.size())) return false;
  std::uint32_t id = 0;
  for (std::size_t i = kIdAt; i < header.size(); ++i) id = id << 8 | static_cast<unsigned char>(header[i]);
  return std::string_view(header.data(), kFormat.size()) == kFormat && id == sqlite::kApplicationId;
}

}  // namespace velanor::store
