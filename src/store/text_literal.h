// Writing texts into selection statements.
#pragma once

#include <string>
#include <string_view>

namespace velanor::store {

// The text between double quotes, its own double quotes written twice: as the value of a
// criterion it cannot change the statement's shape. Brackets at its ends keep their meaning.
std::string quoted(std::string_view text);

}  // namespace velanor::store
