#include "text/latin.h"

#include <array>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace velanor::text {
namespace {

// From the lightest. Row by row: the combining character, the letters that carry
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
constexpr int kLigature = 1 + static_cast<int>(std::size(kAccents));
constexpr int kOtherAccent = kLigature + 1;

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

constexpr char32_t kLatinEnd = 0x180;
constexpr auto kLatin = [] {
  std::array<Letters, kLatinEnd> table{};
  int accent = 1;
  for (const auto& row : kAccents) {
    for (std::size_t i = 0; i < row.accented.size(); ++i)
      table[row.accented[i]] = {static_cast<char>(row.plain[i]), 0, accent};
    ++accent;
  }
  for (const auto& ligature : kLigatures) table[ligature.code] = {ligature.first, ligature.second, kLigature};
  return table;
}();

}  // namespace

Letters letters_of(char32_t character) { return character < kLatinEnd ? kLatin[character] : Letters{}; }

bool is_combining(char32_t character) { return character >= 0x300 && character < 0x370; }

int combining_accent(char32_t character) {
  for (std::size_t i = 0; i < std::size(kAccents); ++i) {
    if (kAccents[i].combining == character) return 1 + static_cast<int>(i);
  }
  return kOtherAccent;
}

char ascii_like(char32_t character) {
  for (const auto& alias : kAliases) {
    if (alias.code == character) return alias.like;
  }
  return 0;
}

}  // namespace velanor::text
