#include "store/select/collation.h"

#include <array>
#include <cstdint>

#include "store/utf8.h"
#include "text/latin.h"

namespace velanor::store::select {
namespace {

// First level. Digits weigh their code, letters that of their ASCII capital, letters outside the
// table their UTF-8 bytes, which all lie above.
constexpr char kMarkWeight = 0x02;
constexpr char kBlankWeight = 0x03;
constexpr char kFirstPunctuation = 0x04;
// Stands before the UTF-8 bytes of punctuation and symbols outside ASCII.
constexpr char kOtherSymbol = 0x24;

constexpr char kLevelEnd = 0x01;
constexpr char kNoAccent = 0x02;
constexpr char kLowerCase = 0x02;
constexpr char kUpperCase = 0x03;

// Second level, from the lightest.
constexpr char weight_of(int accent) { return static_cast<char>(kNoAccent + accent); }

constexpr bool is_upper(char letter) { return letter >= 'A' && letter <= 'Z'; }
constexpr bool is_lower(char letter) { return letter >= 'a' && letter <= 'z'; }
constexpr char to_upper(char letter) {
  return is_lower(letter) ? static_cast<char>(letter - 'a' + 'A') : letter;
}

constexpr char ascii_weight(char c) {
  if (c <= ' ' || c == 0x7F) return kBlankWeight;
  if ((c >= '0' && c <= '9') || is_upper(c) || is_lower(c)) return to_upper(c);
  const int gap = c < '0' ? '!' : c < 'A' ? '!' + 10 : c < 'a' ? '!' + 36 : '!' + 62;
  return static_cast<char>(kFirstPunctuation + c - gap);
}

constexpr auto kAsciiWeights = [] {
  std::array<char, 128> weights{};
  for (std::size_t c = 0; c < weights.size(); ++c) weights[c] = ascii_weight(static_cast<char>(c));
  return weights;
}();

bool is_symbol(char32_t code) {
  return code < 0xC0 || code == 0xD7 || code == 0xF7 || (code >= 0x2000 && code < 0x2C00) ||
         (code >= 0x3000 && code < 0x3040);
}

bool is_ascii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }
bool is_mark(char byte) { return static_cast<unsigned char>(byte) >= 0xFC; }

}  // namespace

void Collator::append_key(std::string_view text, std::string& key) {
  count_ = 0;
  accents_.clear();
  cases_.clear();
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t ascii = take_ascii(text.substr(at), key);
    at += ascii;
    if (at == text.size()) break;
    if (is_mark(text[at])) {
      key += kMarkWeight;
      ++count_;
      ++at;
    } else {
      const std::size_t size = std::max<std::size_t>(utf8::sequence_length(text, at), 1);
      take(text, at, size, key);
      at += size;
    }
  }
  key += kLevelEnd;
  if (!accents_.empty()) {
    key.append(count_ - accents_.size(), kNoAccent).append(accents_.rbegin(), accents_.rend());
  }
  key += kLevelEnd;
  key += cases_;
}

std::size_t Collator::take_ascii(std::string_view text, std::string& key) {
  const std::size_t begin = key.size();
  key.resize(begin + text.size());
  std::size_t taken = 0;
  for (; taken < text.size() && is_ascii(text[taken]); ++taken) {
    key[begin + taken] = kAsciiWeights[static_cast<unsigned char>(text[taken])];
    if (is_upper(text[taken])) set_upper(count_ + taken);
  }
  key.resize(begin + taken);
  count_ += taken;
  return taken;
}

void Collator::take(std::string_view text, std::size_t at, std::size_t size, std::string& key) {
  const char32_t code = utf8::decode(text, at);
  if (text::is_combining(code)) return set_accent(weight_of(text::combining_accent(code)));
  if (const char like = text::ascii_like(code)) {
    key += kAsciiWeights[static_cast<unsigned char>(like)];
    ++count_;
  } else if (const text::Letters letters = text::letters_of(code); letters.first != 0) {
    const char accent = weight_of(letters.accent);
    take_letter(letters.first, accent, is_upper(letters.first), key);
    if (letters.second != 0) take_letter(letters.second, accent, is_upper(letters.second), key);
  } else {
    if (is_symbol(code)) key += kOtherSymbol;
    key += text.substr(at, size);
    ++count_;
  }
}

void Collator::take_letter(char letter, char accent, bool upper, std::string& key) {
  key += to_upper(letter);
  ++count_;
  if (upper) set_upper(count_ - 1);
  set_accent(accent);
}

void Collator::set_upper(std::size_t index) {
  if (cases_.size() < index) cases_.append(index - cases_.size(), kLowerCase);
  cases_ += kUpperCase;
}

void Collator::set_accent(char accent) {
  if (count_ == 0) return;
  if (accents_.size() < count_) accents_.append(count_ - accents_.size(), kNoAccent);
  accents_.back() = accent;
}

}  // namespace velanor::store::select
