#include "monkey/steps.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "monkey/standing_watch.h"

namespace velanor::test {

std::string walk_steps(Office& office, long& steps) {
  ControleVelanor& component = office.component;
  // What cannot be left must be mended first.
  const int messages = component.screen().messages_shown();
  if (!office.hand.leave().empty() || component.screen().messages_shown() != messages) return {};
  std::vector<std::pair<std::string, StandingWatch::Sight>> walked;
  for (std::string name = component.undo_name(); !name.empty(); name = component.undo_name()) {
    walked.emplace_back(name, StandingWatch::card_of(office));
    if (!component.undo()) return "was not taken back: " + name;
    if (component.redo_name() != name) return "cannot be done again: " + name;
  }
  steps += static_cast<long>(walked.size());
  if (!walked.empty() && component.modified()) return "all is taken back, and the card is modified";
  for (; !walked.empty(); walked.pop_back()) {
    const auto& [name, sight] = walked.back();
    if (!component.redo()) return "was not done again: " + name;
    if (component.undo_name() != name) return "cannot be taken back again: " + name;
    const auto now = StandingWatch::card_of(office);
    for (std::size_t i = 0; i < std::max(now.size(), sight.size()); ++i) {
      const std::string is = i < now.size() ? now[i] : "", was = i < sight.size() ? sight[i] : "";
      if (is != was) return "done again it is another: " + name + ": " + was + " / " + is;
    }
  }
  return component.screen().messages_shown() == messages ? "" : "a message came";
}

}  // namespace velanor::test
