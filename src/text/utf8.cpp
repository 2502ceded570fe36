#include "text/utf8.h"

namespace velanor::text {
namespace {

bool is_continuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

// Byte offset behind the first `count` characters.
std::size_t offset_of(std::string_view text, int count) {
  std::size_t at = 0;
  while (count-- > 0 && at < text.size()) {
    ++at;
    while (at < text.size() && is_continuation(text[at])) ++at;
  }
  return at;
}

char32_t upper(char32_t c) {
  if (c >= U'a' && c <= U'z') return c - 32;
  if (c >= 0xE0 && c <= 0xFE && c != 0xF7) return c - 32;               // Latin-1 letters
  if (c == 0xFF) return 0x178;                                          // ÿ
  if (c >= 0x100 && c <= 0x137 && c != 0x131) return c & ~char32_t{1};  // Latin Extended-A, even capitals
  if (c >= 0x14A && c <= 0x177) return c & ~char32_t{1};                // including œ
  if ((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E)) return c % 2 == 0 ? c - 1 : c;
  return c;
}

}  // namespace

int length(std::string_view text) {
  int count = 0;
  for (char byte : text) count += is_continuation(byte) ? 0 : 1;
  return count;
}

std::string_view left(std::string_view text, int count) { return text.substr(0, offset_of(text, count)); }

std::string_view mid(std::string_view text, int first, int count) {
  text.remove_prefix(offset_of(text, first - 1));
  return count < 0 ? text : left(text, count);
}

char32_t next(std::string_view text, std::size_t& at) {
  const auto lead = static_cast<unsigned char>(text[at++]);
  if (lead < 0x80) return lead;
  const int more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : 0;
  if (more == 0) return 0xFFFD;
  char32_t character = lead & (0x3F >> more);
  for (int i = 0; i < more; ++i) {
    if (at >= text.size() || !is_continuation(text[at])) return 0xFFFD;
    character = character << 6 | (static_cast<unsigned char>(text[at++]) & 0x3F);
  }
  constexpr char32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
  const bool surrogate = character >= 0xD800 && character < 0xE000;
  return character < kLeast[more] || surrogate || character > 0x10FFFF ? 0xFFFD : character;
}

void append(std::string& text, char32_t c) {
  if (c < 0x80) {
    text += static_cast<char>(c);
  } else if (c < 0x800) {
    text += static_cast<char>(0xC0 | c >> 6);
    text += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    text += static_cast<char>(0xE0 | c >> 12);
    text += static_cast<char>(0x80 | (c >> 6 & 0x3F));
    text += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    text += static_cast<char>(0xF0 | c >> 18);
    text += static_cast<char>(0x80 | (c >> 12 & 0x3F));
    text += static_cast<char>(0x80 | (c >> 6 & 0x3F));
    text += static_cast<char>(0x80 | (c & 0x3F));
  }
}

std::string upper(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) append(out, upper(next(text, at)));
  return out;
}

std::string_view trim(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string pad_left(std::string_view text, int width, char fill) {
  const int missing = width - length(text);
  return std::string(missing > 0 ? static_cast<std::size_t>(missing) : 0, fill).append(text);
}

std::string pad_right(std::string_view text, int width, char fill) {
  const int missing = width - length(text);
  std::string out(text);
  return out.append(missing > 0 ? static_cast<std::size_t>(missing) : 0, fill);
}

}  // namespace velanor::text
