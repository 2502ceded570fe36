// The rules of the component, joined.
#pragma once

#include <functional>
#include <string>

#include "amendments/activities.h"
#include "amendments/grids.h"
#include "amendments/lines.h"
#include "card/commands/card_commands.h"
#include "card/commands/card_fields.h"
#include "card/commands/card_record.h"
#include "card/commands/card_undo.h"
#include "card/commands/validation.h"
#include "card/screen/card_screen.h"
#include "card/screen/card_state.h"
#include "card/screen/states.h"
#include "control/announcer.h"
#include "control/card_guide.h"
#include "control/entry_aids.h"
#include "control/other_clerks.h"
#include "control/session/procedure.h"
#include "control/session/years.h"
#include "entry/fields/fields.h"
#include "forms/frm_rub_saisie.h"
#include "forms/frm_saisie_hres.h"
#include "reference/lists.h"
#include "reference/lookup_pairs.h"

namespace velanor {

// What works on the store: made by `init`, when the database is known.
struct Rules {
  Rules(card::CardScreen& ui, screen::Screen& screen, entry::UtilSaisie& entry, store::Database& database,
        const commands::TellCardEvent& tell);
  void bind();
  void hear(const commands::CardEvent& event);
  control::Standing standing() const;
  // Something would be lost with the card that is open.
  bool modified() const;
  // The card that is open as it reads now, the line under edit included.
  store::DbRecord as_entered() const;
  // Nothing of a card that can be changed is being entered.
  bool settled() const;
  // A text is under the user's hand: it is no step yet.
  bool typing() const;
  // An act is over: what it did to the card is a step that can be taken back.
  void note_step();
  enum class Step { kBack, kForth };
  std::string step_name(Step step) const;
  // Judges what has been typed as a click elsewhere would. False where there is no such step now.
  bool go(Step step);
  // Gives up what is entered, form by form and line by line, and the card, without a question.
  void leave_card();
  void lead_to(const card::CardAct& act);
  forms::ItemContext item_context() const;
  void open_items(std::function<void(const amendments::AmendmentLines::MonthlyTime&)> closed);

  card::CardScreen& ui;
  screen::Screen& screen;
  control::Procedure procedure;
  card::Reading reading;
  card::CardState card;
  control::YearTable years;
  std::string default_agreement;
  card::CardStates states;
  reference::ReferenceLists lists;
  reference::LookupPairs pairs;
  entry::Fields fields;
  amendments::CareerGrids grids;
  forms::Frm_SaisieHres hours_form;
  forms::Frm_RubSaisie item_form;
  amendments::AmendmentLines lines;
  amendments::ActivityLines activities;
  commands::CardRecord record;
  commands::CardUndo steps;
  commands::Validation validation;
  commands::CardCommands commands;
  commands::CardFields card_fields;
  control::CardGuide guide;
  control::OtherClerks others;
  control::EntryAids aids;
};

}  // namespace velanor
