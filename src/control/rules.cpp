#include "control/rules.h"

#include <utility>

#include "text/utf8.h"
#include "velanor/hand.h"

namespace velanor {

Rules::Rules(card::CardScreen& card_ui, screen::Screen& forms, entry::UtilSaisie& entry,
             store::Database& database, const commands::TellCardEvent& tell)
    : ui(card_ui),
      screen(forms),
      procedure(database),
      reading{card::Codec(entry), card::Labels(procedure)},
      card(reading),
      states(ui, card, years),
      lists(ui, card, procedure),
      pairs(card, screen),
      fields(entry, screen),
      grids(ui, card, procedure, lists, entry),
      hours_form(fields, screen),
      item_form(card, procedure, entry, hours_form, screen),
      lines({ui, card, states, grids, lists, entry, screen},
            [this](auto closed) { open_items(std::move(closed)); }),
      activities(ui, card, states, lists, screen),
      record({ui, card, entry, lists, lines}),
      steps(record, [this](const card::CardAct& act) { lead_to(act); }),
      validation(ui, card, record, procedure, screen),
      commands(
          {ui, card, states, years, procedure, lists, record, validation, screen},
          [this] { return default_agreement; },
          [this, tell](const commands::CardEvent& event) {
            hear(event);
            tell(event);
          }),
      card_fields({ui, card, states, procedure, lists, grids, screen}),
      guide({ui, card, procedure, years, screen, [this] { return !modified() || commands.may_give_up(); },
             [this] { leave_card(); }}),
      others({ui, card, procedure, lists, [this] { return commands.title(); }, tell}),
      aids({ui, card, lines, activities, item_form.ui(), screen}) {}

void Rules::hear(const commands::CardEvent& event) {
  using Kind = commands::CardEvent::Kind;
  others.begin_card();
  if (event.kind == Kind::kOpened) steps.begin();
  if (event.kind == Kind::kClosed) steps.end();
}

void Rules::bind() {
  card_fields.bind_pairs(pairs, commands);
  card_fields.bind_free_entry(fields);
  card_fields.bind_labels();
  grids.bind();
  lines.bind();
  activities.bind();
  commands.bind();
}

forms::ItemContext Rules::item_context() const {
  const bool editable = states.year_is_open();
  return {.effective_date = std::string(ui.Lst_DatEffet.line(card.current_line - 1)),
          .employee = std::string(text::trim(ui.Txt_Aidant.text() + " " + ui.Txt_NomAidant.text())),
          .period = ui.Cbo_Periode.text(),
          .establishment_hours = ui.Txt_HorMensEtab.text(),
          .agreement = ui.Txt_ConvCol.text(),
          .grouping = card.grouping,
          .administrative = ui.Opt_Admin.value(),
          .amendment = card.current_line,
          .ModifAutorisee = editable,
          .SaisieAutoBloquee = !editable};
}

// Production staff work the hours of their items; for administrative staff the time stays.
void Rules::open_items(std::function<void(const amendments::AmendmentLines::MonthlyTime&)> closed) {
  item_form.open(item_context(), [this, closed = std::move(closed)] {
    if (ui.Opt_Admin.value()) return closed(std::nullopt);
    closed(card.draft.item_hours(card.current_line - 1));
  });
}

// ---- What is open.

bool Rules::modified() const {
  return card.open && (record.modified() || lines.modified() || activities.modified() ||
                       item_form.modified() || hours_form.modified());
}

control::Standing Rules::standing() const {
  using control::State;
  if (!card.open) return {};
  const State state = card.Creation           ? State::kCreating
                      : states.year_is_open() ? State::kEditing
                                              : State::kReading;
  return {state, {card.file ? card.file->id() : "", commands.title()}, modified()};
}

// ---- Steps back and forth.

bool Rules::settled() const {
  return card.open && states.year_is_open() && !screen.finished() && &screen.top() == &ui &&
         !lines.enters() && !activities.enters();
}

bool Rules::typing() const {
  const screen::Control* const focus = ui.focus();
  if (!focus || ui.abandons(*focus)) return focus;
  const auto* const box = dynamic_cast<const screen::TextControl*>(focus);
  return box && (box->edited() || steps.reads_otherwise(*box));
}

void Rules::note_step() {
  if (settled() && !typing()) steps.note();
}

std::string Rules::step_name(Step step) const {
  if (!settled()) return {};
  const std::string pending = typing() ? steps.pending_name() : std::string();
  if (step == Step::kForth) return pending.empty() ? steps.redo_name() : std::string();
  return pending.empty() ? steps.undo_name() : pending;
}

bool Rules::go(Step step) {
  if (!settled()) return false;
  const int messages = screen.messages_shown();
  const bool typed = !steps.stand();
  if (typing()) (void)screen::Hand(screen).leave();
  if (!settled() || screen.messages_shown() != messages) return false;
  // What could not stand went when it was left: with that it is taken back.
  if (typed && steps.stand()) return step == Step::kBack;
  steps.note();
  return step == Step::kBack ? steps.undo() : steps.redo();
}

// What was taken back is seen, and what the next key acts on. The field left has been judged already, and not
// by what stands in it now.
void Rules::lead_to(const card::CardAct& act) {
  states.update_add_amendment();
  screen::Control* place = validation.place_of(act.field);
  if (!place) place = ui.focus();
  ui.forget_focus();
  if (!place) return;
  if (place == &ui.Lst_Activites) {
    ui.Lst_Activites.set_index(act.line);
  } else if (dynamic_cast<screen::ListBox*>(place)) {
    lines.select(act.line);
  }
  ui.set_focus(*place);
}

store::DbRecord Rules::as_entered() const {
  if (!card.open) return {};
  card::Draft entered = record.entered();
  lines.put_entry(entered);
  return entered.record();
}

void Rules::leave_card() {
  hours_form.give_up();
  item_form.give_up();
  lines.give_up();
  activities.give_up();
  commands.give_up();
}

}  // namespace velanor
