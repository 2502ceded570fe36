// Reference records and cards that no clerk would make and every long-lived store has: labels that
// stand for two things, codes that have left their files, figures too long for their boxes, dates
// out of order.
#pragma once

#include "velanor/memory_database.h"

namespace velanor::test {

// Adds them to the demonstration data of a store, the cards for the year 2026 under the employee
// codes from 90001 on. What can be read of them is different from all that can be typed.
void add_awkward_records(store::MemoryDatabase& database);

}  // namespace velanor::test
