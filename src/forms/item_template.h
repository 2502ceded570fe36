// The entry templates of the payroll items: what "Saisie Automatique" makes of a number of hours.
#pragma once

#include <vector>

#include "card/record/draft.h"
#include "forms/frm_saisie_hres.h"
#include "velanor/database.h"

namespace velanor::forms {

// A template record holds, value by value: 1 the item code (the list ends at the first empty
// one), 2 the source of the base ("T" hours worked, "P" hours paid, empty the fixed base), 3 the
// fixed base (hundredths), 4 the rate (ten-thousandths; empty takes attribute 9 of the item),
// 5 the fixed amount (hundredths, used where base or rate is missing); and one value in 6: hours
// paid for 100 worked (hundredths of a percent; empty is 100 %). Items that have left the file
// RUBSAISIE are passed over. Figures are plain number texts; "" for one that an item does not have.
std::vector<card::ItemText> fill_template(const store::DbRecord& record, const Hours& hours,
                                          store::DbFile& items);

}  // namespace velanor::forms
