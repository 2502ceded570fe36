// Backups of one database in a folder, of which the newest are kept.
#pragma once

#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include "velanor/sqlite_database.h"

namespace velanor::app {

// Local time, from the system for a program and fixed for a test.
using TimeOfDay = std::function<std::tm()>;
TimeOfDay system_time();

struct Rotation {
  std::string folder;
  // What the names of the backups begin with.
  std::string name;
  // How many of them are kept.
  int keep;
};

struct RotationReport {
  // The new backup, and the older ones that have gone.
  std::string path;
  std::vector<std::string> removed;
  // Older ones that should have gone.
  std::vector<std::string> kept_against_will;
};

// Writes FOLDER/NAME-YYYYMMDD-HHMMSS.db, or the same with -2, -3... behind where there is one already,
// then removes all but the newest. Only databases of ours under such a name count as
// backups; any other file is left alone. Nothing is removed unless the new backup is complete.
RotationReport back_up_in_rotation(store::SqliteDatabase& database, const Rotation& rotation,
                                   const TimeOfDay& now, const std::function<void(double)>& progress = {});

}  // namespace velanor::app
