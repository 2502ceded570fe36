// From the text of a request to what it says. What is not of the language throws a DbError
// (kBadStatement) that names what was expected at which character.
#pragma once

#include <string_view>
#include <vector>

#include "store/select/dictionary.h"
#include "store/select/tree.h"

namespace velanor::store::select {

// The statement; `file` is the file that the request names beside it, which must be the same.
Statement parse_statement(std::string_view statement, std::string_view file, const Dictionary& dictionary);

// The attribute list of a request: numbers separated by single blanks.
std::vector<int> parse_attribute_list(std::string_view list);

}  // namespace velanor::store::select
