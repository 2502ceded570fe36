#include "card/record/saving.h"

#include "card/record/amendment_columns.h"
#include "card/record/record_compare.h"
#include "text/utf8.h"

namespace velanor::card {
namespace {

// What stands behind the end of a list is on no screen.
void cut(store::DbRecord& card, int attribute, int lines) {
  while (card.Count(attribute) > lines) card.Delete(attribute, card.Count(attribute));
}

void end_lists(store::DbRecord& card) {
  const int activities = lines_of(card, kActivity);
  for (int attribute : {kActivity.number, kShare.number}) cut(card, attribute, activities);
  const int amendments = lines_of(card, kEffective);
  for (const AmendmentColumn& column : kAmendmentColumns) cut(card, column.attribute, amendments);
}

}  // namespace

void complete(store::DbRecord& card) {
  card.set(kName, text::upper(card(kName)));
  card.set(kContractType, card(kContractType) == "D" ? "D" : "I");
  card.set(kStaffKind, card(kStaffKind) == "P" ? "P" : "A");
  if (card(kContractEnd).empty()) card.set(kEndReason, {});
  end_lists(card);
  for (int i = 1; i <= lines_of(card, kEffective); ++i)
    card.set(kNewMeasure, i, card(kNewMeasure, i) == "O" ? "O" : "N");
  if (card(kStaffKind) == "P") card.set(kMonthlyTime, {});
}

bool results_are_stale(const store::DbRecord& card, const store::DbRecord* before) {
  if (before == nullptr) return true;
  for (int attribute = 1; attribute <= kLastComparedAttribute; ++attribute) {
    if (affects_calculation(attribute) && !same_attribute(card, *before, attribute)) return true;
  }
  return false;
}

void drop_stale_results(store::DbRecord& card, const store::DbRecord* before) {
  if (before == nullptr) card.set(kStatus, "0");
  if (!results_are_stale(card, before)) return;
  for (int attribute : kResults) card.set(attribute, {});
}

}  // namespace velanor::card
