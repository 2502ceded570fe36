#include "monkey/line_watch.h"

#include <algorithm>

#include "card/record/amendment_columns.h"
#include "card/record/element.h"
#include "card/record/reference_layout.h"
#include "entry/decimal.h"
#include "velanor/date.h"

namespace velanor::test {
namespace {

constexpr std::size_t kDate = 0, kGridLabel = 3, kHours = 7;

std::string items_of(const store::DbRecord& card, int value) {
  std::string items;
  for (const card::Field& column : card::kItemColumns) {
    std::string figures(element(card, column, value));
    figures.erase(figures.find_last_not_of(store::kSubvalueMark) + 1);  // trailing empty ones are none
    items += figures + "/";
  }
  return items;
}

template <typename T>
std::vector<T> without(std::vector<T> lines, int position) {
  if (position >= 0 && position < static_cast<int>(lines.size())) lines.erase(lines.begin() + position);
  return lines;
}

// Where `with` has one line more than `lines` and is the same otherwise; -1: nowhere.
template <typename T>
int added_at(const std::vector<T>& with, const std::vector<T>& lines) {
  if (with.size() != lines.size() + 1) return -1;
  for (int p = 0; p < static_cast<int>(with.size()); ++p) {
    if (without(with, p) == lines) return p;
  }
  return -1;
}

// The only line by which two lists of one length differ; -1: none, -2: several.
template <typename T>
int differs_at(const std::vector<T>& a, const std::vector<T>& b) {
  int at = -1;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i] == b[i]) continue;
    if (at >= 0) return -2;
    at = static_cast<int>(i);
  }
  return at;
}

std::vector<std::string> rows_of(const std::vector<screen::ListBox*>& columns) {
  std::vector<std::string> rows;
  for (int i = 0; i < columns.front()->count(); ++i) {
    std::string row;
    for (const screen::ListBox* column : columns) row += std::string(column->line(i)) + "|";
    rows.push_back(std::move(row));
  }
  return rows;
}

std::string name_of(int line) { return line < 0 ? "a new line" : "line " + std::to_string(line + 1); }

// What the items of an amendment make, reckoned on our own.
std::string hours_of(const store::DbRecord& card, int amendment, store::DbFile& items) {
  std::int64_t sum = 0;
  int line = 1;
  for (; !element(card, card::kItemCode, amendment, line).empty(); ++line) {
    const auto item = items.find(element(card, card::kItemCode, amendment, line));
    const bool hours = item && card::items::is_hours((*item)(card::items::kType));
    if (hours) sum += entry::parse_decimal(element(card, card::kItemBase, amendment, line), 0).value_or(0);
  }
  return line == 1 ? std::string() : entry::format_decimal(sum, 2, 2);
}

}  // namespace

LineWatch::Sight LineWatch::look(Office& office) const {
  Sight now;
  card::CardScreen& ui = office.ui;
  now.card = card_name(office);
  for (int i = 0; i < ui.Lst_DatEffet.count(); ++i) {
    Amendment line;
    for (const screen::ListBox* list : ui.amendment_lists()) line.columns.emplace_back(list->line(i));
    line.items = items_of(office.component.card_in_hand(), i + 1);
    now.amendments.push_back(std::move(line));
  }
  now.activities = ui.Lst_Activites.items();
  now.selected = ui.Lst_DatEffet.index();
  if (forms::ItemScreen* form = item_form(office)) {
    now.form = true;
    const auto columns = form->columns();
    now.items = rows_of({columns.begin(), columns.end()});
  }
  return now;
}

// ---- Amendments.

std::string LineWatch::confirmed_amendment(const Sight& now) const {
  const auto& before = sight_.amendments;
  const auto& after = now.amendments;
  const int edited = sight_.amendment;
  if (edited >= static_cast<int>(before.size())) return name_of(edited) + " is gone, but was under edit";
  const auto others = edited >= 0 ? without(before, edited) : before;
  int at = added_at(after, others);
  if (at < 0) return "another line than " + name_of(edited) + " was changed by its confirmation";
  // Of equal lines any may be the one.
  if (edited >= 0 && without(after, edited) == others) at = edited;
  const Amendment& line = after[static_cast<std::size_t>(at)];
  const std::string items = edited >= 0 ? before[static_cast<std::size_t>(edited)].items : "////";
  if (line.items != items) return "the line confirmed has not its own items";
  const std::string& date = line.columns[kDate];
  if (edited >= 0 && at != edited && date == before[static_cast<std::size_t>(edited)].columns[kDate])
    return "a line moved that kept its date";
  const auto same = std::count_if(after.begin(), after.end(),
                                  [&](const Amendment& other) { return other.columns[kDate] == date; });
  return same > 1 ? "a line was confirmed on the date of another" : "";
}

