// Blanks as they come from keyboards, spreadsheets and other programs: not only U+0020.
#pragma once

#include <string_view>

namespace velanor::entry {

// Every kind of Unicode white space: no-break and narrow no-break blanks, tabs, ends of line.
bool is_blank(char32_t character);

// The text without the blanks in front of it; without those at either end.
std::string_view without_leading_blanks(std::string_view text);
std::string_view without_outer_blanks(std::string_view text);

}  // namespace velanor::entry
