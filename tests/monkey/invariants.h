// What holds on the screen after every action, whatever the user did.
#pragma once

#include <string>
#include <vector>

#include "support/office.h"

namespace velanor::test {

// One amendment as screen and working record hold it together.
struct AmendmentSight {
  std::string date;
  std::string items;  // attributes 30 to 33 of its value
};

class Invariants {
 public:
  // The first breach found; empty when all holds. `acted` is the control that was acted on.
  std::string check(Office& office, const std::string& acted, bool store_changed);

 private:
  std::string columns_are_parallel(Office& office);
  std::string dates_ascend(Office& office);
  std::string shares_can_be_read(Office& office);
  std::string labels_follow(Office& office);
  std::string state_is_exact(Office& office);
  std::string items_stay_with_their_line(Office& office);
  std::string store_is_left_alone(const std::string& acted, bool store_changed);

  std::string card_;  // the card that was open at the last check
  bool form_was_open_ = false;
  std::vector<AmendmentSight> amendments_;
};

}  // namespace velanor::test
