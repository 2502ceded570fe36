#include "play/command.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "text/number.h"
#include "text/utf8.h"

namespace velanor::play {
namespace {

// What may stand at one place of a command.
enum class Shape { Name, File, Id, Text, Element, Key, Line, LineOrText, Number, Trait, Icon, Answers };

enum class Counting { Always, FailuresOnly };

struct VerbRow {
  Verb verb;
  std::string_view word;
  std::vector<std::pair<Shape, std::string_view>> arguments;  // and their names in messages
  Counting counting = Counting::Always;
};

using enum Shape;

// In the order of the enumeration.
const std::vector<VerbRow>& rows() {
  static const std::vector<VerbRow> kRows{
      {Verb::Include, "include", {{Name, "FILE"}}, Counting::FailuresOnly},
      {Verb::Put,
       "put",
       {{File, "FILE"}, {Id, "ID"}, {Element, "POSITION"}, {Text, "TEXT"}},
       Counting::FailuresOnly},
      {Verb::Remove, "remove", {{File, "FILE"}, {Id, "ID"}}, Counting::FailuresOnly},
      {Verb::Init, "init", {}},
      {Verb::Record, "record", {{File, "FILE"}, {Id, "ID"}}, Counting::FailuresOnly},
      {Verb::Focus, "focus", {{Name, "CONTROL"}}},
      {Verb::Leave, "leave", {}},
      {Verb::Type, "type", {{Name, "CONTROL"}, {Text, "TEXT"}}},
      {Verb::Press, "press", {{Name, "CONTROL"}, {Key, "KEY"}}},
      {Verb::Clear, "clear", {{Name, "CONTROL"}}},
      {Verb::Pick, "pick", {{Name, "CONTROL"}, {LineOrText, "TEXT or #N"}}},
      {Verb::DoubleClick, "dblclick", {{Name, "CONTROL"}, {Line, "#N"}}},
      {Verb::Click, "click", {{Name, "CONTROL"}}},
      {Verb::Scroll, "scroll", {{Name, "CONTROL"}, {Number, "N"}}},
      {Verb::Tab, "tab", {{Number, "N"}}},
      {Verb::RightClick, "rightclick", {}},
      {Verb::Answer, "answer", {{Answers, "WORD"}}, Counting::FailuresOnly},
      {Verb::Close, "close", {}},
      {Verb::Shot, "shot", {{Name, "NAME"}}, Counting::FailuresOnly},
      {Verb::Expect, "expect", {{Name, "CONTROL"}, {Trait, "PROPERTY"}, {Text, "TEXT"}}},
      {Verb::ExpectFocus, "expect-focus", {{Name, "CONTROL"}}},
      {Verb::ExpectForm, "expect-form", {{Name, "NAME"}}},
      {Verb::ExpectMessage, "expect-message", {{Text, "TEXT"}}},
      {Verb::ExpectIcon, "expect-icon", {{Icon, "WORD"}}},
      {Verb::ExpectNoMessage, "expect-no-message", {}},
      {Verb::ExpectStatement, "expect-statement", {{Text, "TEXT"}}},
      {Verb::ExpectRecord,
       "expect-record",
       {{File, "FILE"}, {Id, "ID"}, {Element, "POSITION"}, {Text, "TEXT"}}},
      {Verb::ExpectAbsent, "expect-absent", {{File, "FILE"}, {Id, "ID"}}},
      {Verb::Get, "get", {{Name, "CONTROL"}, {Trait, "PROPERTY"}}, Counting::FailuresOnly},
  };
  return kRows;
}

// A word of a fixed set and what it stands for.
template <typename Meaning>
using Meanings = std::pair<std::string_view, Meaning>;

constexpr std::array kIcons{Meanings<screen::Icon>{"exclamation", screen::Icon::Exclamation},
                            Meanings<screen::Icon>{"question", screen::Icon::Question},
                            Meanings<screen::Icon>{"information", screen::Icon::Information}};
constexpr std::array kAnswerWords{Meanings<screen::Answer>{"OK", screen::Answer::Ok},
                                  Meanings<screen::Answer>{"Oui", screen::Answer::Yes},
                                  Meanings<screen::Answer>{"Non", screen::Answer::No},
                                  Meanings<screen::Answer>{"Annuler", screen::Answer::Cancel},
                                  Meanings<screen::Answer>{"Mien", screen::Answer::Mine},
                                  Meanings<screen::Answer>{"Sien", screen::Answer::Theirs}};
constexpr std::array kKeys{
    Meanings<char32_t>{"Enter", screen::Key::kEnter},
    Meanings<char32_t>{"Backspace", screen::Key::kBackspace}, Meanings<char32_t>{"Tab", screen::Key::kTab},
    Meanings<char32_t>{"Escape", screen::Key::kEscape}, Meanings<char32_t>{"Delete", screen::Key::kDelete}};

template <typename Meaning, std::size_t Count>
std::optional<Meaning> meaning(const std::array<Meanings<Meaning>, Count>& words, std::string_view word) {
  for (const auto& [name, value] : words)
    if (name == word) return value;
  return {};
}

// Digits only; the bound keeps a slip of the pen from asking for a record of gigabytes.
std::optional<int> whole_number(std::string_view text) {
  const auto number = text::is_digits(text) ? text::whole_number(text) : std::nullopt;
  return number && *number <= 99999 ? std::optional(static_cast<int>(*number)) : std::nullopt;
}

std::optional<int> line_number(const Word& word) {
  if (word.quoted || word.text.empty() || word.text.front() != '#') return {};
  return whole_number(std::string_view(word.text).substr(1));
}

std::optional<store::Position> position(std::string_view text) {
  store::Position at;
  for (int* level : {&at.attribute, &at.value, &at.subvalue}) {
    const auto comma = text.find(',');
    const auto number = whole_number(text.substr(0, comma));
    if (!number || *number == 0) return {};
    *level = *number;
    if (comma == std::string_view::npos) return at;
    text.remove_prefix(comma + 1);
  }
  return {};
}

std::optional<char32_t> key_code(const std::string& word) {
  if (text::length(word) != 1) return meaning(kKeys, word);
  std::size_t at = 0;
  return text::next(word, at);
}

// Stores the value where there is one, and says whether there was.
template <typename Value, typename Target>
bool keep(const std::optional<Value>& value, Target& target) {
  if (value) target = *value;
  return value.has_value();
}

bool keep_text(const Word& word, std::string& target) {
  target = word.text;
  return true;
}

bool keep_name(const Word& word, std::string& target) {
  target = word.text;
  return !target.empty();
}

// Takes a word into the command; false when it has not the shape.
bool take(Shape shape, const Word& word, Command& command) {
  switch (shape) {
    case Name:
      return keep_name(word, command.name);
    case File:
      return keep_name(word, command.file);
    case Id:
      return keep_name(word, command.id);
    case Text:
      return keep_text(word, command.text);
    case Element:
      return keep(position(word.text), command.position);
    case Key:
      return keep(key_code(word.text), command.key.code);
    case Line:
      return keep(line_number(word), command.number);
    case LineOrText:
      return keep(line_number(word), command.number) || keep_text(word, command.text);
    case Number:
      return keep(whole_number(word.text), command.number);
    case Trait:
      return keep(property_named(word.text), command.property);
    case Icon:
      return keep(meaning(kIcons, word.text), command.icon);
    case Answers: {
      const auto answer = meaning(kAnswerWords, word.text);
      if (answer) command.answers.push_back(*answer);
      return answer.has_value();
    }
  }
  return false;
}

// What a word of that shape looks like, for who wrote another.
std::string_view looks(Shape shape) {
  switch (shape) {
    case Name:
    case File:
    case Id:
      return "a name that is not empty";
    case Element:
      return "A, A,V or A,V,S with numbers from 1";
    case Key:
      return "Enter, Backspace, Tab, Escape, Delete or one character";
    case Line:
      return "# and a number from 0";
    case Number:
      return "a number from 0";
    case Trait:
      return "text, caption, enabled, visible, value, max, index, count, items or page";
    case Icon:
      return "exclamation, question or information";
    case Answers:
      return "OK, Oui, Non or Annuler";
    case Text:
    case LineOrText:
      break;
  }
  return "a text";
}

std::string usage(const VerbRow& row) {
  std::string text(row.word);
  for (const auto& [shape, name] : row.arguments) text.append(" ").append(name);
  return text;
}

const VerbRow& row_named(const std::string& word) {
  for (const VerbRow& row : rows())
    if (row.word == word) return row;
  throw SyntaxError("word 1: there is no command \"" + word + "\"");
}

}  // namespace

Command parse_command(const std::vector<Word>& words) {
  const VerbRow& row = row_named(words.front().text);
  const std::size_t wanted = row.arguments.size();
  const std::size_t given = words.size() - 1;
  const bool repeats = wanted > 0 && row.arguments.back().first == Answers;
  if (given < wanted)
    throw SyntaxError("word " + std::to_string(words.size() + 1) + " is missing: the command is " +
                      usage(row));
  if (given > wanted && !repeats)
    throw SyntaxError("word " + std::to_string(wanted + 2) + " is one too many: the command is " +
                      usage(row));
  Command command{};
  command.verb = row.verb;
  for (std::size_t i = 0; i < given; ++i) {
    const auto& [shape, name] = row.arguments[std::min(i, wanted - 1)];
    if (!take(shape, words[i + 1], command))
      throw SyntaxError("word " + std::to_string(i + 2) + ", \"" + words[i + 1].text + "\": expected " +
                        std::string(name) + ", that is " + std::string(looks(shape)));
  }
  return command;
}

bool counts(Verb verb) { return rows()[static_cast<std::size_t>(verb)].counting == Counting::Always; }

}  // namespace velanor::play
