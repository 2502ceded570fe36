#include "app/velanorctl/card_dates.h"

#include <charconv>
#include <optional>

#include "card/record_layout.h"

namespace velanor::app {
namespace {

std::optional<int> day_of(std::string_view stored) {
  int day = 0;
  const auto read = std::from_chars(stored.data(), stored.data() + stored.size(), day);
  if (read.ec != std::errc() || read.ptr != stored.data() + stored.size()) return std::nullopt;
  return day;
}

}  // namespace

std::vector<Fault> faults_of_dates(const store::DbRecord& card, int today) {
  std::vector<Fault> faults;
  const auto birth = day_of(card(card::kBirth)), start = day_of(card(card::kContractStart));
  const auto branch = day_of(card(card::kBranchEntry));
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

}  // namespace velanor::app
