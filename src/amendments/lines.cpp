#include "amendments/lines.h"

#include "control/session.h"
#include "entry/decimal.h"
#include "text/utf8.h"

namespace velanor::amendments {

using card::kAmendmentColumns;

namespace {

// clang-format off
constexpr std::string_view kBeforeContract = "La date d'effet doit être supérieure ou égale à la date de début de contrat et à la date de début de période budgétaire.";
constexpr std::string_view kGridOrRate = "Vous devez indiquer soit une date de départ de calcul dans la grille et une grille de déroulement de carrière, soit un taux horaire.";
// clang-format on

// Moves a value with its subvalues to another position of its attribute.
void move_value(store::DbRecord& record, int attribute, int from, int to) {
  std::vector<std::string> subvalues;
  for (int s = 1; s <= record.Count(attribute, from); ++s) subvalues.emplace_back(record(attribute, from, s));
  record.Delete(attribute, from);
  if (record.Count(attribute) >= to) record.Insert(attribute, to, {});
  for (std::size_t s = 0; s < subvalues.size(); ++s)
    record.set(attribute, to, static_cast<int>(s) + 1, subvalues[s]);
}

}  // namespace

void AmendmentLines::bind() {
  card::CardScreen& ui = on_.ui;
  ui.Cmd_AjDetail.clicked += [this] { Cmd_AjDetail_Click(); };
  ui.Cmd_OkDetail.clicked += [this] { Cmd_OkDetail_Click(); };
  ui.Cmd_AnnulDetail.clicked += [this] { Cmd_AnnulDetail_Click(); };
  ui.Cmd_SuppDetail.clicked += [this] { Cmd_SuppDetail_Click(); };
  ui.Cmd_Detail.clicked += [this] { Cmd_Detail_Click(); };
  ui.Lst_DatEffet.clicked += [this] { Lst_DatEffet_Click(); };
  ui.Lst_DatDepGrille.clicked += [this] { Lst_DatDepGrille_Click(); };
  ui.Lst_Qualif.clicked += [this] { Lst_Qualif_Click(); };
  ui.Lst_Grille.clicked += [this] { Lst_Grille_Click(); };
  ui.Lst_Categorie.clicked += [this] { Lst_Categorie_Click(); };
  ui.Lst_NouvMes.clicked += [this] { Lst_NouvMes_Click(); };
  ui.Lst_TxHor.clicked += [this] { Lst_TxHor_Click(); };
  ui.Lst_DureMens.clicked += [this] { Lst_DureMens_Click(); };
  ui.Lst_DatEffet.double_clicked += [this] { Lst_DatEffet_DblClick(); };
  ui.Lst_DatDepGrille.double_clicked += [this] { Lst_DatDepGrille_DblClick(); };
  ui.Lst_Qualif.double_clicked += [this] { Lst_Qualif_DblClick(); };
  ui.Lst_Grille.double_clicked += [this] { Lst_Grille_DblClick(); };
  ui.Lst_Categorie.double_clicked += [this] { Lst_Categorie_DblClick(); };
  ui.Lst_NouvMes.double_clicked += [this] { Lst_NouvMes_DblClick(); };
  ui.Lst_TxHor.double_clicked += [this] { Lst_TxHor_DblClick(); };
  ui.Lst_DureMens.double_clicked += [this] { Lst_DureMens_DblClick(); };
  ui.Bdv_Detail.changed += [this] {
    // The bar goes back to its top when the lines go: that selects nothing.
    if (on_.ui.Bdv_Detail.value() < on_.ui.Lst_DatEffet.count()) select(on_.ui.Bdv_Detail.value());
  };
}

void AmendmentLines::append(const card::AmendmentMemory& line) {
  const auto lists = on_.ui.amendment_lists();
  for (std::size_t c = 0; c < lists.size(); ++c) lists[c]->add(line[c].shown);
  on_.card.amendments.push_back(line);
}

void AmendmentLines::size_scroll_bar() {
  // The bar steps through the lines, so it is there as soon as there are two.
  control::size_scroll_bar(on_.ui.Bdv_Detail, on_.ui.Lst_DatEffet, 1);
}

// ---- Selecting: every column follows the one that was clicked.

void AmendmentLines::select(int index) {
  for (screen::ListBox* list : on_.ui.amendment_lists()) list->set_index(index);
  on_.lists.ChercheRegroupBudget(on_.ui.Lst_Qualif.line(index));
  if (index >= 0) on_.ui.Cmd_Detail.set_enabled(true);
}

int AmendmentLines::line_in_hand() const {
  if (on_.card.AjoutDetail) return -1;
  return on_.card.edited_line >= 0 ? on_.card.edited_line : on_.ui.Lst_DatEffet.index();
}

void AmendmentLines::Lst_DatEffet_Click() { select(on_.ui.Lst_DatEffet.index()); }
void AmendmentLines::Lst_DatDepGrille_Click() { select(on_.ui.Lst_DatDepGrille.index()); }
void AmendmentLines::Lst_Qualif_Click() { select(on_.ui.Lst_Qualif.index()); }
void AmendmentLines::Lst_Grille_Click() { select(on_.ui.Lst_Grille.index()); }
void AmendmentLines::Lst_Categorie_Click() { select(on_.ui.Lst_Categorie.index()); }
void AmendmentLines::Lst_NouvMes_Click() { select(on_.ui.Lst_NouvMes.index()); }
void AmendmentLines::Lst_TxHor_Click() { select(on_.ui.Lst_TxHor.index()); }
void AmendmentLines::Lst_DureMens_Click() { select(on_.ui.Lst_DureMens.index()); }

void AmendmentLines::Lst_DatEffet_DblClick() {
  on_.card.edited_line = on_.ui.Lst_DatEffet.index();
  if (on_.card.edited_line >= 0) SelListe();
}

// ---- Entering a line.

// Nothing but the line can be edited until it is confirmed or abandoned.
void AmendmentLines::begin_entry() {
  on_.ui.Ong_FichPers.disable_others();
  on_.states.GriserDonnees();
  on_.states.GriserActivite();
  on_.states.suspend_commands();
  on_.states.enable_amendment_lists(false);
  on_.states.empty_amendment_entry();
  for (screen::TextControl* entry : on_.ui.amendment_entries()) entry->set_enabled(true);
  on_.ui.Cmd_AjDetail.set_enabled(false);
  on_.ui.Cmd_OkDetail.set_enabled(true);
  on_.ui.Cmd_AnnulDetail.set_enabled(true);
}

void AmendmentLines::end_entry() {
  on_.ui.Ong_FichPers.enable_all();
  on_.card.AjoutDetail = false;
  on_.card.edited_line = -1;
  on_.states.empty_amendment_entry();
  on_.states.enable_amendment_lists(true);
  on_.ui.Cmd_AjDetail.set_enabled(true);
  on_.ui.Cmd_SuppDetail.set_enabled(true);
  on_.ui.Cmd_OkDetail.set_enabled(false);
  on_.ui.Cmd_AnnulDetail.set_enabled(false);
  on_.states.resume_commands();
  on_.states.DeGriserDonnees();
  on_.states.DeGriserActivite();
}

template <typename Fill>
void AmendmentLines::fill_entry(Fill fill) {
  try {
    fill();
  } catch (...) {
    const int line = on_.card.edited_line;
    end_entry();
    select(line);
    throw;
  }
  on_.ui.set_focus(on_.ui.Txt_DatEffet);
}

void AmendmentLines::Cmd_AjDetail_Click() {
  card::CardScreen& ui = on_.ui;
  select(-1);
  on_.card.AjoutDetail = true;
  begin_entry();
  ui.Cmd_SuppDetail.set_enabled(false);
  ui.Cmd_Detail.set_enabled(false);
  ui.Cbo_NouvMes.set_text("NON");
  fill_entry([&] {
    on_.grids.show({}, {});
    on_.grids.RemplirGrille();
    // The first amendment of a new contract starts with the contract.
    if (on_.card.Creation && ui.Lst_DatEffet.count() == 0) ui.Txt_DatEffet.set_text(ui.Txt_DatDeb.text());
  });
}

void AmendmentLines::SelListe() {
  card::CardScreen& ui = on_.ui;
  const int index = on_.card.edited_line;
  select(index);
  begin_entry();
  const auto lists = ui.amendment_lists();
  const auto entries = ui.amendment_entries();
  ui.Cmd_SuppDetail.set_enabled(true);
  fill_entry([&] {
    for (std::size_t c = 0; c < lists.size(); ++c) entries[c]->show_whole(lists[c]->line(index));
    const card::Kept& grid = on_.card.amendments[static_cast<std::size_t>(index)][card::kGridColumn];
    on_.grids.show(grid.stored, grid.shown);
  });
  ui.Cmd_Detail.set_enabled(true);
}

// ---- Confirming.

long AmendmentLines::day(std::string_view date) const {
  return static_cast<long>(entry::parse_decimal(on_.entry.CheckDate(date).day, 0).value_or(0));
}

bool AmendmentLines::refuse(std::string_view message, screen::Control& caret) {
  on_.screen.refuse(message);
  on_.ui.set_focus(caret);
  return false;
}

bool AmendmentLines::date_is_valid() {
  card::CardScreen& ui = on_.ui;
  if (ui.Txt_DatEffet.is_empty()) return refuse("La date d'effet est obligatoire.", ui.Txt_DatEffet);
  if (!ui.Txt_DatDeb.is_empty() && day(ui.Txt_DatEffet.text()) < day(ui.Txt_DatDeb.text())) {
    if (ui.Txt_DatDepGrille.text() == ui.Txt_DatEffet.text()) ui.Txt_DatDepGrille.set_text({});
    on_.screen.refuse(kBeforeContract);
    ui.Txt_DatEffet.set_text({});
    ui.set_focus(ui.Txt_DatEffet);
    return false;
  }
  bool taken = false;
  for (int line = 0; line < ui.Lst_DatEffet.count(); ++line)
    taken |= line != on_.card.edited_line && ui.Lst_DatEffet.line(line) == ui.Txt_DatEffet.text();
  if (!taken) return true;
  on_.screen.refuse("Vous ne pouvez pas affecter deux lignes de détail à la même date d'effet.");
  ui.Txt_DatEffet.set_text({});
  ui.set_focus(ui.Txt_DatEffet);
  return false;
}

bool AmendmentLines::grid_or_rate_is_valid() {
  card::CardScreen& ui = on_.ui;
  const bool start = !ui.Txt_DatDepGrille.is_empty();
  const bool grid = !ui.Cbo_Grille.is_empty();
  const bool rate = !ui.Txt_TxHor.is_empty();
  if (grid && !start)
    return refuse("La date de départ de calcul de grille est obligatoire.", ui.Txt_DatDepGrille);
  if (start && !grid) return refuse("La grille de déroulement de carrière est obligatoire.", ui.Cbo_Grille);
  if (!start && !grid && !rate) {
    return refuse(kGridOrRate, ui.Txt_DatDepGrille);
  }
  if (grid && rate) ui.Txt_TxHor.set_text({});  // the grid wins, silently
  return true;
}

bool AmendmentLines::category_is_valid() {
  const std::string& agreement = on_.ui.Txt_ConvCol.text();
  if (agreement == "01" || agreement == "06" || !on_.grids.uses_categories()) return true;
  if (!on_.ui.Txt_Categorie.is_empty()) return true;
  on_.screen.refuse("Vous devez entrer une catégorie.");
  return false;
}

bool AmendmentLines::entry_is_valid() {
  if (!date_is_valid()) return false;
  if (on_.ui.Cbo_Qualif.is_empty())
    return refuse("La qualification professionnelle est obligatoire.", on_.ui.Cbo_Qualif);
  return grid_or_rate_is_valid() && category_is_valid();
}

// What the entry controls hold, each beside what will be stored. A column that still shows what
// it was loaded with keeps what was stored.
card::AmendmentMemory AmendmentLines::entered_line() const {
  const card::Codec codec(on_.entry);
  const auto entries = on_.ui.amendment_entries();
  const card::AmendmentMemory* before =
      on_.card.AjoutDetail ? nullptr : &on_.card.amendments[static_cast<std::size_t>(on_.card.edited_line)];
  card::AmendmentMemory line;
  for (std::size_t c = 0; c < line.size(); ++c) {
    line[c] = {entries[c]->text(), kAmendmentColumns[c].stored(codec, entries[c]->text())};
    if (before && (*before)[c].shown == line[c].shown) line[c] = (*before)[c];
  }
  line[card::kGridColumn].stored = on_.grids.chosen_id();
  return line;
}

int AmendmentLines::insertion_position() const {
  const screen::ListBox& dates = on_.ui.Lst_DatEffet;
  const long entered = day(on_.ui.Txt_DatEffet.text());
  int position = 0;
  while (!dates.line(position).empty() && day(dates.line(position)) < entered) ++position;
  return position;
}

void AmendmentLines::show_line(int position, const card::AmendmentMemory& line) {
  const auto lists = on_.ui.amendment_lists();
  for (std::size_t c = 0; c < lists.size(); ++c) lists[c]->replace(position, line[c].shown);
}

void AmendmentLines::insert_line(int position, card::AmendmentMemory line) {
  if (position < on_.ui.Lst_DatEffet.count()) {
    const std::string hours = entry::format_pattern(on_.ui.Txt_HorMensEtab.text(), 2);
    line[card::kMonthlyColumn] = {
        hours, kAmendmentColumns[card::kMonthlyColumn].stored(card::Codec(on_.entry), hours)};
  }
  for (screen::ListBox* list : on_.ui.amendment_lists()) list->insert(position, {});
  show_line(position, line);
  on_.card.amendments.insert(on_.card.amendments.begin() + position, std::move(line));
  // The items of the later lines move down with them.
  for (int attribute : card::kItemColumns) {
    if (on_.card.working.Count(attribute) > position) on_.card.working.Insert(attribute, position + 1, {});
  }
}

// A line whose date has passed its neighbours' takes its place among them, items and all.
int AmendmentLines::move_into_order(int position) {
  const card::AmendmentMemory line = on_.card.amendments[static_cast<std::size_t>(position)];
  for (screen::ListBox* list : on_.ui.amendment_lists()) list->remove(position);
  on_.card.amendments.erase(on_.card.amendments.begin() + position);
  const int target = insertion_position();
  for (screen::ListBox* list : on_.ui.amendment_lists()) list->insert(target, {});
  on_.card.amendments.insert(on_.card.amendments.begin() + target, line);
  show_line(target, line);
  if (target != position) {
    for (int attribute : card::kItemColumns)
      move_value(on_.card.working, attribute, position + 1, target + 1);
  }
  return target;
}

void AmendmentLines::Cmd_OkDetail_Click() {
  card::CardScreen& ui = on_.ui;
  if (!entry_is_valid()) return;
  ui.Txt_Categorie.show_whole(text::upper(ui.Txt_Categorie.text()));
  if (ui.Cbo_NouvMes.is_empty()) ui.Cbo_NouvMes.set_text("NON");
  card::AmendmentMemory line = entered_line();
  int position = on_.card.edited_line;
  if (on_.card.AjoutDetail) {
    position = insertion_position();
    insert_line(position, std::move(line));
  } else {
    card::AmendmentMemory& own = on_.card.amendments[static_cast<std::size_t>(position)];
    const bool dated = own[card::kEffectiveColumn].shown != line[card::kEffectiveColumn].shown;
    own = line;
    show_line(position, line);
    if (dated) position = move_into_order(position);
  }
  on_.card.current_line = position + 1;
  end_entry();
  size_scroll_bar();
  select(position);
}

// ---- Abandoning and removing.

void AmendmentLines::Cmd_AnnulDetail_Click() {
  if (on_.card.AjoutDetail && !on_.screen.confirm_loss("Voulez-vous quitter cette création ?")) return;
  const int line = line_in_hand();
  end_entry();
  select(line);
  on_.ui.set_focus(line < 0 ? static_cast<screen::Control&>(on_.ui.Cmd_AjDetail) : on_.ui.Lst_DatEffet);
}

void AmendmentLines::Cmd_SuppDetail_Click() {
  const int line = line_in_hand();
  if (line < 0 || !on_.screen.confirm_loss("Voulez-vous supprimer cette ligne ?")) return;
  for (int attribute : card::kItemColumns) {
    if (on_.card.working.Count(attribute) > line) on_.card.working.Delete(attribute, line + 1);
  }
  for (screen::ListBox* list : on_.ui.amendment_lists()) list->remove(line);
  on_.card.amendments.erase(on_.card.amendments.begin() + line);
  end_entry();
  size_scroll_bar();
  select(-1);
  on_.ui.set_focus(on_.ui.Cmd_AjDetail);
}

// ---- The payroll items of a line.

void AmendmentLines::Cmd_Detail_Click() {
  const int line = line_in_hand();
  if (line < 0) return;
  on_.card.current_line = line + 1;
  open_items_([this, line](const MonthlyTime& monthly_time) {
    if (!monthly_time) return;
    on_.ui.Lst_DureMens.replace(line, *monthly_time);
    on_.ui.Txt_DureMens.show_whole(*monthly_time);
  });
}

}  // namespace velanor::amendments
