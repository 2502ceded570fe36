// The checks that a card must pass before it is saved.
#pragma once

#include <string>
#include <vector>

#include "card/card_screen.h"
#include "card/card_state.h"
#include "control/session.h"
#include "entry/util_saisie.h"
#include "screen/screen.h"

namespace velanor::commands {

class Validation {
 public:
  Validation(card::CardScreen& ui, card::CardState& card, const control::Procedure& procedure,
             entry::UtilSaisie& entry, screen::Screen& screen)
      : ui_(ui), card_(card), procedure_(procedure), entry_(entry), screen_(screen) {}

  // Runs the checks in their order. The first fault speaks, takes the focus and sets `Erreur`.
  void VerifZone();

 private:
  // A fault, where it is found, and whether the field is emptied.
  struct Check {
    bool (Validation::*fails)() const;
    std::string_view message;
    screen::Control* focus = nullptr;
    screen::TextControl* emptied = nullptr;
    // What the message ends with, where that depends on the card.
    std::string (Validation::*ending)() const = nullptr;
  };
  std::vector<Check> checks();

  bool name_missing() const;
  bool establishment_missing() const;
  bool hours_missing() const { return ui_.Txt_HorMensEtab.is_empty(); }
  bool agreement_missing() const { return ui_.Txt_ConvCol.is_empty(); }
  bool sector_missing() const { return ui_.Txt_Secteur.is_empty(); }
  bool town_missing() const { return ui_.Cbo_Com.is_empty(); }
  bool start_missing() const { return ui_.Txt_DatDeb.is_empty(); }
  bool activity_missing() const { return ui_.Lst_Activites.count() == 0; }
  bool shares_differ_from_100() const;
  bool amendment_missing() const { return ui_.Lst_DatEffet.count() == 0; }
  bool profile_missing() const { return ui_.Txt_Profil1.is_empty(); }
  bool exemption_above_100() const;
  bool exemption_missing() const { return ui_.Opt_Prod.value() && ui_.Txt_HresExo.is_empty(); }
  bool ends_before_start() const;
  bool end_reason_missing() const;
  bool oldest_amendment_too_late() const;
  bool no_amendment_at_start() const;
  bool amendment_without_items() const { return first_without_items() >= 0; }
  std::string reference_year() const;
  std::string date_without_items() const;

  long day(std::string_view date) const;
  long reference_day() const;
  bool starts_before_reference() const;
  int first_without_items() const;

  card::CardScreen& ui_;
  card::CardState& card_;
  const control::Procedure& procedure_;
  entry::UtilSaisie& entry_;
  screen::Screen& screen_;
};

}  // namespace velanor::commands
