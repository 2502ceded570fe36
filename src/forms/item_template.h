// The entry templates of the payroll items: what "Saisie Automatique" makes of a number of hours.
#pragma once

#include <string>
#include <vector>

#include "forms/frm_saisie_hres.h"
#include "velanor/database.h"

namespace velanor::forms {

// One line that a template yields, as plain number texts; "" for a figure that it does not have.
struct FilledItem {
  std::string code;
  std::string label;
  std::string base;    // two decimals
  std::string rate;    // four decimals
  std::string amount;  // two decimals
};

// A template record holds, value by value: 1 the item code (the list ends at the first empty
// one), 2 the source of the base ("T" hours worked, "P" hours paid, empty the fixed base), 3 the
// fixed base (hundredths), 4 the rate (ten-thousandths; empty takes attribute 9 of the item),
// 5 the fixed amount (hundredths, used where base or rate is missing); and one value in 6: hours
// paid for 100 worked (hundredths of a percent; empty is 100 %). Items that have left the file
// RUBSAISIE are passed over.
std::vector<FilledItem> fill_template(const store::DbRecord& record, const Hours& hours,
                                      store::DbFile& items);

}  // namespace velanor::forms
