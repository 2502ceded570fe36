// Decimal numbers as scaled whole numbers, never binary floating point.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velanor::entry {

// The number in a text, times 10 to the power `decimals`, rounded half away from zero:
// parse_decimal("12,345", 2) is 1235. Blanks around it (any kind) and between digit groups are
// passed over; the separator is a comma or a point; a leading "-" or "+" is read. Nothing for
// a text that is no number ("" and "," included) or beyond 15 digits before the separator.
std::optional<std::int64_t> parse_decimal(std::string_view text, int decimals);

// Whether parse_decimal rounds a text: it has a decimal other than 0 behind those.
bool has_more_decimals(std::string_view text, int decimals);

// The text of `value` / 10^scale with exactly `decimals` decimals and a comma, rounded half
// away from zero: format_decimal(1235, 2, 2) is "12,35".
std::string format_decimal(std::int64_t value, int scale, int decimals);

// A text formatted with the pattern "0.00" (two decimals) or "0.000": "12,5" gives "12,50".
// An empty text stays empty, a text that is no number stays as it is.
std::string format_pattern(std::string_view text, int decimals);

// A stored whole number (hundredths, thousandths, ...) as display text; what is no number is shown
// as it is. And back: always a whole number, or "" for a text that is no number.
std::string stored_to_text(std::string_view stored, int scale, int decimals);
std::string text_to_stored(std::string_view text, int scale);

// Whether a text holds a digit: without one it is no entry, whatever separators it has.
bool has_digit(std::string_view text);

}  // namespace velanor::entry