// While the item form stands there, and when it goes, its amendment alone gets items and hours.
std::string LineWatch::visited_amendment(Office& office, const Sight& now, const Act& act) const {
  const auto& before = sight_.amendments;
  const auto& after = now.amendments;
  const int line = sight_.form             ? sight_.form_amendment
                   : sight_.amendment >= 0 ? sight_.amendment
                                           : sight_.selected;
  const int at = after.size() == before.size() ? differs_at(before, after) : -2;
  if (at == -2 || (at >= 0 && at != line)) return "the item form changed another line than " + name_of(line);
  const bool there = line >= 0 && line < static_cast<int>(after.size());
  if (now.form || act.store_failed || !there || !office.ui.Opt_Prod.value()) return {};
  const Amendment& visited = after[static_cast<std::size_t>(line)];
  const auto items = base_.OpenFile("RUBSAISIE");
  const std::string hours = hours_of(office.component.card_in_hand(), line + 1, *items);
  return visited.columns[kHours] == hours ? "" : "the hours of its items did not come to " + name_of(line);
}

// A line comes into its entry boxes whole, or not at all.
std::string LineWatch::loaded_amendment(Office& office) const {
  const auto lists = office.ui.amendment_lists();
  const auto entries = office.ui.amendment_entries();
  for (std::size_t c = 0; c < lists.size(); ++c) {
    const std::string_view shown = lists[c]->line(office.ui.Lst_DatEffet.index());
    if (entries[c]->text() != shown)
      return entries[c]->name() + " shows <" + entries[c]->text() + "> of a line with <" +
             std::string(shown) + ">";
  }
  return {};
}

std::string LineWatch::amendments(Office& office, const Act& act) {
  const Sight now = look(office);
  if (!same_card(now)) return {};
  const bool opened = entering_amendment(office) && sight_.amendment == kNone;
  if (opened && act.control != "Cmd_AjDetail") {
    if (std::string breach = loaded_amendment(office); !breach.empty()) return breach;
  }
  if (sight_.form || now.form) return visited_amendment(office, now, act);
  const bool confirmed = act.control == "Cmd_OkDetail" && !entering_amendment(office);
  if (confirmed && sight_.amendment != kNone && !act.store_failed) return confirmed_amendment(now);
  if (now.amendments == sight_.amendments) return {};
  if (act.control == "Cmd_SuppDetail") {
    const int line = sight_.amendment >= 0 ? sight_.amendment : sight_.selected;
    return without(sight_.amendments, line) == now.amendments && line >= 0
               ? ""
               : "another amendment than " + name_of(line) + " was removed";
  }
  return "amendments were changed by " + act.control;
}

// ---- Activities.

std::string LineWatch::activities(Office& office, const Act& act) {
  const Sight now = look(office);
  if (!same_card(now) || now.activities == sight_.activities) return {};
  if (act.control != "Cmd_OkAct" || sight_.activity == kNone)
    return "activities were changed by " + act.control;
  const int edited = sight_.activity;
  const auto others = edited >= 0 ? without(sight_.activities, edited) : sight_.activities;
  const bool removed = edited >= 0 && now.activities == others;
  const auto at = static_cast<std::size_t>(edited >= 0 ? edited : static_cast<int>(others.size()));
  const bool replaced =
      now.activities.size() == others.size() + 1 && without(now.activities, static_cast<int>(at)) == others;
  return removed || replaced ? "" : "another activity than " + name_of(edited) + " was changed";
}

// ---- Payroll items.

