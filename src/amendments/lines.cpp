#include "amendments/lines.h"

#include "control/session/procedure.h"
#include "entry/decimal.h"
#include "text/utf8.h"

namespace velanor::amendments {

namespace {

// clang-format off
constexpr std::string_view kBeforeContract = "La date d'effet doit être supérieure ou égale à la date de début de contrat et à la date de début de période budgétaire.";
constexpr std::string_view kGridOrRate = "Vous devez indiquer soit une date de départ de calcul dans la grille et une grille de déroulement de carrière, soit un taux horaire.";
// clang-format on

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

void AmendmentLines::show_all(const card::Draft& draft) {
  std::vector<card::AmendmentText> lines;
  lines.reserve(static_cast<std::size_t>(draft.amendments()));
  for (int line = 0; line < draft.amendments(); ++line) lines.push_back(draft.amendment(line));
  for (screen::ListBox* list : on_.ui.amendment_lists()) list->clear();
  for (std::size_t line = 0; line < lines.size(); ++line) insert_line(static_cast<int>(line), lines[line]);
  size_scroll_bar();
}

void AmendmentLines::insert_line(int position, const card::AmendmentText& line) {
  const auto lists = on_.ui.amendment_lists();
  for (std::size_t c = 0; c < lists.size(); ++c) lists[c]->insert(position, line.shown[c]);
}

void AmendmentLines::remove_line(int position) {
  for (screen::ListBox* list : on_.ui.amendment_lists()) list->remove(position);
}

void AmendmentLines::size_scroll_bar() {
  // The bar steps through the lines, so it is there as soon as there are two.
  on_.ui.Bdv_Detail.fit(on_.ui.Lst_DatEffet.count(), 1);
}

// ---- Selecting: every column follows the one that was clicked.

void AmendmentLines::select(int index) {
  for (screen::ListBox* list : on_.ui.amendment_lists()) list->set_index(index);
  on_.lists.ChercheRegroupBudget(on_.ui.Lst_Qualif.line(index));
  // What the items of one line made there says nothing of another.
  if (!on_.card.enters_amendment()) on_.ui.Txt_DureMens.set_text({});
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
  begun_ = entered_line();
  on_.ui.set_focus(on_.ui.Txt_DatEffet);
}

bool AmendmentLines::modified() const {
  if (!on_.card.enters_amendment()) return false;
  const card::AmendmentText now = entered_line();
  return now.shown != begun_.shown || now.grid != begun_.grid;
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
    const std::string grid(element(on_.card.draft.record(), card::kGrid, index + 1));
    on_.grids.show(grid, std::string(ui.Lst_Grille.line(index)));
  });
  ui.Cmd_Detail.set_enabled(true);
}

// ---- Confirming.

std::int64_t AmendmentLines::day(std::string_view date) const {
  return entry::parse_decimal(on_.entry.CheckDate(date).day, 0).value_or(0);
}

bool AmendmentLines::refuse(std::string_view message, screen::Control& caret) {
  on_.screen.refuse(message);
  on_.ui.set_focus(caret);
  return false;
}

