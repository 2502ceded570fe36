// The fixed layout of an activity line: the label in 30 characters, the share in the 6 behind.
#pragma once

#include <string>
#include <string_view>

#include "text/utf8.h"

namespace velanor::card {

inline constexpr int kActivityLabelWidth = 30;
inline constexpr int kActivityShareWidth = 6;

// A longer label shows its first 30 characters.
inline std::string activity_line(std::string_view label, std::string_view share) {
  return text::pad_right(text::left(label, kActivityLabelWidth), kActivityLabelWidth) +
         text::pad_left(share, kActivityShareWidth);
}

inline std::string_view activity_label(std::string_view line) {
  return text::trim(text::left(line, kActivityLabelWidth));
}

// The share as typed. Read from character 30 on, which is a filling blank unless the label is 30
// characters long.
inline std::string_view activity_share(std::string_view line) {
  const bool filled = text::mid(line, kActivityLabelWidth, 1) != " ";
  return text::trim(text::mid(line, filled ? kActivityLabelWidth + 1 : kActivityLabelWidth));
}

// Whether a label of the list is the one that a line shows: labels count on 29 characters.
inline bool is_activity_label(std::string_view label, std::string_view line) {
  const auto key = [](std::string_view text) {
    return text::trim(text::left(text, kActivityLabelWidth - 1));
  };
  return key(label) == key(line);
}

}  // namespace velanor::card
