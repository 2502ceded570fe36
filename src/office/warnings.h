// What a clerk had better look at on a card, though no rule of saving and no code forbids it. What the check
// of the cards tells as a fault is no warning: an end without its reason, shares that are not 100 in all, a
// grid or an activity that has left its file.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "card/record/fault.h"
#include "velanor/database.h"

namespace velanor::office {

enum class WarningKind {
  kEndsSoon,          // a fixed-term contract, within some days
  kEndsInYear,        // a fixed-term contract, before the last day of the budget year
  kNoEnd,             // of a fixed-term contract
  kReasonWithoutEnd,  // an end reason, and no end
  kEmptyShare,        // an activity with nothing of the working time
  kActivityTwice,     // the working time of one activity split over two lines
  kForeignActivity,   // shares in an activity of another entity
  kNoAmendment,       // in force on 1 January of the budget year, in a year whose saving does not ask for it
  kTwoAmendments,     // in one month
  kHours,             // monthly, of an amendment, above those of the establishment
  kRate,              // hourly, under that of the amendment before
  kTwoCards,          // of one person in the entity and year
  kBirth,             // younger than 16 or older than 75 when the contract starts
};

// What a base and the command line call a kind, and what it tells, in the order of the enumeration. Names
// are never changed: bases keep them.
struct WarningName {
  WarningKind kind;
  std::string_view name, title;
};
std::span<const WarningName> warning_names();
const WarningName& name_of(WarningKind kind);
// Nothing for a name that this version does not know.
std::optional<WarningKind> warning_named(std::string_view name);

struct Warning {
  WarningKind kind;
  card::Fault remark;  // the sentence, and the field and line concerned
};

// Judges cards one by one. What it says holds for the payroll items as they were when it was made.
class Warnings {
 public:
  // A contract ends soon when it does within so many days.
  static constexpr int kDaysAhead = 60, kLeastAhead = 1, kMostAhead = 366;
  // `today` and `reference_day` (the reference date of the budget) are day numbers.
  Warnings(store::Database& database, int today, int reference_day, int days_ahead = kDaysAhead);

  // In the order of the kinds, all but kTwoCards. What cannot be read says nothing here.
  std::vector<Warning> of(std::string_view id, const store::DbRecord& card) const;

 private:
  int today_, reference_day_, days_ahead_;
  std::set<std::string, std::less<>> hours_items_;
};

// Who stands on two cards of an entity and year: the same name, accents and case aside, and the same birth
// date. Who has no birth date is told apart from everybody.
class Namesakes {
 public:
  void note(std::string_view id, const store::DbRecord& card);
  // Nothing for a card that was not noted.
  void forget(std::string_view id);
  struct Found {
    std::string id, name;
    Warning warning;  // kTwoCards
  };
  // One for each of the cards.
  std::vector<Found> found() const;

 private:
  struct Card {
    std::string id, name;
  };
  std::map<std::string, std::vector<Card>> cards_;        // by entity, year, name and birth
  std::map<std::string, std::string, std::less<>> keys_;  // of the cards, by id
};

}  // namespace velanor::office
