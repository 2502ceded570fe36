#include "exchange/windows_1252.h"

#include <algorithm>
#include <array>

#include "store/utf8.h"
#include "text/utf8.h"

namespace velanor::exchange {
namespace {

// 0x80 to 0x9F; 0 where nothing is assigned.
constexpr std::array<char16_t, 32> kUpper{u'€', 0,    u'‚', u'ƒ', u'„', u'…', u'†', u'‡', u'ˆ', u'‰', u'Š',
                                          u'‹', u'Œ', 0,    u'Ž', 0,    0,    u'‘', u'’', u'“', u'”', u'•',
                                          u'–', u'—', u'˜', u'™', u'š', u'›', u'œ', 0,    u'ž', u'Ÿ'};

// Characters that French does without, where the code pages of MS-DOS and of the first Macintoshes have
// its accents.
constexpr std::u16string_view kForeign = u"‚ƒ„†‡ˆ‰‹Ž˜›¬ÐÞðþ×÷";

bool is_control(unsigned char byte) {
  return (byte < 0x20 && byte != '\t' && byte != '\r' && byte != '\n') || byte == 0x7F;
}

char32_t decoded(unsigned char byte) { return byte >= 0x80 && byte < 0xA0 ? kUpper[byte - 0x80] : byte; }

bool is_french(unsigned char byte) {
  const char32_t character = decoded(byte);
  return character != 0 && !is_control(byte) &&
         kForeign.find(static_cast<char16_t>(character)) == kForeign.npos;
}

}  // namespace

bool Windows1252Judge::look_at(std::string_view piece) {
  foreign_ = foreign_ || !std::all_of(piece.begin(), piece.end(), is_french);
  for (std::size_t at = 0; at < piece.size();) {
    const std::size_t length = store::utf8::sequence_length(piece, at);
    if (length > 1) ++valid_;
    if (length == 0) ++invalid_;
    at += std::max<std::size_t>(length, 1);
  }
  return !foreign_;
}

// French in Windows-1252 hardly ever happens to be valid where it is not plain.
bool Windows1252Judge::makes_sense() const { return !foreign_ && valid_ < invalid_; }

void append_windows_1252(std::string& text, std::string_view bytes) {
  text.reserve(text.size() + bytes.size() + bytes.size() / 8);
  for (const char byte : bytes) text::append(text, decoded(static_cast<unsigned char>(byte)));
}

}  // namespace velanor::exchange
