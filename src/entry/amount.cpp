#include "entry/amount.h"

#include "entry/decimal.h"

namespace velanor::entry {
namespace {

constexpr std::int64_t kMillionthsInCent = 10'000;

std::int64_t floor_divided(std::int64_t value, std::int64_t by) {
  return value / by - (value % by < 0 ? 1 : 0);
}

}  // namespace

std::string amount_of(std::string_view base_text, std::string_view rate_text) {
  const auto base = parse_decimal(base_text, 2);
  const auto rate = parse_decimal(rate_text, 4);
  std::int64_t millionths = 0;
  if (!base || !rate || __builtin_mul_overflow(*base, *rate, &millionths)) return {};
  // Half a cent more, then what is below a cent falls away: never the nearest binary fraction.
  if (__builtin_add_overflow(millionths, kMillionthsInCent / 2, &millionths)) return {};
  return format_decimal(floor_divided(millionths, kMillionthsInCent), 2, 2);
}

}  // namespace velanor::entry
