// Which budget years each entity has personnel records for.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "control/session/procedure.h"

namespace velanor::control {

// The table TableExtractions: an attribute per entity in ascending order; value 1 the entity
// code, then its years, most recent first.
class YearTable {
 public:
  // Reads it anew from the ids of the cards.
  void ChargerExtractions(const Procedure& procedure);
  const store::DbRecord& TableExtractions() const { return table_; }

  // Most recent first; empty for an entity without personnel records.
  std::vector<std::string> years(std::string_view entity) const;
  // The year that can still be edited; "" for an entity without personnel records.
  std::string latest(std::string_view entity) const;
  bool is_latest(std::string_view entity, std::string_view year) const { return latest(entity) == year; }

 private:
  // Attribute of the entity: the first one whose value 1 is the entity or empty.
  int position(std::string_view entity) const;

  store::DbRecord table_;
};

// Attributes of the record "1" of the parameters file.
inline constexpr int kReferenceDates = 1;
inline constexpr int kDefaultAgreements = 10;

// The default collective agreement of the parameters file: the one that all values of attribute
// 10 of record "1" name, "" when they differ or there are none, `current` when there is no such
// record.
std::string LireParametres(const Procedure& procedure, std::string current);
// The reference date of the budget, as a day number: the last value of attribute 1 of the same
// record; "" when there is none.
std::string reference_date(const Procedure& procedure);
std::string_view reference_date(const store::DbRecord& parameters);

}  // namespace velanor::control
