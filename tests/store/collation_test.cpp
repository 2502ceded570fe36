#include "store/select/collation.h"

#include <gtest/gtest.h>

namespace velanor::store::select {
namespace {

std::string key(std::string_view text) {
  std::string result;
  Collator().append_key(text, result);
  return result;
}

TEST(Collation, OrdersTextsAsAFrenchReaderExpects) {
  const char* const kAscending[] = {
      "",          " ",        "!",     "'a",    "-",     "€",      "0",    "10",   "2",    "9",
      "a",         "A",        "à",     "À",     "â",     "a b",    "a-b",  "ab",   "ae",   "æ",
      "Æ",         "af",       "béat",  "BEAU",  "cote",  "Cote",   "côte", "coté", "côté", "COTÉ2",
      "DE LA RUE", "DELAHAYE", "eleve", "élève", "Élevé", "élevée", "maïs", "n",    "ñ",    "NOËL",
      "oeuf",      "OEUF",     "œuf",   "Œuf",   "of",    "z",      "Ž",    "Ω",    "я",
  };
  for (std::size_t i = 1; i < std::size(kAscending); ++i) {
    SCOPED_TRACE(std::string(kAscending[i - 1]) + " before " + kAscending[i]);
    EXPECT_LT(key(kAscending[i - 1]), key(kAscending[i]));
  }
}

TEST(Collation, WritesTheSameLetterInTwoWaysWithOneKey) {
  EXPECT_EQ(key("é"), key("e\xCC\x81"));
  EXPECT_EQ(key("l’été"), key("l'été"));
  EXPECT_EQ(key("a\xC2\xA0"
                "b"),
            key("a b"));
}

TEST(Collation, KeysHoldNoNulAndAnyBytesHaveOne) {
  for (const std::string text : {"a\xFD"
                                 "b",
                                 "\xCC\x81", "\xE2\x82", "\xFF", "\x01\x7F"}) {
    EXPECT_EQ(key(text).find('\0'), std::string::npos);
  }
  EXPECT_LT(key("a\xFD"
                "z"),
            key("a b"));
}

}  // namespace
}  // namespace velanor::store::select
