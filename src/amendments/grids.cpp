#include "amendments/grids.h"

#include <algorithm>

#include "entry/decimal.h"
#include "store/text_literal.h"

namespace velanor::amendments {
namespace {

constexpr int kId = 1;
constexpr int kLabel = 2;
constexpr int kCategory = 3;
constexpr std::string_view kFile = "GRILLESCCBUDGET";

}  // namespace

void CareerGrids::bind() {
  ui_.Cbo_Grille.changed += [this] { Cbo_Grille_Change(); };
  ui_.Cbo_Grille.clicked += [this] { Cbo_Grille_Click(); };
  // A grid is chosen or removed, never spelt out.
  ui_.Cbo_Grille.key_press = [this](screen::Key& key) { Cbo_Qualif_KeyPress(key); };
  ui_.Cbo_Qualif.drop_down += [this] { Cbo_Qualif_DropDown(); };
  ui_.Cbo_Qualif.changed += [this] { Cbo_Qualif_Change(); };
  ui_.Cbo_Qualif.clicked += [this] { Cbo_Qualif_Click(); };
  ui_.Cbo_Qualif.key_press = [this](screen::Key& key) { Cbo_Qualif_KeyPress(key); };
  ui_.Cbo_NouvMes.key_press = [this](screen::Key& key) { Cbo_NouvMes_KeyPress(key); };
  ui_.Cbo_NouvMes.refill({"OUI", "NON"});
}

bool CareerGrids::splits_generations() const {
  return ui_.Txt_ConvCol.text() == "01" || ui_.Txt_ConvCol.text() == "06";
}

bool CareerGrids::is_new_generation() const {
  const auto day = [&](std::string_view text) {
    return entry::parse_decimal(entry_.CheckDate(text).day, 0).value_or(0);
  };
  return day(ui_.Txt_DatEffet.text()) >= day("01/10/21");
}

std::string CareerGrids::bound(std::string_view code) const {
  return store::quoted(ui_.Txt_ConvCol.text() + "[" + std::string(code));
}

void CareerGrids::RemplirGrille() {
  std::string statement = "SSELECT GRILLESCCBUDGET AVEC 0 = " + store::quoted(ui_.Txt_ConvCol.text() + "]");
  if (splits_generations() && !ui_.Txt_DatEffet.is_empty()) {
    statement += is_new_generation() ? " AND AVEC 0 >= " + bound("400") + " AND < " + bound("500")
                                     : " AND AVEC 0 < " + bound("400") + " OR >= " + bound("500");
  }
  const std::string grid = ui_.Cbo_Grille.text();
  const std::string id = ui_.Cbo_Grille.index() >= 0 ? chosen_id() : std::string();
  const bool was_listed = ui_.Cbo_Grille.find(grid) >= 0;
  grids_ = procedure_.select(statement + " PAR 1", kFile, "0 1 7");
  std::vector<std::string> labels;
  for (int i = 1; i <= grids_.DCount(); ++i) labels.emplace_back(grids_(i, kLabel));
  ui_.Cbo_Grille.set_enabled(true);
  ui_.Cbo_Grille.refill(std::move(labels), id.empty() ? -1 : reference::find_entry(grids_, kId, id) - 1);
  if (was_listed && ui_.Cbo_Grille.find(grid) < 0) ui_.Cbo_Grille.set_text({});
}

void CareerGrids::RemplirQualif() {
  ui_.Cbo_Qualif.set_enabled(true);
  std::vector<std::string> codes;
  if (!splits_generations()) {
    const store::DbRecord& table = procedure_.variable().qualif;
    for (int value = 1; !table(reference::kTableCodes, value).empty(); ++value)
      codes.emplace_back(table(reference::kTableCodes, value));
  } else {
    const std::string id = ui_.Cbo_Grille.is_empty() ? std::string() : chosen_id();
    const std::string every = ui_.Txt_ConvCol.text() + "]";
    const std::string bounds = " AND AVEC 0 >= " + bound("400") + " AND < " + bound("500");
    const auto statement = [](const std::string& which, const std::string& range) {
      return "SSELECT GRILLESCCBUDGET AVEC 0 = " + store::quoted(which) + range + " AND AVEC 8 <> " +
             store::quoted("1") + " PAR 0";
    };
    codes = qualifications(statement(id.empty() ? every : id, bounds));
    // The bounds leave nothing of a grid of the older generation: then those of every grid of the
    // agreement are offered.
    if (codes.empty()) codes = qualifications(statement(every, {}));
  }
  ui_.Cbo_Qualif.refill(std::move(codes));
}

std::vector<std::string> CareerGrids::qualifications(const std::string& statement) const {
  constexpr int kQualifications = 9;
  std::vector<std::string> codes;
  const store::DbResult ids = procedure_.select(statement, kFile, "0");
  for (int i = 1; i <= ids.DCount(); ++i) {
    const auto grid = procedure_.file(control::File::kGrids).find(ids(i));
    if (!grid) continue;
    for (int value = 1; value <= grid->Count(kQualifications); ++value) {
      const std::string code((*grid)(kQualifications, value));
      if (!code.empty() && std::find(codes.begin(), codes.end(), code) == codes.end()) codes.push_back(code);
    }
  }
  return codes;
}

std::string CareerGrids::chosen_id() const {
  const int index = ui_.Cbo_Grille.index();
  const int entry = index >= 0 ? index + 1 : reference::find_entry(grids_, kLabel, ui_.Cbo_Grille.text());
  return std::string(grids_(entry, kId));
}

std::string CareerGrids::label_of(std::string_view id) const {
  if (id.empty()) return {};
  const auto grid = procedure_.file(control::File::kGrids).find(id);
  return grid && !(*grid)(1).empty() ? std::string((*grid)(1)) : std::string(id);
}

bool CareerGrids::uses_categories() const {
  constexpr int kUsesCategories = 36;
  return !card_.agreement(kUsesCategories).empty();
}

void CareerGrids::Cbo_Grille_Change() {
  const bool none = ui_.Cbo_Grille.is_empty();
  ui_.Txt_Categorie.set_enabled(none);  // a grid dictates the category
  if (none) RemplirQualif();
}

void CareerGrids::Cbo_Grille_Click() {
  if (ui_.Cbo_Grille.index() < 0) return;
  if (uses_categories()) ui_.Txt_Categorie.set_text(grids_(ui_.Cbo_Grille.index() + 1, kCategory));
  RemplirQualif();
}

void CareerGrids::Cbo_Qualif_KeyPress(screen::Key& key) {
  if (key.code != screen::Key::kBackspace && key.code != screen::Key::kTab) key.swallow();
}

}  // namespace velanor::amendments
