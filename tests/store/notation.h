// Records as one reads them: "^" between attributes, "|" between values, "~" between subvalues.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

#include "velanor/record.h"

namespace velanor::store {

inline std::string translated(std::string_view text, std::string_view from, std::string_view to) {
  std::string result(text);
  for (char& c : result) {
    const std::size_t at = from.find(c);
    if (at != std::string_view::npos) c = to[at];
  }
  return result;
}

inline constexpr std::string_view kNotation = "^|~";
inline constexpr std::string_view kMarks = "\xFE\xFD\xFC";

inline DbRecord record(std::string_view notation) {
  return DbRecord::from_encoded(translated(notation, kNotation, kMarks));
}
inline std::string shown(std::string_view encoded) { return translated(encoded, kMarks, kNotation); }
inline std::string shown(const DbRecord& record) { return shown(record.encoded()); }

}  // namespace velanor::store
