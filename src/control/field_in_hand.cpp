#include "control/field_in_hand.h"

#include <algorithm>
#include <string>

#include "card/record/element.h"

namespace velanor::control {
namespace {

std::optional<FieldPlace> of_line(const card::CardState& card, const card::Field& field,
                                  const card::Field& key, int line) {
  if (line < 0) return std::nullopt;
  return FieldPlace{field.number, std::string(element(card.draft.record(), key, line + 1))};
}

template <typename Controls>
bool holds(const Controls& controls, const screen::Control& control) {
  return std::find(controls.begin(), controls.end(), &control) != controls.end();
}

// A label without a caption of its own belongs to the code before it.
const screen::Control& code_of(const card::CardScreen& ui, const screen::Control& focus) {
  if (!dynamic_cast<const screen::ComboBox*>(&focus) || focus.label()) return focus;
  const auto at = std::find(ui.controls().begin(), ui.controls().end(), &focus);
  return at == ui.controls().begin() ? focus : **(at - 1);
}

}  // namespace

std::optional<FieldPlace> field_in_hand(card::CardScreen& ui, const card::CardState& card,
                                        const amendments::ActivityLines& activities,
                                        const commands::Validation& validation) {
  const screen::Control* const focus = ui.focus();
  if (!focus) return std::nullopt;
  const auto lists = ui.amendment_lists();
  const auto entries = ui.amendment_entries();
  for (std::size_t c = 0; c < lists.size(); ++c) {
    if (lists[c] != focus && entries[c] != focus) continue;
    const int line = card.AjoutDetail        ? -1
                     : card.edited_line >= 0 ? card.edited_line
                                             : ui.Lst_DatEffet.index();
    return of_line(card, card::kAmendmentColumns[c], card::kEffective, line);
  }
  if (focus == &ui.Lst_Activites || holds(ui.group(card::Group::kActivityEntry), *focus)) {
    const int edited = activities.edited_line();
    const int line = card.AjoutActivite ? -1 : edited >= 0 ? edited : ui.Lst_Activites.index();
    return of_line(card, card::kShare, card::kActivity, line);
  }
  const screen::Control& code = code_of(ui, *focus);
  for (const card::Field& field : card::kAttributes) {
    if (!field.name.empty() && validation.place_of(field) == &code) return FieldPlace{field.number, {}};
  }
  return std::nullopt;
}

}  // namespace velanor::control
