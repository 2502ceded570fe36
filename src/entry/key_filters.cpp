#include "entry/key_filters.h"

#include "text/utf8.h"

namespace velanor::entry {
namespace {
constexpr char32_t kBackspace = 8;
constexpr char32_t kTab = 9;
constexpr char32_t kSwallowed = 0;
}  // namespace

// Any other key separates, on purpose: 1.2.99 and 1 2 99 arrive as 1/2/99.
char32_t filter_date_key(char32_t key) { return key == kBackspace || text::is_digit(key) ? key : U'/'; }

char32_t filter_decimal_key(std::string_view text, char32_t key) {
  if (key == kBackspace || text::is_digit(key)) return key;
  if (key != U'.' && key != U',') return kSwallowed;
  return text.find(',') == text.npos ? U',' : kSwallowed;
}

char32_t filter_letter_key(char32_t key) {
  const bool letter = (key >= U'A' && key <= U'Z') || (key >= U'a' && key <= U'z');
  return letter || key == kBackspace || key == kTab ? key : kSwallowed;
}

char32_t filter_code_key(char32_t key) { return key == kBackspace || text::is_digit(key) ? key : kSwallowed; }

}  // namespace velanor::entry
