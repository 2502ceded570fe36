// What becomes of keys and of whole values in a text field, wherever it is shown.
#pragma once

#include <string_view>

#include "velanor/control.h"

namespace velanor::test {

// A field of five characters that takes one comma, a point as a comma, and no x.
class SmallField : public screen::TextBox {
 public:
  explicit SmallField(screen::Form& form) : TextBox(form, {.name = "Txt", .max_length = 5}) {
    key_press = [this](screen::Key& key) {
      if (key.code == U'.') key.code = U',';
      if (key.code == U'x' || (key.code == U',' && text().find(',') != std::string::npos)) key.swallow();
    };
  }
};

struct TypedKey {
  const char* what;
  std::string_view text;
  screen::Span at;
  char32_t key;
  std::string_view left;
};

// 𝒜 stands outside the basic plane (two units of UTF-16); e and ́ are two characters that show as one.
inline constexpr TypedKey kTypedKeys[]{
    {"at the caret", "ac", {1, 0}, U'b', "abc"},
    {"in the place of what is selected", "abc", {0, 2}, U'd', "dc"},
    {"in a full field", "abcde", {2, 0}, U'f', "abcde"},
    {"in a full field, over a selection", "abcde", {4, 1}, U'f', "abcdf"},
    {"changed by the filter", "12", {1, 0}, U'.', "1,2"},
    {"swallowed by the filter", "12", {1, 0}, U'x', "12"},
    {"swallowed over a selection", "12", {0, 2}, U'x', "12"},
    {"a second comma", "1,2", {3, 0}, U',', "1,2"},
    {"a comma over the comma", "1,2", {1, 1}, U'.', "1,2"},
    {"a comma before the comma, over a digit", "12,3", {1, 1}, U',', "12,3"},
    {"outside the plane", "ac", {1, 0}, U'𝒜', "a𝒜c"},
    {"behind one outside the plane", "𝒜c", {1, 0}, U'b', "𝒜bc"},
    {"over some outside the plane", "a𝒜𝒜b", {1, 2}, U'c', "acb"},
    {"the fifth of a field", "𝒜𝒜𝒜𝒜", {4, 0}, U'b', "𝒜𝒜𝒜𝒜b"},
    {"the sixth of a field", "𝒜𝒜𝒜𝒜𝒜", {5, 0}, U'b', "𝒜𝒜𝒜𝒜𝒜"},
    {"an accent by itself", "e", {1, 0}, U'\u0301', "e\u0301"},
    {"behind an accent by itself", "e\u0301a", {2, 0}, U'b', "e\u0301ba"},
    {"Backspace", "abc", {2, 0}, screen::Key::kBackspace, "ac"},
    {"Backspace on a selection", "a𝒜bc", {1, 2}, screen::Key::kBackspace, "ac"},
    {"Backspace where nothing stands before", "ab", {0, 0}, screen::Key::kBackspace, "ab"},
    {"Backspace behind one outside the plane", "a𝒜b", {2, 0}, screen::Key::kBackspace, "ab"},
    {"Backspace behind an accent by itself", "e\u0301", {2, 0}, screen::Key::kBackspace, "e"},
};

struct WholeValue {
  std::string_view value, left;
};

inline constexpr WholeValue kWholeValues[]{{"1.2,3", "1,23"},
                                           {"axb", "ab"},
                                           {"𝒜𝒜𝒜𝒜𝒜𝒜", "𝒜𝒜𝒜𝒜𝒜"},
                                           {"e\u0301e\u0301e\u0301", "e\u0301e\u0301e"},
                                           {"abcdefg", "abcde"}};

}  // namespace velanor::test
