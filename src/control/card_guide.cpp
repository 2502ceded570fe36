#include "control/card_guide.h"

#include <algorithm>

#include "control/session/card_id.h"
#include "text/utf8.h"

namespace velanor::control {
namespace {

std::string padded(std::string_view code, int length) {
  return code.empty() ? std::string() : text::pad_left(text::trim(code), length, '0');
}

}  // namespace

Opening Opening::busy() {
  return {Outcome::kBusy, "Répondez d'abord au message affiché, ou attendez la fin de l'opération en cours."};
}

Opening Opening::not_started() {
  return {Outcome::kNotStarted, "Les fiches du personnel ne sont pas ouvertes."};
}

Opening CardGuide::open(std::string_view entity, std::string_view year, std::string_view employee) {
  Wanted wanted{padded(entity, card::kEntityCodeLength),
                std::string(text::trim(year)),
                padded(employee, card::kEmployeeCodeLength),
                {}};
  wanted.id = card::record_id(wanted.employee, wanted.entity, wanted.year);
  return act([&] { return open(wanted); });
}

Opening CardGuide::reload() {
  return act([this] { return reread(); });
}

Opening CardGuide::act(const std::function<Opening()>& opens) {
  Opening opening = Opening::not_started();  // unless the window goes meanwhile
  on_.screen.act([&] { opening = opens(); });
  return opening;
}

Opening CardGuide::open(const Wanted& wanted) {
  if (is_open(wanted)) return {};
  return change_to(wanted);
}

Opening CardGuide::reread() {
  if (!on_.card.open || !on_.card.file || on_.card.Creation)
    return {Opening::Outcome::kUnknown, "Aucune fiche enregistrée n'est ouverte."};
  const std::string id = on_.card.file->id();
  return change_to({std::string(card::entity_of(id)), std::string(card::year_of(id)),
                    std::string(card::employee_of(id)), id});
}

// Asks before anything is left for it.
Opening CardGuide::change_to(const Wanted& wanted) {
  using Outcome = Opening::Outcome;
  if (std::string why = unknown(wanted); !why.empty()) return {Outcome::kUnknown, std::move(why)};
  if (on_.card.open) {
    if (!on_.may_leave()) return {Outcome::kKept, "La fiche ouverte est restée à l'écran."};
    on_.leave();
  }
  if (lead_to(wanted).empty() && is_open(wanted)) return {};
  return {Outcome::kFailed, "La fiche " + wanted.employee + " n'a pas pu être ouverte."};
}

bool CardGuide::is_open(const Wanted& wanted) const {
  return on_.card.open && on_.card.file && on_.card.file->id() == wanted.id;
}

// Asked before anything is left for it.
std::string CardGuide::unknown(const Wanted& wanted) const {
  if (!on_.procedure.file(File::kEntities).find(wanted.entity))
    return "L'entité « " + wanted.entity + " » n'existe pas.";
  const auto years = on_.years.years(wanted.entity);
  if (std::find(years.begin(), years.end(), wanted.year) == years.end())
    return "L'entité " + wanted.entity + " n'a pas de fiches de l'année « " + wanted.year + " ».";
  if (!card::is_record_id(wanted.id) || !on_.procedure.file(File::kCards).find(wanted.id))
    return "L'entité " + wanted.entity + " n'a pas de fiche « " + wanted.employee + " » pour l'année " +
           wanted.year + ".";
  return {};
}

// What stands half typed in the header is nobody's work, and leaving it must not open anything.
screen::Refusal CardGuide::lead_to(const Wanted& wanted) {
  card::CardScreen& ui = on_.ui;
  screen::Hand hand(on_.screen);
  ui.forget_focus();
  const auto enter = [&](screen::TextControl& control, std::string_view text) {
    screen::Refusal why = hand.replace_text(control, {});
    return why.empty() ? hand.replace_text(control, text) : why;
  };
  const bool chosen = ui.Txt_Asso.text() == wanted.entity && !ui.Cbo_Asso.edited();
  screen::Refusal why = chosen ? screen::Refusal() : enter(ui.Txt_Asso, wanted.entity);
  if (why.empty() && ui.Cbo_Periode.text() != wanted.year)
    why = hand.choose(ui.Cbo_Periode, ui.Cbo_Periode.find(wanted.year));
  return why.empty() ? hand.replace_text(ui.Txt_Aidant, wanted.employee) : why;
}

}  // namespace velanor::control
