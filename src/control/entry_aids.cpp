#include "control/entry_aids.h"

#include "card/record/element.h"
#include "entry/decimal.h"
#include "velanor/hand.h"

namespace velanor::control {
namespace {

constexpr std::int64_t kWholeSplit = 10000;  // hundredths of a percent

std::string percent(std::int64_t hundredths) { return entry::format_decimal(hundredths, 2, 2); }

std::string told(const screen::Refusal& why) {
  return why.empty() ? std::string() : "La saisie n'a pas pu se faire ici.";
}

}  // namespace

// ---- What is told.

std::int64_t EntryAids::remainder(int but) const {
  std::int64_t rest = kWholeSplit;
  for (int line = 0; line < on_.card.draft.activities(); ++line) {
    if (line != but) rest -= card::figure(on_.card.draft.record(), card::kShare, line + 1);
  }
  return rest;
}

std::string EntryAids::split() const {
  if (!on_.card.open) return {};
  const std::int64_t rest = remainder(on_.activities.edited_line());
  if (rest < 0) return "Réparti en trop : " + percent(-rest) + " %";
  return rest > 0 ? "Reste à répartir : " + percent(rest) + " %" : "Tout est réparti";
}

std::string EntryAids::hours() const {
  if (!on_.card.open || !on_.screen.is_open(on_.items)) return {};
  const int line = on_.card.current_line - 1;
  if (line != summed_line_ || !summed_.same_items(on_.card.draft, line)) {
    sum_ = on_.card.draft.item_hours(line);
    summed_ = on_.card.draft;
    summed_line_ = line;
  }
  return sum_.empty() ? sum_ : "Total des heures : " + sum_;
}

// ---- What remains of the split.

std::string EntryAids::why_not(bool editable) const {
  if (!on_.card.open) return "Ouvrez d'abord une fiche.";
  if (!editable) return "Cette fiche se consulte seulement.";
  const bool busy = &on_.screen.top() != &on_.ui || on_.lines.enters();
  return busy ? "Terminez d'abord la saisie en cours." : "";
}

std::string EntryAids::put_remainder(bool editable) {
  if (std::string why = why_not(editable); !why.empty()) return why;
  return on_.activities.enters() ? put_on_entry() : put_on_line(on_.ui.Lst_Activites.index());
}

// The activity of a new line may be chosen afterwards.
std::string EntryAids::put_on_entry() {
  const std::int64_t rest = remainder(on_.activities.edited_line());
  if (rest <= 0) return "Il ne reste rien à répartir.";
  screen::Hand hand(on_.screen);
  const screen::Refusal why = hand.replace_text(on_.ui.Txt_Pourc, percent(rest));
  if (on_.ui.Cbo_Activites.is_empty()) (void)hand.focus(on_.ui.Cbo_Activites);
  return told(why);
}

std::string EntryAids::put_on_line(int line) {
  if (line < 0) return "Choisissez d'abord une activité de la liste.";
  const std::int64_t rest = remainder(line);
  if (rest <= 0 || rest == card::figure(on_.card.draft.record(), card::kShare, line + 1))
    return "Il ne reste rien à répartir.";
  screen::Hand hand(on_.screen);
  screen::Refusal why = hand.double_click(on_.ui.Lst_Activites, line);
  if (!why.empty() || !on_.activities.enters()) return told(why);
  why = hand.replace_text(on_.ui.Txt_Pourc, percent(rest));
  if (why.empty()) why = hand.click(on_.ui.Cmd_OkAct);
  on_.ui.Lst_Activites.set_index(line);
  return told(why);
}

// ---- Items once more.

std::string EntryAids::repeat_items(bool editable) {
  if (std::string why = why_not(editable); !why.empty()) return why;
  if (on_.activities.enters()) return "Terminez d'abord la saisie en cours.";
  const int line = on_.ui.Lst_DatEffet.index();
  if (line < 0) return "Choisissez d'abord un avenant.";
  return on_.lines.repeat_items(line);
}

}  // namespace velanor::control
