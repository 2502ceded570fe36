#include "card/record/saving.h"

#include <algorithm>

#include "card/record/amendment_columns.h"
#include "card/record/element.h"
#include "card/record/record_compare.h"
#include "text/utf8.h"

namespace velanor::card {

void complete(store::DbRecord& card) {
  set_element(card, kName, text::upper(element(card, kName)));
  set_element(card, kContractType, element(card, kContractType) == kFixedTerm ? kFixedTerm : kPermanent);
  set_element(card, kStaffKind, element(card, kStaffKind) == kProduction ? kProduction : kAdministrative);
  if (element(card, kContractEnd).empty()) set_element(card, kEndReason, "");
  end_columns(card, kActivityColumns, lines_of(card, kActivity));
  const int amendments = lines_of(card, kEffective);
  end_columns(card, kAmendmentColumns, amendments);
  for (int i = 1; i <= amendments; ++i)
    set_element(card, kNewMeasure, i, element(card, kNewMeasure, i) == kYes ? kYes : kNo);
  if (element(card, kStaffKind) == kProduction) set_element(card, kMonthlyTime, "");
}

bool results_are_stale(const store::DbRecord& card, const store::DbRecord* before) {
  return before == nullptr ||
         std::any_of(std::begin(kAttributes), std::end(kAttributes), [&](const Field& field) {
           return field.calculation == Calculation::kUsed && !same_attribute(card, *before, field.number);
         });
}

void drop_stale_results(store::DbRecord& card, const store::DbRecord* before) {
  if (before == nullptr) set_element(card, kStatus, "0");
  if (!results_are_stale(card, before)) return;
  for (const Field& result : kResults) set_element(card, result, "");
}

}  // namespace velanor::card
