#include "store/utf8.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace velanor::store::utf8 {
namespace {

// What may follow a lead byte: how many bytes, and the bounds of the first of them.
struct Lead {
  std::size_t length;
  unsigned char low, high;
};

Lead lead(unsigned char byte) {
  if (byte < 0x80) return {byte == 0 ? 0u : 1u, 0, 0};
  if (byte < 0xC2) return {0, 0, 0};
  if (byte < 0xE0) return {2, 0x80, 0xBF};
  if (byte == 0xE0) return {3, 0xA0, 0xBF};
  if (byte == 0xED) return {3, 0x80, 0x9F};
  if (byte < 0xF0) return {3, 0x80, 0xBF};
  if (byte == 0xF0) return {4, 0x90, 0xBF};
  if (byte < 0xF4) return {4, 0x80, 0xBF};
  if (byte == 0xF4) return {4, 0x80, 0x8F};
  return {0, 0, 0};
}

// Byte position `characters` characters after `at`, at most the end.
std::size_t advance(std::string_view text, std::size_t at, std::size_t characters) {
  for (; characters > 0 && at < text.size(); --characters) {
    ++at;
    while (at < text.size() && is_continuation(text[at])) ++at;
  }
  return at;
}

}  // namespace

std::size_t sequence_length(std::string_view text, std::size_t at) {
  const Lead first = lead(static_cast<unsigned char>(text[at]));
  if (first.length < 2) return first.length;
  if (text.size() - at < first.length) return 0;
  const auto second = static_cast<unsigned char>(text[at + 1]);
  if (second < first.low || second > first.high) return 0;
  for (std::size_t i = 2; i < first.length; ++i) {
    if (!is_continuation(text[at + i])) return 0;
  }
  return first.length;
}

char32_t decode(std::string_view text, std::size_t at) {
  const auto first = static_cast<unsigned char>(text[at]);
  if (first < 0x80) return first;
  const int more = first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
  char32_t code = first & (0x3F >> more);
  for (std::size_t i = 1; i <= static_cast<std::size_t>(more) && at + i < text.size(); ++i) {
    code = code << 6 | (static_cast<unsigned char>(text[at + i]) & 0x3F);
  }
  return code;
}

std::size_t length(std::string_view text) {
  return text.size() - static_cast<std::size_t>(std::count_if(text.begin(), text.end(), is_continuation));
}

bool is_ascii(std::string_view text) {
  std::uint64_t seen = 0;
  std::size_t at = 0;
  for (; at + sizeof seen <= text.size(); at += sizeof seen) {
    std::uint64_t bytes;
    std::memcpy(&bytes, text.data() + at, sizeof bytes);
    seen |= bytes;
  }
  for (; at < text.size(); ++at) seen |= static_cast<unsigned char>(text[at]);
  return (seen & 0x8080808080808080u) == 0;
}

std::string_view slice(std::string_view text, std::size_t first, std::size_t count) {
  if (is_ascii(text)) return text.substr(std::min(first - 1, text.size()), count);
  const std::size_t begin = advance(text, 0, first - 1);
  return text.substr(begin, advance(text, begin, count) - begin);
}

}  // namespace velanor::store::utf8
