// Any bytes as a figure and as a date: what is understood is shown and understood again as the same.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "check.h"
#include "entry/decimal.h"
#include "velanor/util_saisie.h"

namespace velanor::store::fuzz {

inline void run_entry(const std::uint8_t* data, std::size_t size) {
  static const auto kEntry = entry::make_util_saisie([] { return entry::Date{15, 3, 2026}; });
  const std::string text(data, data + size);
  for (int decimals = 0; decimals <= 4; ++decimals) {
    const auto value = entry::parse_decimal(text, decimals);
    FUZZ_CHECK(value || entry::text_to_stored(text, decimals).empty());
    if (!value) continue;
    FUZZ_CHECK(entry::has_digit(text));
    const std::string shown = entry::format_decimal(*value, decimals, decimals);
    FUZZ_CHECK(entry::parse_decimal(shown, decimals) == value);
    FUZZ_CHECK(!entry::has_more_decimals(shown, decimals));
    FUZZ_CHECK(entry::text_to_stored(entry::stored_to_text(std::to_string(*value), decimals, decimals),
                                     decimals) == std::to_string(*value));
  }
  const auto date = kEntry->CheckDate(text);
  if (date.day.empty()) return;
  const std::string shown = kEntry->InternalToDate(date.day);
  FUZZ_CHECK(shown.size() == std::string("15/03/2026").size());
  FUZZ_CHECK(kEntry->CheckDate(shown).day == date.day);
}

}  // namespace velanor::store::fuzz
