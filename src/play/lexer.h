// Lines of a scenario cut into words.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace velanor::play {

// A line that is not of the language: what is wrong with it, and where.
class SyntaxError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct Word {
  std::string text;
  bool quoted = false;  // a quoted "#2" is a text, a bare one the number of a line
};

// The words of one line, none for a blank line and for a comment. A word in double quotes may be
// empty and hold blanks; inside, \" is a double quote and \\ a backslash, and a backslash before
// anything else stands for itself. A bare word is taken as it stands. Characters are counted from 1.
std::vector<Word> words_of(std::string_view line);

}  // namespace velanor::play
