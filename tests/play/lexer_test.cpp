#include "play/lexer.h"

#include <gtest/gtest.h>

namespace velanor::play {
namespace {

std::vector<std::string> texts(std::string_view line) {
  std::vector<std::string> texts;
  for (const Word& word : words_of(line)) texts.push_back(word.text);
  return texts;
}

TEST(Lexer, CutsALineIntoItsWords) {
  const std::pair<std::string_view, std::vector<std::string>> kCases[] = {
      {"", {}},
      {" \t ", {}},
      {"  # put A 1 1 x", {}},
      {"init", {"init"}},
      {"\tpick  Cbo #2 ", {"pick", "Cbo", "#2"}},
      {R"(expect Txt text "")", {"expect", "Txt", "text", ""}},
      {R"("a b" "c")", {"a b", "c"}},
      {R"("dit \"oui\" \\ non")", {R"(dit "oui" \ non)"}},
      {R"("une\ndeux" "c:\temp")", {R"(une\ndeux)", R"(c:\temp)"}},
      {R"(l"x y\z)", {R"(l"x)", R"(y\z)"}},
      {R"("# ceci")", {"# ceci"}},
      {"type Txt é€", {"type", "Txt", "é€"}},
  };
  for (const auto& [line, words] : kCases) {
    SCOPED_TRACE(line);
    EXPECT_EQ(texts(line), words);
  }
}

TEST(Lexer, SaysAtWhichCharacterAQuotedWordIsWrong) {
  const std::pair<std::string_view, std::string> kCases[] = {
      {R"(put é "abc)", "character 7: the double quote has no end"},
      {R"("abc\")", "character 1: the double quote has no end"},
      {R"(put "é"b)", "character 8: expected a blank after the closing double quote"},
      {R"("")"
       R"("")",
       "character 3: expected a blank after the closing double quote"},
      {"put \xFE", "the line holds bytes that are not a text in UTF-8"},
  };
  for (const auto& [line, message] : kCases) {
    SCOPED_TRACE(line);
    try {
      words_of(line);
      FAIL() << "no error";
    } catch (const SyntaxError& error) {
      EXPECT_EQ(error.what(), message);
    }
  }
}

}  // namespace
}  // namespace velanor::play
