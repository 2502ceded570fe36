// Whether stored cards are such as the screen would save them, and use only codes that exist.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "card/record/references.h"
#include "exchange/judged_texts.h"
#include "velanor/database.h"
#include "velanor/util_saisie.h"

namespace velanor::office {

// Reads the reference files once, then judges cards one by one. What it says of a card holds for
// the reference files, and the day, as they were when it was made.
class CardCheck {
 public:
  explicit CardCheck(store::Database& database, const entry::Clock& clock = entry::system_clock());

  // What is wrong with the reference files themselves, so that no card could be right.
  const std::vector<card::Fault>& faults_of_references() const { return references_.faults(); }
  // Every fault of a card; the rules of saving in the words of the screen.
  std::vector<card::Fault> faults_of(std::string_view id, const store::DbRecord& card) const;

  // Day numbers: the reference date of the budget (0: none), and today.
  int reference_day() const { return references_.reference_day(); }
  int today() const { return today_; }

 private:
  card::References references_;
  std::unique_ptr<entry::UtilSaisie> entry_;
  int today_;
  mutable std::vector<exchange::JudgedTexts> good_;  // of each field of a card, in the order of card_fields
};

}  // namespace velanor::office
