#include "reference/label_search.h"

#include "text/fold.h"

namespace velanor::reference {
namespace {

// Lines that satisfy a test, counted as far as it matters.
template <typename Test>
LabelMatch find_lines(const screen::Lines& lines, Alike alike, Test test) {
  LabelMatch match;
  for (int i = 0; i < lines.count(); ++i) {
    if (!test(lines.line(i))) continue;
    if (match.found == Found::kNone) {
      match = {Found::kOne, i};
    } else if (alike == Alike::kDifferent || lines.line(i) != lines.line(match.line)) {
      return {Found::kSeveral, -1};
    }
  }
  return match;
}

}  // namespace

LabelMatch match_label(const screen::Lines& lines, std::string_view typed, Alike alike) {
  if (typed.empty()) return {};
  LabelMatch match = find_lines(lines, alike, [&](std::string_view line) { return line == typed; });
  const std::string wanted = text::folded(typed);
  if (match.found != Found::kNone || wanted.empty()) return match;
  match = find_lines(lines, alike, [&](std::string_view line) { return text::folded(line) == wanted; });
  if (match.found != Found::kNone) return match;
  return find_lines(lines, alike, [&](std::string_view line) { return text::holds_folded(line, wanted); });
}

Found take_typed(screen::ComboBox& box, Alike alike) {
  const LabelMatch match = match_label(box, box.text(), alike);
  if (match.found == Found::kOne) box.choose(match.line);
  return match.found;
}

}  // namespace velanor::reference
