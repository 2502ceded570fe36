// The files that the component uses.
#pragma once

#include <string>
#include <string_view>

namespace velanor::app {

bool is_known_file(std::string_view name);
// Their names, separated by commas.
std::string known_files();

}  // namespace velanor::app
