// All that a database holds, as one text to compare.
#pragma once

#include <cstdlib>
#include <string>

#include "store/notation.h"
#include "velanor/sqlite_database.h"

namespace velanor::store {

// Records and their versions, but for the times. Throws where something cannot be read.
inline std::string snapshot(SqliteDatabase& database) {
  std::string text;
  for (const std::string& file : database.files()) {
    const DbResult ids = database.Select(DbQuery("SSELECT " + file + " PAR 0", file, "0").encoded());
    for (int i = 1; i <= ids.DCount(); ++i) {
      const std::string id(ids(i));
      text.append(file).append(" ").append(id).append(" = ");
      text.append(shown(database.OpenFile(file)->Read(id))).append("\n");
    }
    auto all = database.history()->deleted(file, "");
    for (int i = 1; i <= ids.DCount(); ++i) all.emplace_back(ids(i));
    for (const std::string& id : all) {
      for (const Version& version : database.history()->versions(file, id)) {
        text += "  " + id + " " + std::to_string(version.number) + " " + version.author + " " +
                (!version.sound   ? "?"
                 : version.record ? shown(*version.record)
                                  : "-") +
                "\n";
      }
    }
  }
  return text;
}

// Versions of every record from 1 on without a hole, each sound.
inline bool history_is_whole(SqliteDatabase& database, const std::string& file, const std::string& id) {
  std::uint64_t number = 0;
  for (const Version& version : database.history()->versions(file, id)) {
    if (version.number != ++number || !version.sound) return false;
  }
  return number > 0;
}

// What takes minutes is done on request.
inline bool long_tests() { return std::getenv("VELANOR_LONG") != nullptr; }

}  // namespace velanor::store
