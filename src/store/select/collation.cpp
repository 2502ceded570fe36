#include "store/select/collation.h"

#include <array>
#include <cstdint>

#include "store/utf8.h"

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

// Second level, from the lightest. Row by row: the combining character, the letters that carry
// the accent, and those letters without it.
struct AccentRow {
  char32_t combining;
  std::u32string_view accented;
  std::u32string_view plain;
};
constexpr AccentRow kAccents[] = {
    {0x301, U"ÁáĆćÉéÍíĹĺŃńÓóŔŕŚśÚúÝýŹź", U"AaCcEeIiLlNnOoRrSsUuYyZz"},
    {0x300, U"ÀàÈèÌìÒòÙù", U"AaEeIiOoUu"},
    {0x306, U"ĂăĔĕĞğĬĭŎŏŬŭ", U"AaEeGgIiOoUu"},
    {0x302, U"ÂâĈĉÊêĜĝĤĥÎîĴĵÔôŜŝÛûŴŵŶŷ", U"AaCcEeGgHhIiJjOoSsUuWwYy"},
    {0x30C, U"ČčĎďĚěĽľŇňŘřŠšŤťŽž", U"CcDdEeLlNnRrSsTtZz"},
    {0x30A, U"ÅåŮů", U"AaUu"},
    {0x308, U"ÄäËëÏïÖöÜüŸÿ", U"AaEeIiOoUuYy"},
    {0x30B, U"ŐőŰű", U"OoUu"},
    {0x303, U"ÃãĨĩÑñÕõŨũ", U"AaIiNnOoUu"},
    {0x307, U"ĊċĖėĠġİĿŀŻż", U"CcEeGgILlZz"},
    {0x338, U"ÐðĐđØøĦħıŁłŦŧ", U"DdDdOoHhiLlTt"},
    {0x327, U"ÇçĢģĶķĻļŅņŖŗŞşŢţ", U"CcGgKkLlNnRrSsTt"},
    {0x328, U"ĄąĘęĮįŲų", U"AaEeIiUu"},
    {0x304, U"ĀāĒēĪīŌōŪū", U"AaEeIiOoUu"},
};
constexpr char kFirstAccent = kNoAccent + 1;
constexpr char kLigature = kFirstAccent + static_cast<char>(std::size(kAccents));
constexpr char kOtherAccent = kLigature + 1;

struct Ligature {
  char32_t code;
  char first, second;
};
constexpr Ligature kLigatures[] = {
    {U'Œ', 'O', 'E'}, {U'œ', 'o', 'e'}, {U'Æ', 'A', 'E'}, {U'æ', 'a', 'e'},
    {U'ß', 's', 's'}, {U'Ĳ', 'I', 'J'}, {U'ĳ', 'i', 'j'},
};

// Characters that read like an ASCII one.
struct Alias {
  char32_t code;
  char like;
};
constexpr Alias kAliases[] = {{0xA0, ' '},   {0x2009, ' '}, {0x202F, ' '},  {0x2010, '-'},
                              {0x2011, '-'}, {0x2013, '-'}, {0x2018, '\''}, {0x2019, '\''}};

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

// Up to two letters for each character of the Latin blocks; none: not a letter with an accent.
struct Letters {
  char first = 0, second = 0, accent = kNoAccent;
};
constexpr char32_t kLatinEnd = 0x180;
constexpr auto kLatin = [] {
  std::array<Letters, kLatinEnd> table{};
  char accent = kFirstAccent;
  for (const auto& row : kAccents) {
    for (std::size_t i = 0; i < row.accented.size(); ++i) {
      table[row.accented[i]] = {static_cast<char>(row.plain[i]), 0, accent};
    }
    ++accent;
  }
  for (const auto& ligature : kLigatures) table[ligature.code] = {ligature.first, ligature.second, kLigature};
  return table;
}();

bool is_combining(char32_t code) { return code >= 0x300 && code < 0x370; }

char combining_accent(char32_t code) {
  for (std::size_t i = 0; i < std::size(kAccents); ++i) {
    if (kAccents[i].combining == code) return static_cast<char>(kFirstAccent + i);
  }
  return kOtherAccent;
}

bool is_symbol(char32_t code) {
  return code < 0xC0 || code == 0xD7 || code == 0xF7 || (code >= 0x2000 && code < 0x2C00) ||
         (code >= 0x3000 && code < 0x3040);
}

char alias_of(char32_t code) {
  for (const auto& alias : kAliases) {
    if (alias.code == code) return alias.like;
  }
  return 0;
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
  if (is_combining(code)) return set_accent(combining_accent(code));
  if (const char like = alias_of(code)) {
    key += kAsciiWeights[static_cast<unsigned char>(like)];
    ++count_;
  } else if (const Letters letters = code < kLatinEnd ? kLatin[code] : Letters{}; letters.first != 0) {
    take_letter(letters.first, letters.accent, is_upper(letters.first), key);
    if (letters.second != 0) take_letter(letters.second, letters.accent, is_upper(letters.second), key);
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
