#include "card/item_hours.h"

#include "card/record_layout.h"
#include "entry/decimal.h"

namespace velanor::card {

bool is_hours(std::string_view item_type) { return item_type == "3" || item_type == "4" || item_type == "5"; }

std::string item_hours(const store::DbRecord& card, int amendment, store::DbFile& items) {
  if (card(kItemCode, amendment, 1).empty()) return {};
  std::int64_t sum = 0;
  for (int line = 1; !card(kItemCode, amendment, line).empty(); ++line) {
    const auto item = items.find(card(kItemCode, amendment, line));
    if (!item || !is_hours((*item)(kItemType))) continue;
    sum += entry::parse_decimal(card(kItemBase, amendment, line), 0).value_or(0);
  }
  return entry::format_decimal(sum, 2, 2);
}

}  // namespace velanor::card