bool AmendmentLines::date_is_taken() const {
  const card::CardScreen& ui = on_.ui;
  for (int line = 0; line < ui.Lst_DatEffet.count(); ++line) {
    if (line != on_.card.edited_line && ui.Lst_DatEffet.line(line) == ui.Txt_DatEffet.text()) return true;
  }
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
  if (!date_is_taken()) return true;
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
  if (card::agreements::is_of_the_branch(agreement) || !on_.grids.uses_categories()) return true;
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

card::AmendmentText AmendmentLines::entered_line() const {
  card::AmendmentText line;
  const auto entries = on_.ui.amendment_entries();
  for (std::size_t c = 0; c < entries.size(); ++c) line.shown[c] = entries[c]->text();
  line.grid = on_.grids.chosen_id();
  return line;
}

std::pair<int, card::AmendmentText> AmendmentLines::new_line(const card::Draft& draft) const {
  card::AmendmentText line = entered_line();
  const int position = draft.position_for(day(on_.ui.Txt_DatEffet.text()));
  if (position < draft.amendments())
    line.shown[card::column_of(card::kMonthlyTime)] = entry::format_pattern(on_.ui.Txt_HorMensEtab.text(), 2);
  return {position, std::move(line)};
}

int AmendmentLines::add_line() {
  const auto [position, line] = new_line(on_.card.draft);
  on_.card.draft.insert_amendment(position, line);
  insert_line(position, line);
  return position;
}

void AmendmentLines::put_entry(card::Draft& draft) const {
  if (!enters() || day(on_.ui.Txt_DatEffet.text()) == 0 || date_is_taken()) return;
  if (!on_.card.AjoutDetail) {
    draft.change_amendment(on_.card.edited_line, entered_line());
    return;
  }
  const auto [position, line] = new_line(draft);
  draft.insert_amendment(position, line);
}

int AmendmentLines::change_line(const card::AmendmentText& line) {
  const int before = on_.card.edited_line;
  const int position = on_.card.draft.change_amendment(before, line);
  remove_line(before);
  insert_line(position, line);
  return position;
}

void AmendmentLines::Cmd_OkDetail_Click() {
  card::CardScreen& ui = on_.ui;
  if (!entry_is_valid()) return;
  ui.Txt_Categorie.show_whole(text::upper(ui.Txt_Categorie.text()));
  if (ui.Cbo_NouvMes.is_empty()) ui.Cbo_NouvMes.set_text("NON");
  const int position = on_.card.AjoutDetail ? add_line() : change_line(entered_line());
  on_.card.current_line = position + 1;
  end_entry();
  size_scroll_bar();
  select(position);
}

// ---- Abandoning and removing.

void AmendmentLines::give_up() {
  if (!on_.card.enters_amendment()) return;
  const int line = line_in_hand();
  end_entry();
  select(line);
}

void AmendmentLines::Cmd_AnnulDetail_Click() {
  if (on_.card.AjoutDetail && !on_.screen.confirm_loss("Voulez-vous quitter cette création ?")) return;
  const int line = line_in_hand();
  give_up();
  on_.ui.set_focus(line < 0 ? static_cast<screen::Control&>(on_.ui.Cmd_AjDetail) : on_.ui.Lst_DatEffet);
}

void AmendmentLines::Cmd_SuppDetail_Click() {
  const int line = line_in_hand();
  if (line < 0 || !on_.screen.confirm_loss("Voulez-vous supprimer cette ligne ?")) return;
  on_.card.draft.remove_amendment(line);
  remove_line(line);
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
  open_items_([this, line](const MonthlyTime& monthly_time) { take_monthly_time(line, monthly_time); });
}

void AmendmentLines::take_monthly_time(int line, const MonthlyTime& monthly_time) {
  if (!monthly_time) return;
  on_.card.draft.put_monthly_time(line, *monthly_time);
  on_.ui.Lst_DureMens.replace(line, *monthly_time);
  on_.ui.Txt_DureMens.show_whole(*monthly_time);
}

std::string AmendmentLines::repeat_items(int line) {
  card::Draft& draft = on_.card.draft;
  if (!draft.items(line).empty()) return "Cet avenant a déjà des rubriques.";
  const auto before = line > 0 ? draft.items(line - 1) : std::vector<card::ItemText>();
  if (before.empty()) return "L'avenant précédent n'a pas de rubriques à reprendre.";
  card::Draft with_items = draft;
  with_items.put_items(line, before);
  const MonthlyTime time = on_.ui.Opt_Admin.value() ? MonthlyTime() : with_items.item_hours(line);
  draft = std::move(with_items);
  take_monthly_time(line, time);
  on_.ui.set_focus(on_.ui.Lst_DatEffet);
  return {};
}

}  // namespace velanor::amendments
