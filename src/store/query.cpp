#include "velanor/query.h"

namespace velanor::store {

namespace {

std::string doubled(std::string_view text, std::string_view which) {
  std::string result;
  for (const char byte : text) result.append(which.find(byte) == which.npos ? 1 : 2, byte);
  return result;
}

}  // namespace

std::string escaped(std::string_view text) { return doubled(text, "\"[]"); }

std::string quoted(std::string_view text) { return '"' + escaped(text) + '"'; }
std::string quoted_beginning(std::string_view text) { return '"' + escaped(text) + "]\""; }
std::string quoted_pattern(std::string_view pattern) { return '"' + doubled(pattern, "\"") + '"'; }
std::string quoted_end(std::string_view text) { return "\"[" + escaped(text) + '"'; }

DbQuery::DbQuery(std::string_view statement, std::string_view file, std::string_view attributes) {
  set(1, statement);
  set(2, file);
  set(3, attributes);
}

DbResult::DbResult() {
  static const auto kNoRows = std::make_shared<const DbRecord>();
  rows_ = kNoRows;
}

}  // namespace velanor::store
