#include "monkey/invariants.h"

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

#include "card/activity_line.h"
#include "card/record_layout.h"
#include "entry/date.h"
#include "entry/decimal.h"

namespace velanor::test {
namespace {

std::string items_of(const store::DbRecord& card, int value) {
  std::string items;
  for (int attribute : card::kItemColumns) items += std::string(card(attribute, value)) + "/";
  // Trailing empty figures are no difference.
  items.erase(std::remove(items.begin(), items.end(), store::kSubvalueMark), items.end());
  return items;
}

bool line_entry(const Office& office) { return office.ui.Cmd_OkDetail.enabled(); }
bool activity_entry(const Office& office) { return office.ui.Cmd_OkAct.enabled(); }

}  // namespace

std::string Invariants::check(Office& office, const std::string& acted, bool store_changed) {
  for (const std::string& breach :
       {columns_are_parallel(office), dates_ascend(office), shares_can_be_read(office), labels_follow(office),
        state_is_exact(office), items_stay_with_their_line(office),
        store_is_left_alone(acted, store_changed)}) {
    if (!breach.empty()) return breach;
  }
  return {};
}

std::string Invariants::columns_are_parallel(Office& office) {
  for (const screen::ListBox* list : office.ui.amendment_lists()) {
    if (list->count() != office.ui.Lst_DatEffet.count()) return list->name() + " has another number of lines";
    if (list->index() != office.ui.Lst_DatEffet.index()) return list->name() + " selects another line";
  }
  auto* form = dynamic_cast<forms::ItemScreen*>(&office.component.screen().top());
  if (!form) return {};
  for (const screen::ListBox* list : form->columns()) {
    if (list->count() != form->Lst_Code.count() || list->index() != form->Lst_Code.index())
      return list->name() + " of the items is out of step";
  }
  return {};
}

std::string Invariants::dates_ascend(Office& office) {
  int before = -1'000'000;
  for (const std::string& text : office.ui.Lst_DatEffet.items()) {
    const auto date = entry::parse_date(text);
    const int day = date ? *entry::day_number(*date) : before;
    if (day <= before) return "amendment dates do not ascend at " + text;
    before = day;
  }
  return {};
}

std::string Invariants::shares_can_be_read(Office& office) {
  for (const std::string& line : office.ui.Lst_Activites.items()) {
    if (!entry::parse_decimal(card::activity_share(line), 2)) return "no share in the line <" + line + ">";
  }
  return {};
}

std::string Invariants::labels_follow(Office& office) {
  for (const screen::Control* control : office.ui.controls()) {
    const bool exempt = control == &office.ui.Lst_Grille;  // its label is left alone by one routine
    if (control->label() && !exempt && control->label()->enabled() != control->enabled())
      return control->label()->name() + " does not follow " + control->name();
  }
  return {};
}

std::string Invariants::state_is_exact(Office& office) {
  card::CardScreen& ui = office.ui;
  const bool open = ui.Cmd_Annul.enabled() || line_entry(office) || activity_entry(office);
  const bool latest = ui.Cbo_Periode.index() == 0;
  const bool entering = line_entry(office) || activity_entry(office);
  const bool browsing = !open;
  const bool editable = open && latest;
  if (line_entry(office) && activity_entry(office)) return "a line and an activity are entered at once";
  struct Rule {
    const screen::Control& control;
    bool expected;
  };
  std::vector<Rule> rules{
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
      {ui.Txt_DatEffet, line_entry(office)},
      {ui.Txt_DatDepGrille, line_entry(office)},
      {ui.Cbo_Qualif, line_entry(office)},
      {ui.Cbo_Grille, line_entry(office)},
      {ui.Cbo_NouvMes, line_entry(office)},
      {ui.Txt_TxHor, line_entry(office)},
      {ui.Txt_DureMens, line_entry(office)},
      {ui.Cmd_AnnulDetail, line_entry(office)},
      {ui.Txt_Categorie, line_entry(office) && ui.Cbo_Grille.is_empty()},
      {ui.Txt_Pourc, activity_entry(office)},
      {ui.Cmd_AnnulAct, activity_entry(office)},
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

// Outside the item form, no action moves an item from the amendment that it belongs to.
std::string Invariants::items_stay_with_their_line(Office& office) {
  card::CardScreen& ui = office.ui;
  const std::string card =
      ui.Txt_Etat.text() + ui.Txt_Asso.text() + ui.Cbo_Periode.text() + ui.Txt_Aidant.text();
  const bool form = office.component.screen().is_open(ui) && &office.component.screen().top() != &ui;
  std::vector<AmendmentSight> now;
  for (int i = 0; i < ui.Lst_DatEffet.count(); ++i)
    now.push_back({ui.Lst_DatEffet.items()[static_cast<std::size_t>(i)],
                   items_of(office.component.card_in_hand(), i + 1)});
  std::string breach;
  if (card == card_ && !form && !form_was_open_) {
    std::map<std::string, std::string> before;
    std::multiset<std::string> lost, gained;
    for (const auto& line : amendments_) before[line.date] = line.items;
    for (const auto& line : amendments_) lost.insert(line.items);
    for (const auto& line : now) {
      const auto same = before.find(line.date);
      if (same != before.end() && same->second != line.items)
        breach = "items of " + line.date + " have changed";
      gained.insert(line.items);
    }
    if (now.size() == amendments_.size() && lost != gained) breach = "items were lost or made";
    if (now.size() > amendments_.size() && gained.count("////") <= lost.count("////"))
      breach = "a new line has items";
  }
  card_ = card;
  form_was_open_ = form;
  amendments_ = std::move(now);
  return breach;
}

std::string Invariants::store_is_left_alone(const std::string& acted, bool store_changed) {
  const bool may_change = acted == "Cmd_OK" || acted == "Cmd_Supp" || acted == "Cmd_Copier";
  return store_changed && !may_change ? "the store was changed by " + acted : std::string();
}

}  // namespace velanor::test
