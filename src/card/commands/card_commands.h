// What the clerk does with a card: choose, create, abandon, save, delete, duplicate.
#pragma once

#include <exception>
#include <functional>
#include <optional>
#include <string>

#include "card/commands/card_event.h"
#include "card/commands/card_record.h"
#include "card/commands/card_writer.h"
#include "card/commands/validation.h"
#include "card/screen/card_screen.h"
#include "card/screen/card_state.h"
#include "card/screen/states.h"
#include "control/session/procedure.h"
#include "reference/lists.h"
#include "velanor/screen.h"

namespace velanor::commands {

class CardCommands {
 public:
  // Keeps the references; their owners outlive this.
  struct Ground {
    card::CardScreen& ui;
    card::CardState& card;
    card::CardStates& states;
    const control::YearTable& years;
    const control::Procedure& procedure;
    reference::ReferenceLists& lists;
    CardRecord& record;
    Validation& validation;
    screen::Screen& screen;
  };
  // `default_agreement` is asked for at each new card.
  CardCommands(const Ground& ground, std::function<std::string()> default_agreement, TellCardEvent tell)
      : on_(ground),
        writer_(ground.procedure, ground.screen),
        default_agreement_(std::move(default_agreement)),
        tell_(std::move(tell)) {}

  void bind();

  // The years of the entity in Txt_Asso; an entity without personnel records is refused.
  void RemplirPeriodes();
  // An entity code was accepted, or is not complete.
  void entity_accepted();
  void entity_incomplete();
  // An employee code was accepted: the card is opened. If it cannot be, nothing is open.
  void open_employee(const store::DbRecord& record);
  // The code of the employee who is being read is no more: no card stands under another name.
  void employee_left();
  // Asks whether the card that is open is given up, as "Annuler" does.
  bool may_give_up();
  // Back to browsing, without a question.
  void give_up();
  // Of the card that is open: code and name of the employee; of a new one the name alone.
  std::string title() const;

 private:
  void Cbo_Periode_Click();
  void Cmd_OK_Click();
  void Cmd_Ajout_Click();
  void Cmd_Annul_Click();
  void Cmd_Supp_Click();
  void Cmd_Copier_Click();
  void RechCode();
  void SupprimerCalculs(const std::string& id);

  std::string entity() const { return on_.ui.Txt_Asso.text(); }
  std::string year() const;
  // The id of a card of the entity and year in hand.
  std::string id_of(const std::string& employee) const;
  bool year_is_locked();
  static void write_card(store::FileRecord& card, const store::Expected& expected);
  // Writes a card under the next free code, as `content` makes it of its code; returns it.
  store::FileRecord write_new_card(const std::function<store::DbRecord(const std::string& code)>& content);
  void enter_entity();
  void list_employees();
  void put_in_hand(const store::DbRecord& record);
  void start_card(bool creation);
  void show_employee(const store::DbRecord& record);
  void show_new_card();
  // Runs what opens a card; if it fails, the screen is back at browsing.
  template <typename Open>
  void open_or_browse(Open open);
  void card_came();
  // What stood on the screen stands there no more, if anything did.
  void card_went();
  void tell_of_stored(CardEvent::Kind kind, const std::string& copy = {});
  // Back to browsing, but for the list of the employees and what a deletion leaves in sight.
  void close_card();
  void clear_display();
  // The part of the return to browsing that saving, abandoning and deleting have in common.
  // The card is stored, given up or gone by then, so a list that cannot be read does not stop it:
  // the failure is handed on and reaches the host at the end.
  std::exception_ptr return_to_browsing();
  // After a deletion the card can still be duplicated, as long as the header is its own.
  void keep_or_end_copying();
  void allow_browsing(const std::exception_ptr& failure);

  Ground on_;
  CardWriter writer_;
  std::function<std::string()> default_agreement_;
  TellCardEvent tell_;
  std::optional<CardEvent> open_;  // as it was told to have been opened, or saved since
};

}  // namespace velanor::commands
