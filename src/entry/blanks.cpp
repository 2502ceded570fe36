#include "entry/blanks.h"

#include "text/utf8.h"

namespace velanor::entry {

bool is_blank(char32_t c) {
  if (c == U' ' || (c >= 0x09 && c <= 0x0D)) return true;
  if (c < 0x80) return false;
  return c == 0x85 || c == 0xA0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) || c == 0x2028 ||
         c == 0x2029 || c == 0x202F || c == 0x205F || c == 0x3000;
}

std::string_view without_leading_blanks(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t start = at;
    if (!is_blank(text::next(text, at))) return text.substr(start);
  }
  return {};
}

std::string_view without_outer_blanks(std::string_view text) {
  text = without_leading_blanks(text);
  std::size_t end = 0;
  for (std::size_t at = 0; at < text.size();) {
    if (!is_blank(text::next(text, at))) end = at;
  }
  return text.substr(0, end);
}

}  // namespace velanor::entry
