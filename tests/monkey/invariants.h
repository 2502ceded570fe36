// What holds on the screen after every act, whatever the user did.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "monkey/line_watch.h"
#include "monkey/standing_watch.h"
#include "monkey/store_judge.h"

namespace velanor::test {

class Invariants {
 public:
  Invariants(store::MemoryDatabase& base, const WatchedStore& store);

  // The names of the checks, each of which can be left out.
  static std::vector<std::string> names();
  void leave_out(const std::string& name) { left_out_.insert(name); }

  // A new component on the same base.
  void start_anew(Office& office);
  // Around every act. `check` gives the first breach with the name of its check; empty when all holds.
  void before(Office& office, const std::string& control) { judge_.before(office, control, lines_); }
  std::string check(Office& office, const Act& act);
  StoreJudge& judge() { return judge_; }

 private:
  struct Check;
  static const std::vector<Check>& checks();

  std::string columns(Office& office, const Act& act);
  std::string dates(Office& office, const Act& act);
  std::string shares(Office& office, const Act& act);
  std::string labels(Office& office, const Act& act);
  std::string state(Office& office, const Act& act);
  std::string out_of_use(Office& office, const Act& act);
  std::string empty_screen(Office& office, const Act& act);
  std::string whole_choices(Office& office, const Act& act);
  std::string whole_lines(Office& office, const Act& act);
  std::string not_whole(const std::string& grid, const std::string& qualification) const;
  std::string codes(Office& office, const Act& act);
  std::string hourglass(Office& office, const Act& act);
  std::string left_alone(Office& office, const Act& act);
  std::string amendments(Office& office, const Act& act) { return lines_.amendments(office, act); }
  std::string activities(Office& office, const Act& act) { return lines_.activities(office, act); }
  std::string items(Office& office, const Act& act) { return lines_.items(office, act); }
  std::string standing(Office& office, const Act& act) { return standing_.standing(office, act); }
  std::string modified(Office& office, const Act& act) { return standing_.modified(office, act); }
  std::string told(Office& office, const Act& act) { return standing_.told(office, act); }
  std::string stored_ids(Office&, const Act&) { return judge_.ids(); }
  std::string stored_figures(Office&, const Act&) { return judge_.figures(); }
  std::string stored_cards(Office&, const Act&) { return judge_.faultless(); }
  std::string stored_fields(Office&, const Act&) { return judge_.kept(); }
  bool category_is_open(const card::CardScreen& ui) const;
  void remember(Office& office, const Act& act);

  std::set<std::string> left_out_;
  std::set<std::string, std::less<>> grid_labels_, qualifications_;
  std::set<std::string, std::less<>> agreements_with_categories_;
  std::multimap<std::string, std::string> categories_;  // by agreement and label of the grid
  LineWatch lines_;
  StoreJudge judge_;
  StandingWatch standing_;
  std::string card_;  // in hand at the last check
  bool dates_ascend_ = true;
  std::vector<std::string> activities_;
  std::map<std::string, std::string> codes_;
  bool entering_ = false;
};

}  // namespace velanor::test
