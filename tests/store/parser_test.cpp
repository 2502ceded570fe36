#include "store/select/parser.h"

#include <gtest/gtest.h>

#include "store/select/dictionary.h"
#include "velanor/database.h"

namespace velanor::store::select {
namespace {

// The sentence of the error, "" where there is none.
std::string refusal(std::string_view statement, std::string_view file) {
  try {
    Dictionary dictionary;
    dictionary.define("VELANORO", "CodeAsso", {.attribute = 0, .first = 6, .count = 3});
    dictionary.define("VELANORO", "Annee", {.attribute = 0, .first = 9});
    parse_statement(statement, file, dictionary);
    return "";
  } catch (const DbError& error) {
    EXPECT_EQ(error.number(), kBadStatement);
    return error.what();
  }
}

TEST(Parser, AMalformedStatementIsRefusedAtItsCharacterWithWhatWasExpected) {
  const std::string kOperator = "un opérateur (=, #, <>, >=, <) était attendu.";
  const std::string kAttribute = "un attribut (numéro, @ID ou nom du dictionnaire) était attendu.";
  struct {
    const char* statement;
    int character;
    std::string sentence;
  } const kCases[] = {
      {"", 1, "SSELECT était attendu."},
      {"SELECT F", 1, "SSELECT était attendu."},
      {"sselect F", 1, "SSELECT était attendu."},
      {"SSELECT", 8, "un nom de fichier était attendu."},
      {"SSELECT AVEC", 9, "un nom de fichier était attendu."},
      {"SSELECT \"F\"", 9, "un nom de fichier était attendu."},
      {"SSELECT G PAR 1", 9, "le fichier de la demande, « F », était attendu."},
      {"SSELECT F X", 11, "AVEC, un numéro d'attribut, PAR, PAR-DECR ou la fin était attendu."},
      {"SSELECT F avec 1 = 2", 11, "AVEC, un numéro d'attribut, PAR, PAR-DECR ou la fin était attendu."},
      {"SSELECT F AVEC", 15, kAttribute},
      {"SSELECT F AVEC = 1", 16, kAttribute},
      {"SSELECT F AVEC AVEC", 16, kAttribute},
      {"SSELECT F AVEC \"1\" = 2", 16, kAttribute},
      {"SSELECT F AVEC 1234567890 = 2", 16, kAttribute},
      {"SSELECT F AVEC Annee = 2026", 16, "« Annee » n'est pas au dictionnaire du fichier F."},
      {"SSELECT F AVEC -1 = 2", 16, "« -1 » n'est pas au dictionnaire du fichier F."},
      {"SSELECT F AVEC 1", 17, kOperator},
      {"SSELECT F AVEC 1 \"x\"", 18, kOperator},
      {"SSELECT F AVEC 1 > 2", 18, kOperator},
      {"SSELECT F AVEC 1 <= 2", 19, "une valeur était attendue."},
      {"SSELECT F AVEC 1 =", 19, "une valeur était attendue."},
      {"SSELECT F AVEC 1 = PAR 1", 20, "une valeur était attendue."},
      {"SSELECT F AVEC 1 = AND AVEC 2 = 3", 20, "une valeur était attendue."},
      {"SSELECT F AVEC 1 = \"é\" AND", 27, "AVEC ou un opérateur (=, #, <>, >=, <) était attendu."},
      {"SSELECT F AVEC 1 = 2 OR 3", 25, "AVEC ou un opérateur (=, #, <>, >=, <) était attendu."},
      {"SSELECT F AVEC 1 = \"abc", 24, "un guillemet fermant était attendu."},
      {"SSELECT F AVEC 1 = \"a\"b\"", 23, "un blanc était attendu."},
      {"SSELECT F AVEC 1 = \"a\"PAR 1", 23, "un blanc était attendu."},
      {"SSELECT F AVEC 1 = 2 X", 22, "AND, OR, un numéro d'attribut, PAR, PAR-DECR ou la fin était attendu."},
      {"SSELECT F 0 0", 13, "PAR, PAR-DECR ou la fin était attendu."},
      {"SSELECT F PAR", 14, kAttribute},
      {"SSELECT F PAR 1 2", 17, "PAR, PAR-DECR ou la fin était attendu."},
      {"SSELECT F PAR 1 AVEC 2 = 3", 17, "PAR, PAR-DECR ou la fin était attendu."},
      {"SSELECT F PAR-DECR Nom", 20, "« Nom » n'est pas au dictionnaire du fichier F."},
  };
  for (const auto& bad : kCases) {
    SCOPED_TRACE(bad.statement);
    EXPECT_EQ(refusal(bad.statement, "F"),
              "Sélection illisible au caractère " + std::to_string(bad.character) + " : " + bad.sentence);
  }
}

TEST(Parser, EveryCutOfAStatementIsReadOrRefusedButNeverAnythingElse) {
  const std::string statement =
      "SSELECT VELANORO AVEC 0 = \"[0072026\" AND AVEC CodeAsso <> \"a\"\"b\" OR >= 5 AND < \"é]\" 0 PAR 1 "
      "PAR-DECR Annee";
  EXPECT_EQ(refusal(statement, "VELANORO"), "");
  for (std::size_t length = 0; length < statement.size(); ++length) {
    const std::string sentence = refusal(statement.substr(0, length), "VELANORO");
    EXPECT_TRUE(sentence.empty() || sentence.starts_with("Sélection illisible au caractère ")) << sentence;
  }
}

TEST(Parser, OperatorsWithoutAvecContinueTheDesignatorAndAvecStartsAnother) {
  const auto statement =
      parse_statement("SSELECT F AVEC 0 < 1 OR >= 2 AND # 3 AND AVEC 4 = 5 OR AVEC 6 = 7", "F", {});
  ASSERT_EQ(statement.criteria.size(), 2u);
  ASSERT_EQ(statement.criteria[0].size(), 2u);
  const auto& chain = statement.criteria[0][0].tests;
  ASSERT_EQ(chain.size(), 2u);
  EXPECT_EQ(chain[0].size(), 1u);
  EXPECT_EQ(chain[1].size(), 2u);
  EXPECT_TRUE(chain[1][1].negated);
  EXPECT_EQ(statement.criteria[0][1].designator.attribute, 4);
  EXPECT_EQ(statement.criteria[1][0].designator.attribute, 6);
}

TEST(Parser, BracketsAreSignsOnlyAtTheEndsOfQuotedValues) {
  using Kind = select::Test::Kind;
  struct {
    const char* written;
    Kind kind;
    const char* text;
  } const kValues[] = {
      {"= \"[a\"", Kind::kEndsWith, "a"},
      {"= \"a]\"", Kind::kBeginsWith, "a"},
      {"= \"[a]\"", Kind::kContains, "a"},
      {"= \"a[b]c\"", Kind::kIs, "a[b]c"},
      {"= [a]", Kind::kIs, "[a]"},
      {"= \"[\"", Kind::kEndsWith, ""},
      {"= \"]\"", Kind::kBeginsWith, ""},
      {"= \"]a[\"", Kind::kIs, "]a["},
      {"= \"\"", Kind::kIs, ""},
      {"= \"\"\"x\"\"\"", Kind::kIs, "\"x\""},
      {"=a", Kind::kIs, "a"},
      {">= \"01[400\"", Kind::kAtLeast, "01400"},
      {"< \"[4[0]\"", Kind::kBelow, "40]"},
  };
  for (const auto& value : kValues) {
    SCOPED_TRACE(value.written);
    const auto statement = parse_statement(std::string("SSELECT F AVEC 1 ") + value.written, "F", {});
    const select::Test& test = statement.criteria.at(0).at(0).tests.at(0).at(0);
    EXPECT_EQ(test.kind, value.kind);
    EXPECT_EQ(test.text, value.text);
  }
}

TEST(Parser, AHundredThousandCriteriaAreReadLikeOne) {
  std::string statement = "SSELECT F AVEC 1 = x";
  for (int i = 0; i < 50'000; ++i) statement += i % 2 == 0 ? " AND # y" : " OR AVEC 1 = z";
  EXPECT_EQ(refusal(statement, "F"), "");
  EXPECT_NE(refusal(statement + " AND", "F"), "");
}

TEST(AttributeList, IsNumbersBetweenSingleBlanks) {
  EXPECT_EQ(parse_attribute_list("0 1 2 10 8"), (std::vector<int>{0, 1, 2, 10, 8}));
  const std::pair<const char*, int> kBad[] = {{"", 1},      {" 0", 1},  {"0  1", 3}, {"0 1 ", 5},
                                              {"0 Nom", 3}, {"0,1", 1}, {"-1", 1},   {"0 1234567890", 3}};
  for (const auto& [list, character] : kBad) {
    SCOPED_TRACE(list);
    try {
      parse_attribute_list(list);
      ADD_FAILURE() << "accepted";
    } catch (const DbError& error) {
      EXPECT_EQ(error.number(), kBadStatement);
      EXPECT_EQ(std::string(error.what()), "Liste d'attributs illisible au caractère " +
                                               std::to_string(character) +
                                               " : un numéro d'attribut était attendu.");
    }
  }
}

}  // namespace
}  // namespace velanor::store::select
