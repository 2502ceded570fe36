// Warnings that a clerk has set aside: kept in the base, by kind and card.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "office/warnings.h"
#include "velanor/database.h"

namespace velanor::office {

// The file that keeps them: a record a card, under the card's id, with a value each in attributes 1 to 4:
// name of the kind, who, when (a day number), and the name on the card. The component does not read it.
inline constexpr std::string_view kAsidesFile = "BUDGETREMARQUES";

struct Aside {
  WarningKind kind;
  std::string who;
  int day;
};

// What stands in such a record for a card of that name: who comes later under the code of somebody else has
// set nothing aside. Kinds that this version does not know are passed over.
std::vector<Aside> asides_in(const store::DbRecord& record, std::string_view name);

// Both leave what others set aside meanwhile as it is, and throw store::DbError; the first also where there
// is no such card any more. Twice is once.
void set_aside(store::Database& database, std::string_view id, const Aside& aside);
void take_back(store::Database& database, std::string_view id, WarningKind kind);

}  // namespace velanor::office
