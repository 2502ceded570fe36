// Which controls of the whole inventory a hand can use, state by state.
#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "support/office.h"

namespace velanor::test {
namespace {

using Names = std::set<std::string>;

Names words(const std::string& text) {
  std::istringstream in(text);
  return Names(std::istream_iterator<std::string>(in), {});
}

// Everything that the user can act on: labels and what the program alone writes are not.
Names usable_controls(Office& office) {
  Names names;
  for (screen::Control* control : office.ui.controls()) {
    const bool label = dynamic_cast<screen::Label*>(control) || dynamic_cast<screen::Frame*>(control);
    if (!label && office.usable(*control)) names.insert(control->name());
  }
  return names;
}

const std::string kBrowsing =
    "Mnu_Aide Mnu_Sommaire Txt_Asso Cbo_Asso Cbo_Periode Txt_Aidant Cbo_Aidant Cmd_Sortir Ong_FichPers ";
// The fields of an open card that both creating and editing allow.
const std::string kFields =
    "Ong_FichPers Txt_NomAidant Txt_CodEtab Cbo_Etab Txt_HorMensEtab Txt_Secteur Cbo_Secteur Cbo_Com Opt_CDD "
    "Opt_CDI "
    "Opt_Prod Opt_Admin Txt_DatNais Txt_DateBranche Cbo_NatureContrat Lst_Activites Cmd_AjAct Txt_Profil1 "
    "Cbo_Profil1 "
    "Txt_Profil2 Cbo_Profil2 Txt_HresExo Txt_DatFin Lst_DatEffet Lst_DatDepGrille Lst_Qualif Lst_Grille "
    "Lst_Categorie "
    "Lst_NouvMes Lst_TxHor Lst_DureMens Txt_MutSalContrat Txt_MutPatContrat Txt_ChargMutContrat "
    "Cbo_ChargMutContrat "
    "Txt_PlafSecu Txt_AssSS Cmd_OK Cmd_Annul Cmd_Supp ";
const std::string kLineEntry =
    "Ong_FichPers Txt_DatEffet Txt_DatDepGrille Cbo_Qualif Cbo_Grille Cbo_NouvMes Txt_TxHor Txt_DureMens "
    "Cmd_OkDetail "
    "Cmd_AnnulDetail ";

struct State {
  const char* name;
  std::vector<std::string> way;  // control, or control=line, or control:text, control!line, control<
  std::string usable;
};

void go(Office& office, const std::string& step) {
  const auto at = step.find_first_of("=:!<");
  screen::Control& control = office.control(step.substr(0, at));
  const std::string rest = at == std::string::npos ? "" : step.substr(at + 1);
  screen::Refusal why;
  if (at == std::string::npos) {
    why = office.hand.click(control);
  } else if (step[at] == ':') {
    why = office.hand.type(dynamic_cast<screen::TextControl&>(control), rest);
  } else if (step[at] == '<') {
    why = office.hand.press(control, {screen::Key::kBackspace});
  } else if (step[at] == '!') {
    why = office.hand.double_click(dynamic_cast<screen::ListBox&>(control), std::stoi(rest));
  } else if (auto* box = dynamic_cast<screen::ComboBox*>(&control)) {
    why = office.hand.drop_down(*box);
    if (why.empty()) why = office.hand.choose(*box, std::stoi(rest));
  } else if (auto* list = dynamic_cast<screen::ListBox*>(&control)) {
    why = office.hand.pick(*list, std::stoi(rest));
  } else {
    why = office.hand.show_page(std::stoi(rest));
  }
  ASSERT_EQ(why, "") << step;
}

TEST(States, AHandCanUseExactlyWhatItsStateAllows) {
  const std::vector<std::string> entity{"Txt_Asso:001"};
  const std::vector<std::string> open{"Txt_Asso:001", "Txt_Aidant:00010"};
  const auto then = [](std::vector<std::string> way, std::vector<std::string> more) {
    way.insert(way.end(), more.begin(), more.end());
    return way;
  };
  // Entering a line and coming back leaves the diploma locked.
  const std::string after_entry = kFields + "Bdv_Detail Cmd_Copier Cmd_AjDetail Cmd_SuppDetail Cmd_Detail ";
  const std::string editing = after_entry + "Cbo_EtudeAidant ";
  const State states[] = {
      {"at the start", {}, "Mnu_Aide Mnu_Sommaire Txt_Asso Cbo_Asso Cbo_Periode Cmd_Sortir Ong_FichPers"},
      {"browsing the latest year", entity, kBrowsing + "Cmd_Ajout"},
      {"browsing an older year", then(entity, {"Cbo_Periode=1"}), kBrowsing},
      {"creating", then(entity, {"Cmd_Ajout"}),
       kFields + "Txt_ConvCol Cbo_Convcol Txt_DatDeb Cbo_EtudeAidant"},
      {"creating, abandoned", then(entity, {"Cmd_Ajout", "Cmd_Annul"}), kBrowsing + "Cmd_Ajout"},
      {"editing", open, editing},
      {"editing, end date typed", then(open, {"Txt_DatFin:01012027", "Txt_HresExo:"}),
       editing + "Cbo_MotifFin"},
      {"editing, saved", then(open, {"Cmd_OK"}), kBrowsing + "Cmd_Ajout"},
      {"deleted", then(open, {"Cmd_Supp"}), kBrowsing + "Cmd_Ajout Cmd_Copier"},
      {"reading an older year", then(entity, {"Cbo_Periode=1", "Cbo_Aidant=0"}),
       "Ong_FichPers Txt_Aidant Cbo_Aidant Cmd_Annul Cmd_Detail"},
      {"reading an older year, its code half taken away",
       then(entity, {"Cbo_Periode=1", "Ong_FichPers=1", "Txt_Aidant:00010", "Txt_Aidant<"}), kBrowsing},
      {"reading an older year, amendments in sight",
       then(entity, {"Cbo_Periode=1", "Cbo_Aidant=0", "Ong_FichPers=1"}),
       "Ong_FichPers Txt_Aidant Cbo_Aidant Cmd_Annul Cmd_Detail"},
      {"adding a line", then(open, {"Cmd_AjDetail"}), kLineEntry + "Txt_Categorie "},
      {"adding a line, abandoned", then(open, {"Cmd_AjDetail", "Cmd_AnnulDetail"}),
       kFields + "Bdv_Detail Cmd_Copier Cmd_AjDetail Cmd_SuppDetail "},
      {"changing a line with a grid", then(open, {"Lst_DatEffet!0"}),
       kLineEntry + "Cmd_SuppDetail Cmd_Detail "},
      {"changing a line with a rate", then(open, {"Lst_TxHor!1"}),
       kLineEntry + "Txt_Categorie Cmd_SuppDetail Cmd_Detail "},
      {"a changed line confirmed", then(open, {"Lst_DatEffet!0", "Cmd_OkDetail"}), after_entry},
      {"a line removed", then(open, {"Lst_DatEffet!0", "Cmd_SuppDetail"}),
       kFields + "Cmd_Copier Cmd_AjDetail Cmd_SuppDetail "},
      {"adding an activity", then(open, {"Cmd_AjAct"}),
       "Ong_FichPers Cbo_Activites Txt_Pourc Cmd_OkAct Cmd_AnnulAct"},
      {"changing an activity", then(open, {"Lst_Activites!1"}),
       "Ong_FichPers Txt_Pourc Cmd_OkAct Cmd_AnnulAct"},
      {"an activity abandoned", then(open, {"Cmd_AjAct", "Cmd_AnnulAct"}), after_entry},
      {"the items of a line", then(open, {"Lst_DatEffet=0", "Cmd_Detail"}), ""},
  };
  for (const State& state : states) {
    SCOPED_TRACE(state.name);
    store::MemoryDatabase database;
    load(database, "lib/cards.play");
    Office office(database);
    office.component.init();
    for (const std::string& step : state.way) ASSERT_NO_FATAL_FAILURE(go(office, step));
    EXPECT_EQ(usable_controls(office), words(state.usable));
    EXPECT_EQ(office.ui.Etq_Secteur.enabled(), office.ui.Txt_Secteur.enabled());
  }
}

TEST(States, ASingleEstablishmentIsShownAndStaysLocked) {
  store::MemoryDatabase database;
  load(database, "lib/cards.play");
  Office office(database);
  office.component.init();
  for (const char* step : {"Txt_Asso:007", "Cmd_Ajout"}) ASSERT_NO_FATAL_FAILURE(go(office, step));
  EXPECT_EQ(office.ui.Txt_CodEtab.text(), "001");
  EXPECT_EQ(office.ui.Cbo_Etab.text(), "Tilleuls");
  EXPECT_EQ(office.ui.Txt_HorMensEtab.text(), "075,50");
  EXPECT_FALSE(office.ui.Txt_CodEtab.enabled());
  for (const char* step : {"Cmd_AjAct", "Cmd_AnnulAct"}) ASSERT_NO_FATAL_FAILURE(go(office, step));
  EXPECT_FALSE(office.ui.Cbo_Etab.enabled());
}

}  // namespace
}  // namespace velanor::test
