#include "play/message_boxes.h"

#include <utility>

namespace velanor::play {
namespace {

using screen::Answer;
using screen::Buttons;

bool offers(Buttons buttons, Answer answer) {
  switch (buttons) {
    case Buttons::Ok:
      return answer == Answer::Ok;
    case Buttons::OkCancel:
      return answer == Answer::Ok || answer == Answer::Cancel;
    case Buttons::YesNo:
      return answer == Answer::Yes || answer == Answer::No;
  }
  return false;
}

// As when the box is closed without a choice.
Answer no_choice(Buttons buttons) { return buttons == Buttons::YesNo ? Answer::No : Answer::Cancel; }

}  // namespace

void MessageBoxes::queue(const std::vector<Answer>& answers) {
  answers_.insert(answers_.end(), answers.begin(), answers.end());
}

Answer MessageBoxes::show(const screen::Message& message) {
  shown_.push_back(message);
  if (message.buttons == Buttons::Ok) return Answer::Ok;
  if (answers_.empty()) {
    fail("expected an answer in the queue, found none for the question", message);
    return no_choice(message.buttons);
  }
  const Answer answer = answers_.front();
  answers_.pop_front();
  if (offers(message.buttons, answer)) return answer;
  fail("expected an answer that the box offers, found " + std::string(name_of(answer)) + " for the question",
       message);
  return no_choice(message.buttons);
}

std::vector<Answer> MessageBoxes::compare(const screen::Comparison& comparison) {
  screen::Message box{comparison.title, comparison.text, screen::Icon::Question, Buttons::OkCancel,
                      Answer::Cancel};
  for (const auto& line : comparison.lines)
    box.text += "\r\n" + line.name + " : " + line.before + " | " + line.theirs + " | " + line.mine;
  shown_.push_back(box);
  std::vector<Answer> answers;
  for (std::size_t i = 0; i < comparison.lines.size(); ++i) {
    const bool chosen =
        !answers_.empty() && (answers_.front() == Answer::Mine || answers_.front() == Answer::Theirs);
    const bool back = i == 0 && !answers_.empty() && answers_.front() == Answer::Cancel;
    if (chosen || back) {
      answers.push_back(answers_.front());
      answers_.pop_front();
    }
    if (back) return {};
    if (!chosen) {
      fail("expected Mien or Sien for each line, or Annuler, in the queue for the question", box);
      return {};
    }
  }
  return answers;
}

std::optional<screen::Message> MessageBoxes::take_oldest() {
  if (shown_.empty()) return {};
  screen::Message oldest = std::move(shown_.front());
  shown_.pop_front();
  return oldest;
}

std::string MessageBoxes::take_failures() { return std::exchange(failures_, {}); }

void MessageBoxes::fail(const std::string& what, const screen::Message& message) {
  failures_ += (failures_.empty() ? "" : "; ") + what + " \"" + on_one_line(message.text) + "\"";
}

std::string on_one_line(std::string_view text) {
  std::string line;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n') ++at;
    const bool breaks = text[at] == '\n' || text[at] == '\r';
    line += breaks ? "\\n" : std::string(1, text[at]);
  }
  return line;
}

std::string_view name_of(Answer answer) {
  switch (answer) {
    case Answer::Ok:
      return "OK";
    case Answer::Cancel:
      return "Annuler";
    case Answer::Yes:
      return "Oui";
    case Answer::No:
      return "Non";
    case Answer::Mine:
      return "Mien";
    case Answer::Theirs:
      return "Sien";
  }
  return {};
}

std::string_view name_of(screen::Icon icon) {
  switch (icon) {
    case screen::Icon::Exclamation:
      return "exclamation";
    case screen::Icon::Question:
      return "question";
    case screen::Icon::Information:
      return "information";
  }
  return {};
}

}  // namespace velanor::play
