// Text as older spreadsheets write it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace velanor::exchange {

// The text in UTF-8. Nothing for what makes no sense as French in Windows-1252: damaged UTF-8, or one of
// the other encodings, whose accents would be letters of no name here.
std::optional<std::string> from_windows_1252(std::string_view bytes);

}  // namespace velanor::exchange
