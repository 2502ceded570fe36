#include "amendments/grids.h"

#include <algorithm>

#include "entry/decimal.h"

namespace velanor::amendments {
namespace {

using card::grids::kFirstBehind;
using card::grids::kFirstNew;

// Of what is asked for.
constexpr int kId = 1;
constexpr int kLabel = 2;
constexpr int kCategory = 3;
constexpr std::string_view kFile = "GRILLESCCBUDGET";

}  // namespace

void CareerGrids::bind() {
  ui_.Cbo_Grille.changed += [this] { Cbo_Grille_Change(); };
  ui_.Cbo_Grille.clicked += [this] { Cbo_Grille_Click(); };
  // A grid is chosen or removed, never spelt out.
  ui_.Cbo_Grille.key_press = [this](screen::Key& key) { Cbo_Grille_KeyPress(key); };
  ui_.Cbo_Qualif.drop_down += [this] { Cbo_Qualif_DropDown(); };
  ui_.Cbo_Qualif.changed += [this] { Cbo_Qualif_Change(); };
  ui_.Cbo_Qualif.clicked += [this] { Cbo_Qualif_Click(); };
  ui_.Cbo_Qualif.key_press = [this](screen::Key& key) { Cbo_Qualif_KeyPress(key); };
  ui_.Cbo_NouvMes.key_press = [this](screen::Key& key) { Cbo_NouvMes_KeyPress(key); };
  ui_.Cbo_NouvMes.refill({"OUI", "NON"});
}

bool CareerGrids::splits_generations() const {
  return card::agreements::is_of_the_branch(ui_.Txt_ConvCol.text());
}

bool CareerGrids::is_new_generation() const {
  const auto day = [&](std::string_view text) {
    return entry::parse_decimal(entry_.CheckDate(text).day, 0).value_or(0);
  };
  return day(ui_.Txt_DatEffet.text()) >= day("01/10/21");
}

std::string CareerGrids::bound(std::string_view code) const {
  return '"' + store::escaped(ui_.Txt_ConvCol.text()) + '[' + store::escaped(code) + '"';
}

void CareerGrids::RemplirGrille() {
  std::string statement =
      "SSELECT GRILLESCCBUDGET AVEC 0 = " + store::quoted_beginning(ui_.Txt_ConvCol.text());
  if (splits_generations() && !ui_.Txt_DatEffet.is_empty()) {
    statement += is_new_generation() ? " AND AVEC 0 >= " + bound(kFirstNew) + " AND < " + bound(kFirstBehind)
                                     : " AND AVEC 0 < " + bound(kFirstNew) + " OR >= " + bound(kFirstBehind);
  }
  store::DbResult found;
  try {
    found = procedure_.select(statement + " PAR 1", kFile, "0 1 7");
  } catch (...) {
    ui_.Cbo_Grille.refill({});  // those of another date must not be chosen
    throw;
  }
  const bool was_listed = !id_.empty() && reference::find_entry(grids_, kId, id_) > 0;
  grids_ = found;
  std::vector<std::string> labels;
  for (int i = 1; i <= grids_.DCount(); ++i) labels.emplace_back(grids_(i, kLabel));
  int entry = meant_.empty() ? 0 : reference::find_entry(grids_, kId, meant_);
  if (entry == 0 && was_listed) entry = reference::find_entry(grids_, kLabel, ui_.Cbo_Grille.text());
  ui_.Cbo_Grille.set_enabled(true);
  ui_.Cbo_Grille.refill(std::move(labels), entry - 1);
  if (entry > 0) id_ = grids_(entry, kId);
  if (entry == 0 && was_listed) ui_.Cbo_Grille.set_text({});
  update_category();
}

void CareerGrids::show(const std::string& id, const std::string& label) {
  id_ = meant_ = id;
  missed_.clear();
  ui_.Cbo_Grille.set_text(label);
  const int entry = id.empty() ? 0 : reference::find_entry(grids_, kId, id);
  ui_.Cbo_Grille.refill(ui_.Cbo_Grille.items(), entry - 1);
  update_category();
}

void CareerGrids::RemplirQualif() {
  ui_.Cbo_Qualif.set_enabled(true);
  std::vector<std::string> codes;
  try {
    codes = offered_qualifications();
  } catch (...) {
    ui_.Cbo_Qualif.refill({});  // those of another grid must not be chosen
    throw;
  }
  const store::DbRecord& table = procedure_.variable().qualif;
  std::vector<std::string> labels;
  for (const std::string& code : codes) {
    const int value = card::find_value(table, card::tables::kCodes, code);
    labels.emplace_back(value > 0 ? table(card::tables::kLabels, value) : std::string_view());
  }
  ui_.Cbo_Qualif.refill(std::move(codes));
  ui_.Cbo_Qualif.annotate(std::move(labels));
  const std::string wanted = ui_.Cbo_Qualif.is_empty() ? missed_ : ui_.Cbo_Qualif.text();
  const bool offered = ui_.Cbo_Qualif.find(wanted) >= 0;
  ui_.Cbo_Qualif.set_text(offered ? wanted : std::string());
  missed_ = offered ? std::string() : wanted;
}

std::vector<std::string> CareerGrids::offered_qualifications() const {
  if (!splits_generations()) {
    const store::DbRecord& table = procedure_.variable().qualif;
    std::vector<std::string> codes;
    for (int value = 1; !table(card::tables::kCodes, value).empty(); ++value)
      codes.emplace_back(table(card::tables::kCodes, value));
    return codes;
  }
  const std::string id = listed_id();
  const std::string every = store::quoted_beginning(ui_.Txt_ConvCol.text());
  const std::string bounds = " AND AVEC 0 >= " + bound(kFirstNew) + " AND < " + bound(kFirstBehind);
  const auto statement = [](const std::string& which, const std::string& range) {
    return "SSELECT GRILLESCCBUDGET AVEC 0 = " + which + range + " AND AVEC 8 <> " + store::quoted("1") +
           " PAR 0";
  };
  auto codes = qualifications(statement(id.empty() ? every : store::quoted(id), bounds));
  if (codes.empty() && offers_every_qualification(id)) codes = qualifications(statement(every, {}));
  return codes;
}

// A grid of the older generation lies outside the bounds that are asked for: then those of every grid
// of the agreement are offered, unless the grid is marked as having none.
bool CareerGrids::offers_every_qualification(const std::string& id) const {
  if (id.empty()) return false;
  const auto number = [](const std::string& text) { return entry::parse_decimal(text, 0).value_or(0); };
  const std::string& agreement = ui_.Txt_ConvCol.text();
  if (number(id) >= number(agreement + std::string(kFirstNew)) &&
      number(id) < number(agreement + std::string(kFirstBehind)))
    return false;
  const auto grid = procedure_.file(control::File::kGrids).find(id);
  return !grid || (*grid)(card::grids::kNoQualifications) != card::kMarked;
}

std::vector<std::string> CareerGrids::qualifications(const std::string& statement) const {
  std::vector<std::string> codes;
  const store::DbResult ids = procedure_.select(statement, kFile, "0");
  for (int i = 1; i <= ids.DCount(); ++i) {
    const auto grid = procedure_.file(control::File::kGrids).find(ids(i));
    if (!grid) continue;
    for (int value = 1; value <= grid->Count(card::grids::kQualifications); ++value) {
      const std::string code((*grid)(card::grids::kQualifications, value));
      if (!code.empty() && std::find(codes.begin(), codes.end(), code) == codes.end()) codes.push_back(code);
    }
  }
  return codes;
}

// The grid in the box as the list knows it.
std::string CareerGrids::listed_id() const {
  if (ui_.Cbo_Grille.is_empty()) return {};
  if (reference::find_entry(grids_, kId, id_) > 0) return id_;
  return std::string(grids_(reference::find_entry(grids_, kLabel, ui_.Cbo_Grille.text()), kId));
}

bool CareerGrids::uses_categories() const { return !card_.agreement(card::agreements::kCategories).empty(); }

// A grid dictates the category, where it has the one that the agreement asks for.
void CareerGrids::update_category() {
  const int entry = reference::find_entry(grids_, kId, id_);
  const bool lacking = uses_categories() && grids_(entry, kCategory).empty();
  ui_.Txt_Categorie.set_enabled(card_.enters_amendment() && (ui_.Cbo_Grille.is_empty() || lacking));
}

void CareerGrids::Cbo_Grille_Change() {
  if (ui_.Cbo_Grille.is_empty()) id_ = meant_ = {};
  update_category();
  if (ui_.Cbo_Grille.is_empty() && card_.enters_amendment()) RemplirQualif();
}

void CareerGrids::Cbo_Grille_Click() {
  const int entry = ui_.Cbo_Grille.index() + 1;
  if (entry == 0) return;
  id_ = meant_ = grids_(entry, kId);
  if (uses_categories()) ui_.Txt_Categorie.set_text(grids_(entry, kCategory));
  update_category();
  RemplirQualif();
}

void CareerGrids::Cbo_Qualif_KeyPress(screen::Key& key) {
  missed_.clear();
  choose_only(ui_.Cbo_Qualif, key);
}

void CareerGrids::Cbo_Qualif_Change() {
  if (!ui_.Cbo_Qualif.is_empty()) missed_.clear();
  lists_.ChercheRegroupBudget(ui_.Cbo_Qualif.text());
}

void CareerGrids::choose_only(screen::ComboBox& box, screen::Key& key) {
  if (key.code == screen::Key::kBackspace) {
    box.set_text({});
  } else if (key.code != screen::Key::kTab) {
    key.swallow();
  }
}

}  // namespace velanor::amendments