std::string LineWatch::items(Office& office, const Act& act) {
  const Sight now = look(office);
  if (!same_card(now) || !sight_.form || !now.form || now.items == sight_.items) return {};
  const Texts& before = sight_.items;
  const int edited = sight_.item;
  if (act.control == "Cmd_OK" && edited == kNew && added_at(now.items, before) >= 0) return {};
  if (act.control == "Cmd_OK" && edited >= 0 && now.items.size() == before.size() &&
      differs_at(before, now.items) == edited)
    return {};
  if (act.control == "Cmd_Supprimer" && edited >= 0 && without(before, edited) == now.items) return {};
  // The automatic filling, when the hours form has gone.
  if (act.control == "Cmd_OK" && edited == kNone && before.empty()) return {};
  // A double click on an item that may not be entered by hand takes it away.
  const int gone = added_at(before, now.items);
  if (act.control.rfind("Lst_", 0) == 0 && gone >= 0) {
    const auto& labels = item_form(office)->Cbo_LibRub.items();
    const std::string& row = before[static_cast<std::size_t>(gone)];
    const std::string label = row.substr(4, row.find('|', 4) - 4);
    if (std::find(labels.begin(), labels.end(), label) == labels.end()) return {};
  }
  return "another item than " + name_of(edited) + " was changed by " + act.control;
}

// ---- The grids that nobody chose anew.

// Agreements 01 and 06 have codes 400 to 499 since October 2021, others before.
bool LineWatch::offers(const std::string& grid, Office& office, const std::string& date) const {
  const std::string& agreement = office.ui.Txt_ConvCol.text();
  if (grid.rfind(agreement, 0) != 0 || !base_.find("GRILLESCCBUDGET", grid)) return false;
  if (agreement != "01" && agreement != "06") return true;
  const auto day = entry::parse_date(date);
  if (!day) return false;
  const std::string code = grid.substr(agreement.size());
  return (*entry::day_number(*day) >= *entry::day_number({1, 10, 2021})) == (code >= "400" && code < "500");
}

std::vector<std::string> LineWatch::carried_grids(const Sight& now, Office& office, const Act& act) const {
  const store::DbRecord& card = office.component.card_in_hand();
  std::vector<std::string> grids = sight_.grids;
  if (!same_card(now)) {
    grids.clear();
    for (int i = 1; i <= static_cast<int>(now.amendments.size()); ++i)
      grids.emplace_back(office.ui.Txt_Etat.text() == "Création" ? "" : element(card, card::kGrid, i));
    return grids;
  }
  // What is shown may be the same: another grid may bear the same label.
  const bool confirmed =
      act.control == "Cmd_OkDetail" && sight_.amendment != kNone && !entering_amendment(office);
  if (now.amendments == sight_.amendments && !confirmed) return grids;
  if (act.control == "Cmd_SuppDetail")
    return without(grids, sight_.amendment >= 0 ? sight_.amendment : sight_.selected);
  if (!confirmed) return grids;
  const int edited = sight_.amendment;
  const auto others = edited >= 0 ? without(sight_.amendments, edited) : sight_.amendments;
  const int at =
      edited >= 0 && without(now.amendments, edited) == others ? edited : added_at(now.amendments, others);
  if (at < 0) return std::vector<std::string>(now.amendments.size());
  std::string own;
  if (edited >= 0) {
    const Amendment& line = now.amendments[static_cast<std::size_t>(at)];
    const bool same_label =
        line.columns[kGridLabel] == sight_.amendments[static_cast<std::size_t>(edited)].columns[kGridLabel];
    const std::string& grid = grids[static_cast<std::size_t>(edited)];
    if (same_label && !grid_touched_ && offers(grid, office, line.columns[kDate])) own = grid;
    grids = without(grids, edited);
  }
  grids.insert(grids.begin() + at, own);
  return grids;
}

void LineWatch::remember(Office& office, const Act& act) {
  Sight now = look(office);
  now.grids = carried_grids(now, office, act);
  const bool same = same_card(now);
  const auto under_edit = [&](bool entering, int before, const char* adds, int selected) {
    if (!entering) return kNone;
    return same && before != kNone ? before : act.control == adds ? kNew : selected;
  };
  now.amendment = under_edit(entering_amendment(office), sight_.amendment, "Cmd_AjDetail",
                             office.ui.Lst_DatEffet.index());
  now.activity =
      under_edit(entering_activity(office), sight_.activity, "Cmd_AjAct", office.ui.Lst_Activites.index());
  if (forms::ItemScreen* form = item_form(office)) {
    now.item = under_edit(entering_item(*form), sight_.item, "Cmd_Ajouter", form->Lst_Code.index());
    now.form_amendment = same && sight_.form     ? sight_.form_amendment
                         : sight_.amendment >= 0 ? sight_.amendment
                                                 : sight_.selected;
  }
  if (now.amendment == kNone || sight_.amendment == kNone) grid_touched_ = false;
  grid_touched_ |= act.control == "Cbo_Grille";
  sight_ = std::move(now);
}

}  // namespace velanor::test
