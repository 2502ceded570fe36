// Texts counted and cut in characters, not bytes. Every text is valid UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace velanor::text {

// Characters of the text.
int length(std::string_view text);
// The first `count` characters, all of them when there are fewer.
std::string_view left(std::string_view text, int count);
// From character `first` (from 1) on, at most `count` characters (-1: to the end).
std::string_view mid(std::string_view text, int first, int count = -1);

// Decodes the character at byte `at` and moves `at` behind it; U+FFFD for what is not UTF-8.
char32_t next(std::string_view text, std::size_t& at);
void append(std::string& text, char32_t character);

// Upper case of the letters that French and its neighbours use.
std::string upper(std::string_view text);
// Without blanks at either end.
std::string_view trim(std::string_view text);
// Filled with `fill` up to `width` characters; a text that is longer comes back as it is.
std::string pad_left(std::string_view text, int width, char fill = ' ');
std::string pad_right(std::string_view text, int width, char fill = ' ');

inline bool is_digit(char32_t character) { return character >= U'0' && character <= U'9'; }

}  // namespace velanor::text
