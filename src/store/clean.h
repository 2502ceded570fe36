// The border where text from outside enters a record; see also clean_text.
#pragma once

#include <string>
#include <string_view>

namespace velanor::store {

// An encoded record with its marks, all else as clean_text leaves it.
std::string clean_encoded(std::string_view encoded);
// Whether it would come back as it is.
bool is_clean_encoded(std::string_view encoded);

}  // namespace velanor::store
