#include "store/sqlite/whole_files.h"

#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>
#include <memory>

#include "store/sqlite/examination.h"
#include "store/sqlite/failure.h"
#include "store/sqlite/place.h"
#include "store/sqlite/raw_file.h"
#include "store/sqlite/schema.h"
#include "store/sqlite/unfinished_file.h"
#include "velanor/sqlite_database.h"

namespace velanor::store::sqlite {
namespace {

namespace fs = std::filesystem;

struct FinishBackup {
  void operator()(sqlite3_backup* backup) const { sqlite3_backup_finish(backup); }
};

void copy_pages(Connection& from, Connection& to, const std::function<void(double)>& progress) {
  constexpr int kPages = 4096;
  std::unique_ptr<sqlite3_backup, FinishBackup> backup(
      sqlite3_backup_init(to.handle(), "main", from.handle(), "main"));
  if (!backup) to.fail(sqlite3_errcode(to.handle()));
  int code = SQLITE_OK;
  while (code == SQLITE_OK) {
    code = sqlite3_backup_step(backup.get(), kPages);
    const double pages = sqlite3_backup_pagecount(backup.get());
    if (progress && pages > 0) progress(1.0 - sqlite3_backup_remaining(backup.get()) / pages);
  }
  const int end = sqlite3_backup_finish(backup.release());
  if (code == SQLITE_CORRUPT) from.fail(code);
  if (code != SQLITE_DONE) to.fail(code);
  to.check(end);
}

// Opened anew, to be read from the file.
bool is_sound(const std::string& path) try {
  Connection copy(path, Missing::kFail, 0);
  return damages_of(copy).empty();
} catch (const DamagedError&) {
  return false;
}

void copy_sound(Connection& from, const std::string& path, const std::function<void(double)>& progress) {
  {
    Connection copy(path, Missing::kFail, 0);
    copy_pages(from, copy, progress);
  }
  if (is_sound(path)) return;
  throw DamagedError(kStoreFailure, "La base « " + from.path() +
                                        " » est endommagée, elle n'a pas été sauvegardée. Fermez le "
                                        "programme et reprenez la dernière sauvegarde.");
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

// Nobody can open a database file, and nobody has it open, while this lives.
class Seclusion {
 public:
  explicit Seclusion(const std::string& path) : file_(path, RawFile::For::kWriting) {
    if (!file_.is_open())
      throw not_restored(path, "elle ne peut pas être ouverte. Vérifiez votre droit d'y écrire.");
    if (!file_.lock_others_out())
      throw not_restored(path, "un programme s'en sert. Fermez tous les programmes, puis recommencez.");
  }

 private:
  RawFile file_;
};

std::string free_name_beside(const std::string& path) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char moment[32];
  std::strftime(moment, sizeof moment, "%Y%m%d-%H%M%S", &local);
  const std::string name = path + ".avant-" + moment;
  for (int n = 1;; ++n) {
    std::string candidate = n == 1 ? name : name + "-" + std::to_string(n);
    if (!is_there(candidate)) return candidate;
  }
}

// The log goes with its file: what is only in it is not lost. A second name, where the file system has such,
// leaves no moment without a base.
void set_aside(const std::string& path, const std::string& aside) {
  std::error_code none, refused;
  fs::create_hard_link(path, aside, none);
  if (none) fs::rename(path, aside, refused);
  if (refused)
    throw not_restored(path, "l'ancienne n'a pas pu être mise de côté. Vérifiez votre droit d'y écrire.");
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
    copy_sound(from, unfinished, progress);
    return true;
  });
}

void with_copy(Connection& from, const std::string& path, const std::function<void(const std::string&)>& use,
               const std::function<void(double)>& progress) {
  const UnfinishedFile file(path);
  copy_sound(from, file.path(), progress);
  use(file.path());
}

std::string put_in_place(const std::string& backup, const std::string& path) {
  refuse_unsafe_place(path);
  UnfinishedFile file(path);
  const DamagedError damaged(
      kStoreFailure,
      not_restored(path, "la sauvegarde « " + backup + " » est endommagée. Prenez-en une autre.").what());
  try {
    copy_backup(backup, file.path());
  } catch (const DamagedError&) {
    throw damaged;
  }
  if (!is_sound(file.path())) throw damaged;
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
