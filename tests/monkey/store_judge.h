// Judges every record that reaches the store.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "monkey/line_watch.h"
#include "office/card_check.h"

namespace velanor::test {

class StoreJudge {
 public:
  // The reference files and the unreadable figures of the base are taken as they are now.
  explicit StoreJudge(store::MemoryDatabase& base);

  // Before an act: what the screen is about to be asked.
  void before(Office& office, const std::string& control, const LineWatch& lines);
  // After an act: a card that came in hand.
  void after(Office& office, const Act& act);
  // The card in hand has taken what could not be checked.
  void excuse_card() { excused_ = true; }
  void judge(std::string_view file, std::string_view id, const store::DbRecord* record);

  // The first breach since they were last asked for, each of its own kind.
  std::string ids() { return std::exchange(breach_[0], {}); }
  std::string figures() { return std::exchange(breach_[1], {}); }
  std::string faultless() { return std::exchange(breach_[2], {}); }
  std::string kept() { return std::exchange(breach_[3], {}); }

 private:
  enum class Writing { kNothing, kNewCard, kCard, kCopy };
  // What the check finds but for dates that cannot be, which the screen does not judge.
  std::vector<std::string> faults_of(std::string_view id, const store::DbRecord& card) const;
  std::string bad_figure(const store::DbRecord& card) const;
  std::string new_fault(std::string_view id, const store::DbRecord& card) const;
  std::string lost_field(const store::DbRecord& card) const;

  office::CardCheck check_;
  std::set<std::pair<int, std::string>> unreadable_;
  std::string breach_[4];

  // The card in hand: as it was read, and what the boxes showed of it then.
  std::string card_;
  store::DbRecord read_;
  bool faultless_ = false, excused_ = false;
  std::map<int, std::string> shown_;
  std::vector<std::string> grids_;
  Writing writing_ = Writing::kNothing;
  const Office* office_ = nullptr;  // during an act
};

}  // namespace velanor::test
