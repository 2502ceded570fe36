#include "control/rules.h"

#include <utility>

#include "text/utf8.h"

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
      validation(ui, card, record, procedure, screen),
      commands(
          {ui, card, states, years, procedure, lists, record, validation, screen},
          [this] { return default_agreement; },
          [this, tell](const commands::CardEvent& event) {
            others.begin_card();
            tell(event);
          }),
      card_fields({ui, card, states, procedure, lists, grids, screen}),
      guide({ui, card, procedure, years, screen, [this] { return !modified() || commands.may_give_up(); },
             [this] { leave_card(); }}),
      others({ui, card, procedure, lists, [this] { return commands.title(); }, tell}) {}

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
