#include "forms/item_template.h"

#include <optional>

#include "card/record/reference_layout.h"
#include "entry/amount.h"
#include "entry/decimal.h"

namespace velanor::forms {
namespace {

namespace templates = card::templates;

struct BothHours {
  std::string worked;
  std::string paid;
};

// value * numerator / denominator, rounded half away from zero (all are positive).
std::int64_t scaled(std::int64_t value, std::int64_t numerator, std::int64_t denominator) {
  return (value * numerator + denominator / 2) / denominator;
}

BothHours both_hours(const store::DbRecord& record, const Hours& hours) {
  constexpr std::int64_t kWhole = 10000;
  std::int64_t ratio = entry::parse_decimal(record(templates::kPaidForWorked, 1), 0).value_or(kWhole);
  if (ratio <= 0) ratio = kWhole;
  const std::int64_t typed = entry::parse_decimal(hours.NbHeures, 2).value_or(0);
  const bool worked = hours.TypeHeures == "T";
  return {entry::format_decimal(worked ? typed : scaled(typed, kWhole, ratio), 2, 2),
          entry::format_decimal(worked ? scaled(typed, ratio, kWhole) : typed, 2, 2)};
}

}  // namespace

std::vector<card::ItemText> fill_template(const store::DbRecord& record, const Hours& hours,
                                          store::DbFile& items) {
  const BothHours both = both_hours(record, hours);
  std::vector<card::ItemText> lines;
  for (int i = 1; !record(templates::kItem, i).empty(); ++i) {
    const auto item = items.find(record(templates::kItem, i));
    if (!item) continue;
    card::ItemText line{
        std::string(record(templates::kItem, i)), std::string((*item)(card::kReferenceLabel)), {}};
    auto& [base, rate, amount] = line.figures;
    const std::string_view source = record(templates::kBaseSource, i);
    base.shown = source == "T"   ? both.worked
                 : source == "P" ? both.paid
                                 : entry::stored_to_text(record(templates::kFixedBase, i), 2, 2);
    const std::string_view own_rate = record(templates::kRate, i);
    rate.shown =
        entry::stored_to_text(own_rate.empty() ? (*item)(card::items::kDefaultRate) : own_rate, 4, 4);
    const bool product = !base.shown.empty() && !rate.shown.empty();
    amount.shown = product ? entry::amount_of(base.shown, rate.shown)
                           : entry::stored_to_text(record(templates::kFixedAmount, i), 2, 2);
    lines.push_back(std::move(line));
  }
  return lines;
}

}  // namespace velanor::forms
