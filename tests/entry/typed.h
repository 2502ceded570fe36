// Keys typed into a box, one after the other, through a filter.
#pragma once

#include <string>
#include <string_view>

#include "text/utf8.h"

namespace velanor::entry {

// What the box holds then; `filter` gets the text so far and a key, and returns the key as it passes.
template <typename Filter>
std::string typed(std::u32string_view keys, Filter filter) {
  constexpr char32_t kBackspace = 8;
  std::string text;
  for (char32_t key : keys) {
    const char32_t passed = filter(text, key);
    if (passed == kBackspace && !text.empty()) text.pop_back();
    if (passed > kBackspace) text::append(text, passed);
  }
  return text;
}

}  // namespace velanor::entry
