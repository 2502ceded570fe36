#include "card/screen/card_screen.h"

#include "card/record/activity_line.h"
#include "card/record/amendment_columns.h"

namespace velanor::card {

PageTabs::PageTabs(screen::Form& form, const screen::Spec& spec)
    : Tabs(form, spec, {"Identité et contrat", "Profils et avenants", "Mutuelle et sécurité sociale"}) {}

CardScreen::CardScreen() : Form("ControleVelanor", "Fiches du personnel") {
#define CONTROL(kind, control, text, label_of, place, length, group_of) \
  groups_[static_cast<std::size_t>(Group::group_of)].push_back(&control);
#include "card/screen/inventory.def"
#undef CONTROL
  for (ComboBox* box : {&Cbo_Periode, &Cbo_EtudeAidant, &Cbo_Activites}) box->make_list_only();
  Mnu_Sommaire.set_parent(Mnu_Aide);
  cancel_buttons = {&Cmd_AnnulDetail, &Cmd_AnnulAct, &Cmd_Annul};
  perilous_buttons = {&Cmd_SuppDetail, &Cmd_Supp, &Cmd_Copier};
  tables = {amendment_table(),
            {{.list = &Lst_Activites, .heading = &Etq_Activite, .part = activity_label},
             {.list = &Lst_Activites, .heading = &Etq_Pourc, .part = activity_share}}};
}

screen::TableColumns CardScreen::amendment_table() {
  screen::TableColumns columns;
  const auto lists = amendment_lists();
  const auto entries = amendment_entries();
  for (std::size_t c = 0; c < lists.size(); ++c)
    columns.push_back({lists[c], lists[c]->label(), entries[c], decimals(kAmendmentColumns[c]) > 0});
  return columns;
}

const std::vector<screen::Control*>& CardScreen::group(Group group) const {
  return groups_[static_cast<std::size_t>(group)];
}

std::array<screen::ListBox*, kAmendmentColumns.size()> CardScreen::amendment_lists() {
  return std::to_array<screen::ListBox*>({&Lst_DatEffet, &Lst_DatDepGrille, &Lst_Qualif, &Lst_Grille,
                                          &Lst_Categorie, &Lst_NouvMes, &Lst_TxHor, &Lst_DureMens});
}

std::array<screen::TextControl*, kAmendmentColumns.size()> CardScreen::amendment_entries() {
  return std::to_array<screen::TextControl*>({&Txt_DatEffet, &Txt_DatDepGrille, &Cbo_Qualif, &Cbo_Grille,
                                              &Txt_Categorie, &Cbo_NouvMes, &Txt_TxHor, &Txt_DureMens});
}

}  // namespace velanor::card
