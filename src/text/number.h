// Whole numbers as texts.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

namespace velanor::text {

// Digits alone, at least one.
inline bool is_digits(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// The number that all of the text is, with or without a minus sign before it; nothing for any other
// text, and for one beyond 64 bits.
inline std::optional<std::int64_t> whole_number(std::string_view text) {
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return number;
}

}  // namespace velanor::text
