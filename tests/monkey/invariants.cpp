#include "monkey/invariants.h"

#include <algorithm>

#include "card/record/activity_line.h"
#include "entry/decimal.h"
#include "velanor/date.h"

namespace velanor::test {

struct Invariants::Check {
  const char* name;
  std::string (Invariants::*breach)(Office&, const Act&);
};

const std::vector<Invariants::Check>& Invariants::checks() {
  using I = Invariants;
  static const std::vector<Check> kChecks{
      {"hourglass", &I::hourglass},
      {"store-alone", &I::left_alone},
      {"stored-ids", &I::stored_ids},
      {"stored-figures", &I::stored_figures},
      {"stored-cards", &I::stored_cards},
      {"stored-fields", &I::stored_fields},
      {"columns", &I::columns},
      {"amendments", &I::amendments},
      {"activities", &I::activities},
      {"items", &I::items},
      {"dates", &I::dates},
      {"shares", &I::shares},
      {"choices", &I::whole_choices},
      {"whole-lines", &I::whole_lines},
      {"codes", &I::codes},
      {"labels", &I::labels},
      {"out-of-use", &I::out_of_use},
      {"state", &I::state},
      {"empty-screen", &I::empty_screen},
      {"standing", &I::standing},
      {"modified", &I::modified},
      {"told", &I::told},
  };
  return kChecks;
}

std::vector<std::string> Invariants::names() {
  std::vector<std::string> names;
  for (const Check& check : checks()) names.emplace_back(check.name);
  return names;
}

Invariants::Invariants(store::MemoryDatabase& base, const WatchedStore& store)
    : lines_(base), judge_(base), standing_(store) {
  base.for_each("CONVENTIONCOL", [&](std::string_view id, const store::DbRecord& agreement) {
    if (!agreement(36).empty()) agreements_with_categories_.emplace(id);
  });
  base.for_each("GRILLESCCBUDGET", [&](std::string_view id, const store::DbRecord& grid) {
    grid_labels_.emplace(grid(1));
    categories_.emplace(std::string(id.substr(0, 2)) + std::string(grid(1)), grid(7));
    for (int v = 1; v <= grid.Count(9); ++v) qualifications_.emplace(grid(9, v));
  });
  const auto table = *base.find("TABLES", "QUALIF");
  for (int v = 1; v <= table.Count(2); ++v) qualifications_.emplace(table(2, v));
}

void Invariants::start_anew(Office& office) {
  standing_.start_anew(office);
  card_.clear();
  codes_.clear();
  activities_.clear();
  entering_ = false;
}

std::string Invariants::check(Office& office, const Act& act) {
  std::string breach;
  for (const Check& check : checks()) {
    const std::string found = (this->*check.breach)(office, act);
    if (breach.empty() && !found.empty() && !left_out_.contains(check.name))
      breach = std::string(check.name) + ": " + found;
  }
  remember(office, act);
  return breach;
}

namespace {

bool ascend(const screen::ListBox& list) {
  int before = -1'000'000;
  for (const std::string& text : list.items()) {
    const auto date = entry::parse_date(text);
    const int day = date ? *entry::day_number(*date) : before;
    if (day <= before) return false;
    before = day;
  }
  return true;
}

// The boxes of the pairs of code and label, those of the card alone.
std::vector<std::pair<screen::TextBox*, screen::ComboBox*>> pairs(card::CardScreen& ui) {
  return {{&ui.Txt_CodEtab, &ui.Cbo_Etab},    {&ui.Txt_ConvCol, &ui.Cbo_Convcol},
          {&ui.Txt_Secteur, &ui.Cbo_Secteur}, {&ui.Txt_Profil1, &ui.Cbo_Profil1},
          {&ui.Txt_Profil2, &ui.Cbo_Profil2}, {&ui.Txt_ChargMutContrat, &ui.Cbo_ChargMutContrat}};
}

}  // namespace

void Invariants::remember(Office& office, const Act& act) {
  const std::string card = card_name(office);
  if (card != card_) {
    // What a line was loaded with may stay, whatever it is.
    for (const std::string& grid : office.ui.Lst_Grille.items()) grid_labels_.insert(grid);
    for (const std::string& code : office.ui.Lst_Qualif.items()) qualifications_.insert(code);
  }
  entering_ = entering_amendment(office);
  card_ = card;
  dates_ascend_ = ascend(office.ui.Lst_DatEffet);
  activities_ = office.ui.Lst_Activites.items();
  lines_.remember(office, act);
  standing_.remember(office, act);
  judge_.after(office, act);
  for (const auto& [code, label] : pairs(office.ui)) {
    // A code that could not be looked up is taken as it comes.
    if (act.store_failed && codes_[code->name()] != code->text()) judge_.excuse_card();
    codes_[code->name()] = code->text();
  }
}

std::string Invariants::columns(Office& office, const Act&) {
  for (const screen::ListBox* list : office.ui.amendment_lists()) {
    if (list->count() != office.ui.Lst_DatEffet.count()) return list->name() + " has another number of lines";
    if (list->index() != office.ui.Lst_DatEffet.index()) return list->name() + " selects another line";
  }
  forms::ItemScreen* form = item_form(office);
  if (!form) return {};
  for (const screen::ListBox* list : form->columns()) {
    if (list->count() != form->Lst_Code.count() || list->index() != form->Lst_Code.index())
      return list->name() + " of the items is out of step";
  }
  return {};
}

// A stored card may have them otherwise; no act brings them out of order.
std::string Invariants::dates(Office& office, const Act&) {
  const bool was = dates_ascend_ || card_.empty();
  const bool loaded = card_name(office) != card_ && office.ui.Txt_Etat.text() != "Création";
  return was && !loaded && !ascend(office.ui.Lst_DatEffet) ? "amendment dates do not ascend any more" : "";
}

std::string Invariants::shares(Office& office, const Act&) {
  if (card_name(office) != card_) return {};
  for (const std::string& line : office.ui.Lst_Activites.items()) {
    const bool stood = std::find(activities_.begin(), activities_.end(), line) != activities_.end();
    if (!stood && !entry::parse_decimal(card::activity_share(line), 2))
      return "no share in the line <" + line + ">";
  }
  return {};
}

std::string Invariants::labels(Office& office, const Act&) {
  for (const screen::Control* control : office.ui.controls()) {
    const bool exempt = control == &office.ui.Lst_Grille;  // its label is left alone by one routine
    if (control->label() && !exempt && control->label()->enabled() != control->enabled())
      return control->label()->name() + " does not follow " + control->name();
  }
  return {};
}

// A grid of the list dictates the category, unless it has none where the agreement asks for one. Of
// grids that the list does not have, or that share their label, both may be.
bool Invariants::category_is_open(const card::CardScreen& ui) const {
  const std::string& agreement = ui.Txt_ConvCol.text();
  if (!agreements_with_categories_.contains(agreement)) return false;
  const auto [first, last] = categories_.equal_range(agreement + ui.Cbo_Grille.text());
  const auto with = std::count_if(first, last, [](const auto& grid) { return !grid.second.empty(); });
  const bool unsure = ui.Cbo_Grille.index() < 0 || (with > 0 && with < std::distance(first, last));
  return unsure ? ui.Txt_Categorie.enabled() : with == 0;
}

std::string Invariants::state(Office& office, const Act&) {
  card::CardScreen& ui = office.ui;
  const bool line = entering_amendment(office), activity = entering_activity(office);
  const bool entering = line || activity;
  const bool open = card_open(office);
  const bool browsing = !open;
  const bool editable = open && ui.Cbo_Periode.index() == 0;
  if (line && activity) return "a line and an activity are entered at once";
  struct Rule {
    const screen::Control& control;
    bool expected;
  };
  const Rule rules[] = {
      {ui.Txt_Asso, browsing},
      {ui.Cbo_Asso, browsing},
      {ui.Cbo_Periode, browsing},
      {ui.Cmd_Sortir, browsing},
      {ui.Cmd_OK, editable && !entering},
      {ui.Cmd_Annul, open && !entering},
      {ui.Txt_NomAidant, editable && !entering},
      {ui.Txt_HorMensEtab, editable && !entering},
      {ui.Txt_Secteur, editable && !entering},
      {ui.Cbo_Com, editable && !entering},
      {ui.Txt_Profil1, editable && !entering},
      {ui.Txt_HresExo, editable && !entering},
      {ui.Txt_PlafSecu, editable && !entering},
      {ui.Cdr_Statut, editable && !entering},
      {ui.Cdr_TypeContrat, editable && !entering},
      {ui.Cmd_AjAct, editable && !entering},
      {ui.Lst_Activites, editable && !entering},
      {ui.Lst_DatEffet, editable && !entering},
      {ui.Lst_DureMens, editable && !entering},
      {ui.Txt_DatEffet, line},
      {ui.Txt_DatDepGrille, line},
      {ui.Cbo_Qualif, line},
      {ui.Cbo_Grille, line},
      {ui.Cbo_NouvMes, line},
      {ui.Txt_TxHor, line},
      {ui.Txt_DureMens, line},
      {ui.Cmd_AnnulDetail, line},
      {ui.Txt_Categorie, line && (ui.Cbo_Grille.is_empty() || category_is_open(ui))},
      {ui.Txt_Pourc, activity},
      {ui.Cmd_AnnulAct, activity},
      {ui.Txt_RegroupBudget, false},
      {ui.Txt_Etat, false},
  };
  for (const Rule& rule : rules) {
    if (rule.control.enabled() != rule.expected)
      return rule.control.name() + (rule.expected ? " is locked" : " is open");
  }
  if (ui.Txt_NomAidant.visible() != editable || ui.Cbo_Aidant.visible() == editable)
    return "employee shown twice";
  if (ui.Cbo_MotifFin.enabled() && ui.Txt_DatFin.is_empty() && ui.focus() != &ui.Txt_DatFin)
    return "an end reason without an end";
  const bool others = ui.Ong_FichPers.page_enabled((ui.Ong_FichPers.current() + 1) % ui.Ong_FichPers.count());
  if (others == entering) return "the other pages are " + std::string(others ? "open" : "locked");
  const screen::Form& top = office.component.screen().top();
  if (top.focus() && !top.can_focus(*top.focus()))
    return "the focus is on " + top.focus()->name() + ", which is locked";
  return {};
}

// While a line is entered nothing answers that could act on another.
std::string Invariants::out_of_use(Office& office, const Act&) {
  card::CardScreen& ui = office.ui;
  std::vector<screen::Control*> idle;
  if (forms::ItemScreen* form = item_form(office); form && entering_item(*form)) {
    idle = {&form->Bdv_Detail, &form->Cmd_Ajouter, &form->Cmd_Retour, &form->Cmd_SaisieAuto};
    for (screen::ListBox* list : form->columns()) idle.push_back(list);
  } else if (entering_amendment(office) || entering_activity(office)) {
    idle = {&ui.Bdv_Detail, &ui.Cmd_Copier, &ui.Cmd_Supp, &ui.Cmd_Ajout, &ui.Cmd_AjDetail, &ui.Cmd_AjAct};
    for (screen::ListBox* list : ui.amendment_lists()) idle.push_back(list);
    idle.push_back(&ui.Lst_Activites);
    const bool editing_amendment = entering_amendment(office) && ui.Cmd_SuppDetail.enabled();
    if (!editing_amendment) idle.insert(idle.end(), {&ui.Cmd_SuppDetail, &ui.Cmd_Detail});
  }
  for (const screen::Control* control : idle) {
    if (control->usable()) return control->name() + " answers while a line is entered";
  }
  return {};
}

// Nothing of a card is left where none is open.
std::string Invariants::empty_screen(Office& office, const Act&) {
  if (card_open(office)) return {};
  for (const screen::Control* control : office.ui.controls()) {
    if (control->page() < 0) continue;
    const auto* text = dynamic_cast<const screen::TextControl*>(control);
    const auto* list = dynamic_cast<const screen::ListBox*>(control);
    if ((text && !text->is_empty()) || (list && list->count() > 0))
      return control->name() + " shows something of a card that is not open";
  }
  return office.ui.Txt_NomAidant.is_empty() ? "" : "the name of a card that is not open is shown";
}

std::string Invariants::not_whole(const std::string& grid, const std::string& qualification) const {
  if (!grid.empty() && !grid_labels_.contains(grid)) return "the grid <" + grid + ">";
  const bool whole = qualification.empty() || qualifications_.contains(qualification);
  return whole ? "" : "the qualification <" + qualification + ">";
}

// Grid and qualification are chosen or removed, never spelt out, never cut.
std::string Invariants::whole_choices(Office& office, const Act&) {
  if (!entering_amendment(office) || !entering_) return {};
  const std::string part = not_whole(office.ui.Cbo_Grille.text(), office.ui.Cbo_Qualif.text());
  return part.empty() ? "" : "the entry holds " + part;
}

std::string Invariants::whole_lines(Office& office, const Act& act) {
  if (act.control != "Cmd_OkDetail") return {};
  for (int i = 0; i < office.ui.Lst_Grille.count(); ++i) {
    const std::string part =
        not_whole(std::string(office.ui.Lst_Grille.line(i)), std::string(office.ui.Lst_Qualif.line(i)));
    if (!part.empty()) return "an amendment has " + part;
  }
  return {};
}

// A code that was typed is known, or has been refused.
std::string Invariants::codes(Office& office, const Act& act) {
  if (act.store_failed || card_name(office).empty() || card_name(office) != card_) return {};
  for (const auto& [code, label] : pairs(office.ui)) {
    const bool complete = static_cast<int>(code->text().size()) == code->max_length();
    const bool emptied = act.control == label->name();  // by the user
    if (complete && code->text() != codes_[code->name()] && label->is_empty() && !emptied)
      return code->name() + " has taken the unknown code " + code->text();
  }
  return {};
}

std::string Invariants::hourglass(Office& office, const Act&) {
  return office.toolkit.hourglasses == 0 ? "" : "the hourglass was left on";
}

std::string Invariants::left_alone(Office&, const Act& act) {
  const bool may_change = act.control == "Cmd_OK" || act.control == "Cmd_Supp" || act.control == "Cmd_Copier";
  return act.store_changed && !may_change ? "the store was changed by " + act.control : "";
}

}  // namespace velanor::test
