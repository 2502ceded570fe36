#include "card/record/saving.h"

#include "card/record_compare.h"
#include "text/utf8.h"

namespace velanor::card {

void complete(Draft& card) {
  const store::DbRecord& record = card.record();
  card.put_stored(kName, text::upper(record(kName)));
  card.put_stored(kContractType, record(kContractType) == "D" ? "D" : "I");
  card.put_stored(kStaffKind, record(kStaffKind) == "P" ? "P" : "A");
  if (record(kContractEnd).empty()) card.put_stored(kEndReason, {});
  card.end_lists();
  card.write_new_measures();
  if (record(kStaffKind) == "P") card.put_stored(kMonthlyTime, {});
}

void drop_stale_results(Draft& card, const store::DbRecord* before) {
  bool stale = before == nullptr;
  if (stale) card.put_stored(kStatus, "0");
  for (int attribute = 1; attribute <= kLastComparedAttribute && !stale; ++attribute)
    stale = affects_calculation(attribute) && !same_attribute(card.record(), *before, attribute);
  if (!stale) return;
  for (int attribute : kResults) card.put_stored(attribute, {});
}

}  // namespace velanor::card
