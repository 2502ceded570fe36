// What may be typed into the free-entry fields, key by key. Pure: the text so far and a key in,
// the key as it may pass out (0: swallowed). Backspace always passes.
#pragma once

#include <string_view>

namespace velanor::entry {

// Digits pass; every other key, Enter included, becomes a slash.
char32_t filter_date_key(char32_t key);
// Digits pass; one comma; a point becomes a comma; all else, Enter included, is swallowed.
char32_t filter_decimal_key(std::string_view text, char32_t key);
// The letters A-Z and a-z and Tab pass.
char32_t filter_letter_key(char32_t key);
// Digits pass.
char32_t filter_code_key(char32_t key);

}  // namespace velanor::entry
