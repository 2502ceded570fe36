// The message boxes of a scenario: the answers that it holds ready, and the boxes that were shown.
#pragma once

#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "velanor/screen.h"

namespace velanor::play {

class MessageBoxes {
 public:
  void queue(const std::vector<screen::Answer>& answers);

  // A box is shown: notes it, and gives the answer to make. A box with only OK takes no answer from
  // the queue. A question without an answer in the queue, and an answer that the box does not offer,
  // are failures; then the answer is the one of a person who closes the box.
  screen::Answer show(const screen::Message& message);

  // Lines to choose: noted as a box with a line each, "NAME : BEFORE | THEIRS | MINE"; takes an answer a
  // line, or Annuler for all of them.
  std::vector<screen::Answer> compare(const screen::Comparison& comparison);

  // The boxes that were shown and not taken yet, oldest first.
  const std::deque<screen::Message>& shown() const { return shown_; }
  std::optional<screen::Message> take_oldest();
  // What went wrong since it was last taken; empty when nothing did.
  std::string take_failures();

 private:
  void fail(const std::string& what, const screen::Message& message);

  std::deque<screen::Answer> answers_;
  std::deque<screen::Message> shown_;
  std::string failures_;
};

// The text on one line, its line breaks (CR LF, CR or LF) as \n.
std::string on_one_line(std::string_view text);
// For diagnostics and for the words of the language.
std::string_view name_of(screen::Answer answer);
std::string_view name_of(screen::Icon icon);

// The toolkit of a component without a window. The boxes must outlive it.
class ScriptedToolkit : public screen::Toolkit {
 public:
  explicit ScriptedToolkit(MessageBoxes& boxes) : boxes_(boxes) {}
  screen::Answer message(const screen::Message& message) override { return boxes_.show(message); }
  std::optional<std::vector<screen::Answer>> compare(const screen::Comparison& comparison) override {
    return boxes_.compare(comparison);
  }

 private:
  MessageBoxes& boxes_;
};

}  // namespace velanor::play
