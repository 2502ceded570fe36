// Dated backups of one database in a folder, of which the newest are kept.
#pragma once

#include <cstdint>
#include <ctime>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "velanor/sqlite_database.h"

namespace velanor::store::sqlite {

// Local time, from the system for a program and fixed for a test.
using TimeOfDay = std::function<std::tm()>;
TimeOfDay system_time();

struct Backup {
  std::string path;
  std::tm made;  // local time, as its name says
  std::uintmax_t size;
};

// FOLDER/NAME-YYYYMMDD-HHMMSS.db, or the same with -2, -3... behind where there is one already. Only
// databases of ours under such a name count as backups; any other file is left alone. To bring one back, see
// SqliteDatabase::restore. Every failure is a DbError.
class Backups {
 public:
  Backups(std::string folder, std::string name, int keep, TimeOfDay now = system_time())
      : folder_(std::move(folder)), name_(std::move(name)), keep_(keep), now_(std::move(now)) {}
  // Those that are made by themselves: thirty in BASE.sauvegardes, a folder of the base's owner alone.
  static Backups beside(const std::string& base, TimeOfDay now = system_time());

  // None where there is no such folder.
  std::vector<Backup> newest_first() const;

  struct Report {
    // The new backup, and the older ones that have gone.
    std::string path;
    std::vector<std::string> removed;
    // Older ones that should have gone.
    std::vector<std::string> kept_against_will;
  };
  // Makes one that has been found sound, then removes all but the newest; nothing before it is complete. The
  // folder must be there.
  Report make(SqliteDatabase& database, const std::function<void(double)>& progress = {}) const;
  // The same, in a folder that is made, where there is none of today. Nothing for a base without records or
  // one that is open for reading alone.
  std::optional<Report> make_daily(SqliteDatabase& database,
                                   const std::function<void(double)>& progress = {}) const;

 private:
  // When a backup was made: the moment as in its name, and which it was within the second.
  using Age = std::pair<std::string, int>;
  std::string path_of(const Age& age) const;
  std::optional<Age> age_of(const std::string& path) const;
  std::vector<std::pair<Age, std::string>> by_age() const;
  std::string make_under_free_name(SqliteDatabase& database,
                                   const std::function<void(double)>& progress) const;
  void remove_older(Report& report) const;
  void remove_left_behind() const;

  std::string folder_, name_;
  int keep_;
  TimeOfDay now_;
};

// Looks at all of a backup. Throws a DbError that says what is wrong with it.
void verify_backup(const std::string& path);

}  // namespace velanor::store::sqlite
