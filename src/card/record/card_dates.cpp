#include "card/record/card_dates.h"

#include <charconv>

#include "card/record/record_layout.h"
#include "velanor/date.h"

namespace velanor::card {

std::optional<int> stored_day(std::string_view stored) {
  static const int first = *entry::day_number({1, 1, 1}), last = *entry::day_number({31, 12, 9999});
  int day = 0;
  const auto read = std::from_chars(stored.data(), stored.data() + stored.size(), day);
  const bool whole = read.ec == std::errc() && read.ptr == stored.data() + stored.size();
  return whole && day >= first && day <= last ? std::optional(day) : std::nullopt;
}

std::vector<card::Fault> faults_of_dates(const store::DbRecord& card, int today) {
  std::vector<card::Fault> faults;
  const auto birth = stored_day(card(card::kBirth)), start = stored_day(card(card::kContractStart));
  const auto branch = stored_day(card(card::kBranchEntry));
  if (birth && start && *birth > *start) {
    faults.emplace_back("La date de naissance est après la date de début de contrat.");
  } else if (birth && *birth > today) {
    faults.emplace_back("La date de naissance est dans le futur.");
  }
  // Who is to be hired may be new to the branch on that day.
  if (branch && *branch > today && (!start || *branch > *start))
    faults.emplace_back("La date d'entrée dans la branche est dans le futur.");
  return faults;
}

}  // namespace velanor::card
