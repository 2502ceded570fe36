// One command of a scenario, parsed.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "play/lexer.h"
#include "play/property.h"
#include "store/position.h"
#include "velanor/screen.h"

namespace velanor::play {

enum class Verb {
  Include,
  Put,
  Remove,
  Init,
  Record,
  Focus,
  Leave,
  Type,
  Press,
  Clear,
  Pick,
  DoubleClick,
  Click,
  Scroll,
  Tab,
  RightClick,
  Answer,
  Close,
  Shot,
  Expect,
  ExpectFocus,
  ExpectForm,
  ExpectMessage,
  ExpectIcon,
  ExpectNoMessage,
  ExpectStatement,
  ExpectRecord,
  ExpectAbsent,
  Get,
};

// Holds what its verb asks for; the rest is left as made.
struct Command {
  Verb verb;
  std::string name;  // of a control, a form, a picture, or a scenario
  std::string file;
  std::string id;
  std::string text;
  store::Position position;
  screen::Key key;
  int number = -1;  // a line, a page or a value; -1: the command gives a text instead
  Property property = Property::Text;
  screen::Icon icon = screen::Icon::Exclamation;
  std::vector<screen::Answer> answers;
};

// Throws SyntaxError naming the word that is wrong. There must be at least one word.
Command parse_command(const std::vector<Word>& words);

// Whether the verb counts as passed when nothing is wrong: what the user does, and what must be so.
// What prepares or prints counts only when it fails.
bool counts(Verb verb);

}  // namespace velanor::play
