// The versions of a record, as clerks find them, and bringing one back.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "velanor/database.h"
#include "velanor/history.h"

namespace velanor::office {

// Throws store::DbError for a database that keeps none.
store::History& history_of(store::Database& database);
// The oldest first, never none. Throws store::DbError for a record that never was.
std::vector<store::Version> versions_of(store::Database& database, std::string_view file,
                                        std::string_view id);
// Throws store::DbError for a number that is not among them.
const store::Version& version_numbered(const std::vector<store::Version>& versions, std::uint64_t number);

// "12/03/2026 14:05:09" in local time; what was written before versions were kept has none.
std::string moment_of(const store::Version& version);
// "inconnu" where it is not known. What a stored name holds is not judged.
std::string author_of(const store::Version& version);
// What a version did to the one before it: "création", "modification", "suppression"...
std::string kind_of(const std::vector<store::Version>& versions, std::size_t index);

struct BroughtBack {
  bool written = false;      // not, where it is what is stored
  bool was_deleted = false;  // before
  std::uint64_t number = 0;  // of the version that is stored now
};
// Writes a version anew, if what is stored is still the last of `versions`: a kConflict else. Of a card it
// keeps the results of the calculation as they stand now, as saving does, and empties those that do not fit
// it, or went with the card when it was deleted. Throws store::DbError for a version without content.
BroughtBack bring_back(store::Database& database, std::string_view file, std::string_view id,
                       const std::vector<store::Version>& versions, const store::Version& wanted);

}  // namespace velanor::office
