#include "card/record/card_dates.h"

#include "card/record/element.h"
#include "velanor/date.h"

namespace velanor::card {

std::vector<Fault> faults_of_dates(const store::DbRecord& card, int today) {
  std::vector<Fault> faults;
  const auto birth = entry::stored_day(element(card, kBirth));
  const auto start = entry::stored_day(element(card, kContractStart));
  const auto branch = entry::stored_day(element(card, kBranchEntry));
  if (birth && start && *birth > *start) {
    faults.push_back(about(kBirth, Fault("La date de naissance est après la date de début de contrat.")));
  } else if (birth && *birth > today) {
    faults.push_back(about(kBirth, Fault("La date de naissance est dans le futur.")));
  }
  // Who is to be hired may be new to the branch on that day.
  if (branch && *branch > today && (!start || *branch > *start))
    faults.push_back(about(kBranchEntry, Fault("La date d'entrée dans la branche est dans le futur.")));
  return faults;
}

}  // namespace velanor::card
