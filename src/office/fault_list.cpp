#include "office/fault_list.h"

#include <algorithm>
#include <set>

namespace velanor::office {

void FaultList::add(std::string_view id, const std::vector<card::Fault>& faults) {
  std::set<std::string_view> met;
  for (const card::Fault& fault : faults) {
    Kind& kind = kinds_[fault.kind()];
    kind.sentence = fault.kind();
    kind.cards += met.insert(fault.kind()).second ? 1 : 0;
    kind.lines.push_back(std::string(id) + " : " + fault.sentence());
  }
  cards_ += faults.empty() ? 0 : 1;
  faults_ += static_cast<int>(faults.size());
}

std::vector<const FaultList::Kind*> FaultList::most_frequent_first() const {
  std::vector<const Kind*> kinds;
  for (const auto& [sentence, kind] : kinds_) kinds.push_back(&kind);
  std::stable_sort(kinds.begin(), kinds.end(),
                   [](const Kind* a, const Kind* b) { return a->cards > b->cards; });
  return kinds;
}

}  // namespace velanor::office
