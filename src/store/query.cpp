#include "velanor/query.h"

namespace velanor::store {

std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char byte : text) {
    if (byte == '"') result += '"';
    result += byte;
  }
  return result += '"';
}

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
