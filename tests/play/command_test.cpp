#include "play/command.h"

#include <gtest/gtest.h>

namespace velanor::play {
namespace {

Command parse(std::string_view line) { return parse_command(words_of(line)); }

TEST(Command, ALineNotOfTheLanguageNamesTheWordThatIsWrong) {
  const std::pair<std::string_view, std::string> kCases[] = {
      {"Focus Txt", "word 1: there is no command \"Focus\""},
      {"init now", "word 2 is one too many: the command is init"},
      {"type Txt", "word 3 is missing: the command is type CONTROL TEXT"},
      {"focus \"\"", "word 2, \"\": expected CONTROL, that is a name that is not empty"},
      {"put F 1 0 x", "word 4, \"0\": expected POSITION, that is A, A,V or A,V,S with numbers from 1"},
      {"put F 1 1,2,3,4 x",
       "word 4, \"1,2,3,4\": expected POSITION, that is A, A,V or A,V,S with numbers from 1"},
      {"put F 1 1, x", "word 4, \"1,\": expected POSITION, that is A, A,V or A,V,S with numbers from 1"},
      {"put F 1 -1 x", "word 4, \"-1\": expected POSITION, that is A, A,V or A,V,S with numbers from 1"},
      {"put F 1 123456789 x",
       "word 4, \"123456789\": expected POSITION, that is A, A,V or A,V,S with numbers from 1"},
      {"press Txt Entrée",
       "word 3, \"Entrée\": expected KEY, that is Enter, Backspace, Tab, Escape, Delete or one character"},
      {"dblclick Lst 2", "word 3, \"2\": expected #N, that is # and a number from 0"},
      {"dblclick Lst \"#2\"", "word 3, \"#2\": expected #N, that is # and a number from 0"},
      {"tab x", "word 2, \"x\": expected N, that is a number from 0"},
      {"scroll Bdv 1.5", "word 3, \"1.5\": expected N, that is a number from 0"},
      {"expect Txt texte x",
       "word 3, \"texte\": expected PROPERTY, that is text, caption, enabled, visible, value, max, index, "
       "count, items or page"},
      {"expect-icon alert", "word 2, \"alert\": expected WORD, that is exclamation, question or information"},
      {"answer", "word 2 is missing: the command is answer WORD"},
      {"answer Oui Yes", "word 3, \"Yes\": expected WORD, that is OK, Oui, Non or Annuler"},
  };
  for (const auto& [line, message] : kCases) {
    SCOPED_TRACE(line);
    try {
      parse(line);
      FAIL() << "no error";
    } catch (const SyntaxError& error) {
      EXPECT_EQ(error.what(), message);
    }
  }
}

TEST(Command, AQuotedNumberOfALineIsAText) {
  EXPECT_EQ(parse("pick Cbo #12").number, 12);
  EXPECT_EQ(parse("pick Cbo \"#12\"").number, -1);
  EXPECT_EQ(parse("pick Cbo \"#12\"").text, "#12");
  EXPECT_EQ(parse("pick Cbo #x").text, "#x");
}

TEST(Command, AKeyIsNamedOrACharacter) {
  EXPECT_EQ(parse("press Txt Enter").key.code, screen::Key::kEnter);
  EXPECT_EQ(parse("press Txt é").key.code, U'é');
  EXPECT_EQ(parse("press Txt \" \"").key.code, U' ');
}

}  // namespace
}  // namespace velanor::play
