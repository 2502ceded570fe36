// UTF-8, byte by byte: what is a valid sequence, and walking characters.
#pragma once

#include <cstddef>
#include <string_view>

namespace velanor::store::utf8 {

inline bool is_continuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

// Length of the valid sequence at `at`, 0 where there is none (overlong forms, surrogates, cut
// sequences and NUL are none). `at` must be inside the text.
std::size_t sequence_length(std::string_view text, std::size_t at);

bool is_ascii(std::string_view text);

// The character at `at` of a valid text.
char32_t decode(std::string_view text, std::size_t at);

// Number of characters of a valid text.
std::size_t length(std::string_view text);

// The characters `first` to `first + count - 1` (from 1) of a valid text; fewer where it is shorter.
std::string_view slice(std::string_view text, std::size_t first, std::size_t count);

}  // namespace velanor::store::utf8
