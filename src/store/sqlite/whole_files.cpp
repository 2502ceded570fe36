#include "store/sqlite/whole_files.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>

#include "store/sqlite/examination.h"
#include "store/sqlite/failure.h"
#include "store/sqlite/place.h"
#include "store/sqlite/schema.h"
#include "store/unfinished_file.h"
#include "velanor/sqlite_database.h"

namespace velanor::store::sqlite {
namespace {

namespace fs = std::filesystem;

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

// Opened anew, to be read from the file.
bool is_sound(const std::string& path) try {
  Connection copy(path, Missing::kFail, 0);
  return damages_of(copy).empty();
} catch (const DamagedError&) {
  return false;
}

bool is_there(const std::string& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0;
}

NameTaken taken(const std::string& path) {
  return {kStoreFailure, "Le fichier « " + path + " » existe déjà. Donnez un autre nom, ou ôtez-le."};
}

DbError not_restored(const std::string& path, const std::string& why) {
  return {kStoreFailure, "La base « " + path + " » n'a pas été remplacée : " + why};
}

// Nobody can open a database file, and nobody has it open, while this lives. Whoever has a connection holds
// a lock among these bytes.
class Seclusion {
 public:
  explicit Seclusion(const std::string& path) : file_(::open(path.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC)) {
    constexpr off_t kFirstLock = 0x40000000, kLocks = 512;
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = kFirstLock;
    lock.l_len = kLocks;
    if (file_ >= 0 && ::fcntl(file_, F_OFD_SETLK, &lock) == 0) return;
    const bool opened = file_ >= 0;
    if (opened) ::close(file_);
    throw not_restored(path, opened ? "un programme s'en sert. Fermez tous les programmes, puis recommencez."
                                    : "elle ne peut pas être ouverte. Vérifiez votre droit d'y écrire.");
  }
  ~Seclusion() { ::close(file_); }
  Seclusion(const Seclusion&) = delete;
  Seclusion& operator=(const Seclusion&) = delete;

 private:
  int file_;
};

std::string free_name_beside(const std::string& path) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char moment[32];
  std::strftime(moment, sizeof moment, "%Y%m%d-%H%M%S", &local);
  const std::string name = path + ".avant-" + moment;
  for (int n = 1;; ++n) {
    const std::string candidate = n == 1 ? name : name + "-" + std::to_string(n);
    if (!is_there(candidate)) return candidate;
  }
}

// The log goes with its file: what is only in it is not lost.
void set_aside(const std::string& path, const std::string& aside) {
  fs::create_hard_link(path, aside);
  std::error_code none;
  fs::rename(path + "-wal", aside + "-wal", none);
  fs::remove(path + "-shm", none);
}

// So that nothing is left in the log, where the file is sound enough for that.
void settle_if_sound(const std::string& path) try {
  Connection old(path, Missing::kFail, 0);
  settle(old);
} catch (const DbError&) {
}

void copy_backup(const std::string& backup, const std::string& to) {
  Connection from(backup, Missing::kFail, 0);
  if (from.number("PRAGMA application_id") != kApplicationId) throw failure(SQLITE_NOTADB, backup, "");
  Connection copy(to, Missing::kFail, 0);
  copy_pages(from, copy, {});
}

}  // namespace

void settle(Connection& connection) {
  Statement statement(connection, "PRAGMA wal_checkpoint(TRUNCATE)");
  // Whether it could not be done is an answer too.
  if (statement.step() && statement.number(0) != 0) connection.fail(SQLITE_BUSY);
  while (statement.step()) continue;
}

void make_new_file(const std::string& path, const std::function<bool(const std::string&)>& fill) {
  if (is_there(path)) throw taken(path);
  UnfinishedFile file(path);
  if (!fill(file.path())) return;
  std::error_code none;
  if (fs::file_size(file.path() + "-wal", none) > 0 && !none) throw failure(SQLITE_IOERR, path, "");
  if (!file.complete_if_free()) throw taken(path);
}

void copy_to_new_file(Connection& from, const std::string& path,
                      const std::function<void(double)>& progress) {
  make_new_file(path, [&](const std::string& unfinished) {
    {
      Connection copy(unfinished, Missing::kFail, 0);
      copy_pages(from, copy, progress);
    }
    if (is_sound(unfinished)) return true;
    throw DamagedError(kStoreFailure, "La base « " + from.path() +
                                          " » est endommagée, elle n'a pas été sauvegardée. Fermez le "
                                          "programme et reprenez la dernière sauvegarde.");
  });
}

std::string put_in_place(const std::string& backup, const std::string& path) {
  refuse_unsafe_place(path);
  UnfinishedFile file(path);
  copy_backup(backup, file.path());
  if (!is_sound(file.path()))
    throw DamagedError(
        kStoreFailure,
        not_restored(path, "la sauvegarde « " + backup + " » est endommagée. Prenez-en une autre.").what());
  if (!is_there(path)) {
    if (!file.complete_if_free()) throw taken(path);
    return {};
  }
  settle_if_sound(path);
  const Seclusion alone(path);
  std::string aside = free_name_beside(path);
  set_aside(path, aside);
  file.complete();
  return aside;
}

}  // namespace velanor::store::sqlite
