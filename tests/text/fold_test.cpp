// Texts as somebody who looks for something types them.
#include "text/fold.h"

#include <gtest/gtest.h>

namespace velanor::text {
namespace {

TEST(FoldTest, WhatReadsAlikeFoldsToTheSame) {
  const std::pair<const char*, const char*> kAlike[] = {
      {"CHÂTEAUROUX", "chateauroux"},    {"Saint-Étienne", "st etienne"},  {"Sainte-Foy", "STE FOY"},
      {"L'Haÿ-les-Roses", "l hay les "}, {"NŒUX-LES-MINES", "noeux-les-"}, {"  Łódź  ", "lodz"},
      {"E\xCC\x81\x74\xC3\xA9", "été"},  {"L’Île‑d’Yeu", "l'ile d'yeu"}};
  for (const auto& [stored, typed] : kAlike) {
    SCOPED_TRACE(stored);
    EXPECT_TRUE(holds_folded(stored, folded(typed)));
  }
}

TEST(FoldTest, WordsAreNotTakenForTheAbbreviationsThatTheyEndIn) {
  EXPECT_EQ(folded("Brest sur Ste"), "brest sur ste");
  EXPECT_FALSE(holds_folded("Brest", folded("st e")));
  EXPECT_EQ(folded("St"), "st") << "nothing follows that it could abbreviate";
}

}  // namespace
}  // namespace velanor::text
