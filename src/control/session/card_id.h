// How the id of a personnel budget record is built.
#pragma once

#include <string>
#include <string_view>

#include "text/utf8.h"
#include "velanor/database.h"

namespace velanor::card {

// Employee code, entity code, budget year.
inline constexpr int kEmployeeCodeLength = 5;
inline constexpr int kEntityCodeLength = 3;
inline constexpr int kYearLength = 4;
inline constexpr int kRecordIdLength = kEmployeeCodeLength + kEntityCodeLength + kYearLength;
inline std::string record_id(std::string_view employee, std::string_view entity, std::string_view year) {
  return std::string(employee).append(entity).append(year);
}
// What statements call the parts of a card's id: "CodeAsso" and "Annee". Whoever sends such statements
// before a component was started on the database calls this himself.
void name_id_parts(store::Database& database);

// Nothing else may ever be written as a card: an id without its entity would hide every entity.
inline bool is_record_id(std::string_view id) {
  const bool blank = id.find(' ') != std::string_view::npos;
  return !blank && text::length(id) == kRecordIdLength;
}
// The parts of any id; "" where it is too short. Years of old stores may be longer.
inline std::string_view employee_of(std::string_view id) { return text::left(id, kEmployeeCodeLength); }
inline std::string_view entity_of(std::string_view id) {
  return text::mid(id, kEmployeeCodeLength + 1, kEntityCodeLength);
}
inline std::string_view year_of(std::string_view id) {
  return text::mid(id, kEmployeeCodeLength + kEntityCodeLength + 1);
}

// Of an establishment or an activity, whose id is the code of its entity and then its own.
inline constexpr int kOwnCodeLength = 3;
inline std::string_view own_code_of(std::string_view id) { return text::mid(id, kEntityCodeLength + 1); }

}  // namespace velanor::card
