// Ids as the server compares them: byte by byte.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace velanor::store::postgres {

inline std::string reversed(std::string_view id) { return {id.rbegin(), id.rend()}; }

// Before which all stands that begins so; nothing when that is everything. No byte of a text is the highest.
inline std::optional<std::string> end_of(std::string prefix) {
  if (prefix.empty()) return std::nullopt;
  ++prefix.back();
  return prefix;
}

// Throws a DbError for what the server would not take.
void check_sizes(std::string_view file, std::string_view id);

}  // namespace velanor::store::postgres
