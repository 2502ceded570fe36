#include "store/text_literal.h"

namespace velanor::store {

std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char byte : text) {
    if (byte == '"') result += '"';
    result += byte;
  }
  return result += '"';
}

}  // namespace velanor::store
