// What the random user did last, as the checks need to know it.
#pragma once

#include <string>

#include "forms/frm_rub_saisie.h"
#include "support/office.h"

namespace velanor::test {

struct Act {
  std::string control;         // that was acted on
  bool store_changed = false;  // a record was written or removed
  bool store_failed = false;   // a call of the store failed, whether it came through or not
};

// What is being entered on the card, and on the item form that stands on it.
inline bool entering_amendment(const Office& office) { return office.ui.Cmd_OkDetail.enabled(); }
inline bool entering_activity(const Office& office) { return office.ui.Cmd_OkAct.enabled(); }
inline forms::ItemScreen* item_form(Office& office) {
  for (screen::Form* form : office.component.screen().open_forms()) {
    if (auto* items = dynamic_cast<forms::ItemScreen*>(form)) return items;
  }
  return nullptr;
}
inline bool entering_item(const forms::ItemScreen& form) {
  return form.Txt_Code.enabled() || form.Cbo_LibRub.enabled() || form.Txt_Base.enabled() ||
         form.Txt_Taux.enabled() || form.Txt_Montant.enabled();
}
// A card is being made, changed or read.
inline bool card_open(const Office& office) {
  return office.ui.Cmd_Annul.enabled() || entering_amendment(office) || entering_activity(office);
}
// The card in hand from its opening to its end: another text for another card, "" while browsing.
inline std::string card_name(const Office& office) {
  const card::CardScreen& ui = office.ui;
  if (!card_open(office)) return {};
  return ui.Txt_Etat.text() + " " + ui.Txt_Aidant.text() + ui.Txt_Asso.text() + ui.Cbo_Periode.text();
}

}  // namespace velanor::test
