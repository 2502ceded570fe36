#include "office/hours.h"

#include "card/record/element.h"
#include "card/record/item_hours.h"
#include "card/record/record_compare.h"
#include "velanor/date.h"

namespace velanor::office {
namespace {

constexpr std::int64_t kHundred = 10'000;  // percent

std::int64_t divided(std::int64_t dividend, std::int64_t by) { return (dividend + by / 2) / by; }

}  // namespace

InForce::InForce(const store::DbRecord& card) {
  const int lines = card::lines_of(card, card::kEffective);
  for (int line = 1; line <= lines; ++line)
    days_.push_back(entry::stored_day(element(card, card::kEffective, line)));
}

int InForce::on(int day) const {
  int line = -1;
  for (int l = 0; l < amendments(); ++l) {
    const auto& from = days_[static_cast<std::size_t>(l)];
    if (from && *from <= day) line = l;
  }
  return line;
}

std::optional<std::int64_t> monthly_hours(const store::DbRecord& card, int line,
                                          const IsHoursItem& is_hours) {
  const int value = line + 1;
  if (element(card, card::kStaffKind) != card::kProduction)
    return entry::parse_decimal(element(card, card::kMonthlyTime, value), 0);
  if (element(card, card::kItemCode, value, 1).empty()) return std::nullopt;
  return card::item_hours(card, value, is_hours);
}

std::optional<std::int64_t> full_time(std::int64_t hours, std::int64_t full) {
  if (full <= 0 || hours < 0) return std::nullopt;
  return divided(hours * 100, full);
}

std::int64_t percent_of(std::int64_t hours, std::int64_t full) { return divided(hours * kHundred, full); }

std::int64_t hours_of(std::int64_t percent, std::int64_t full) { return divided(percent * full, kHundred); }

}  // namespace velanor::office
