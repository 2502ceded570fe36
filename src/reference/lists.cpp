#include "reference/lists.h"

#include "card/record/fit_codes.h"
#include "card/record/labels.h"
#include "card/record/record_layout.h"
#include "text/utf8.h"

namespace velanor::reference {
namespace {

constexpr int kId = 1;
constexpr int kLabel = 2;

std::vector<std::string> labels_of(const store::DbResult& result) {
  std::vector<std::string> labels;
  const int count = result.DCount();
  labels.reserve(static_cast<std::size_t>(count));
  for (int i = 1; i <= count; ++i) labels.emplace_back(result(i, kLabel));
  return labels;
}

std::vector<std::string> employee_codes(const store::DbResult& employees) {
  std::vector<std::string> codes;
  for (int i = 1; i <= employees.DCount(); ++i) codes.emplace_back(card::employee_of(employees(i, kId)));
  return codes;
}

}  // namespace

int find_entry(const store::DbResult& result, int field, std::string_view text) {
  const int count = result.DCount();
  for (int i = 1; i <= count; ++i) {
    if (result(i, field) == text) return i;
  }
  return 0;
}

void ReferenceLists::fill(screen::ComboBox& box, store::DbResult& kept, const store::DbResult& fresh) {
  box.set_index(-1);
  box.set_text({});
  // A result that has not changed is in the box already: 35,000 towns need not be copied again.
  const bool filled = kept.same_rows(fresh) && box.count() == fresh.DCount();
  kept = fresh;
  if (!filled) box.refill(labels_of(kept));
}

void ReferenceLists::fill_or_take(screen::ComboBox& box, screen::TextBox* code, store::DbResult& kept,
                                  const store::DbResult& fresh, int code_from) {
  fill(box, kept, fresh);
  if (kept.DCount() != 1) return;
  if (code) code->set_text(text::mid(kept(1, kId), code_from));
  box.set_text(kept(1, kLabel));
}

store::DbResult ReferenceLists::fit_codes(const card::Field& field) const {
  return procedure_.select(card::fit_of(field.list)->statement, field.list, "0 1");
}

void ReferenceLists::RequeteAssoc() {
  kept_.entities = procedure_.select("SSELECT ASSOCIATION 0 PAR 0", "ASSOCIATION", "0 1");
}

void ReferenceLists::RemplirAssoc() {
  ui_.Cbo_Asso.clear();
  ui_.Cbo_Asso.refill(labels_of(kept_.entities));
  if (kept_.entities.DCount() == 1 && !kept_.entities(1, kId).empty()) {
    ui_.Txt_Asso.set_text(kept_.entities(1, kId));
    // An entity without personnel records has been refused and its box emptied again.
    if (!ui_.Txt_Asso.is_empty()) ui_.Cbo_Asso.set_text(kept_.entities(1, kLabel));
  } else {
    ui_.Txt_Asso.form().set_focus(ui_.Txt_Asso);
  }
}

store::DbResult ReferenceLists::employees_now() const {
  const std::string suffix = ui_.Txt_Asso.text() + std::string(text::trim(ui_.Cbo_Periode.text()));
  return procedure_.select("SSELECT VELANORO AVEC 0 = " + store::quoted_end(suffix) + " PAR 1", "VELANORO",
                           "0 1");
}

void ReferenceLists::RequeteAidant() {
  kept_.employees = {};  // codes of another entity or year must not be chosen
  kept_.employees = employees_now();
}

void ReferenceLists::renew_employees() {
  const int line = ui_.Cbo_Aidant.index();
  const std::string chosen(line < 0 ? std::string_view() : kept_.employees(line + 1, kId));
  const store::DbResult now = employees_now();
  if (kept_.employees.same_rows(now)) return;
  kept_.employees = now;
  put_employees(chosen.empty() ? -1 : find_entry(now, kId, chosen) - 1);
}

void ReferenceLists::put_employees(int index) {
  const store::DbResult& found = kept_.employees;
  const bool any = !found(1, kId).empty();
  ui_.Cbo_Aidant.refill(any ? labels_of(found) : std::vector<std::string>(), index);
  if (any) ui_.Cbo_Aidant.annotate(employee_codes(found));
  employees_in_box_ = found;
}

void ReferenceLists::RemplirAidant() {
  // A save that changes no name finds the box filled: 50,000 lines need not be made again.
  const bool filled = employees_in_box_.same_rows(kept_.employees) &&
                      ui_.Cbo_Aidant.count() == kept_.employees.DCount() && ui_.Cbo_Aidant.count() > 0;
  if (filled) ui_.Cbo_Aidant.set_text({});
  if (!filled || ui_.Cbo_Aidant.index() >= 0) {
    ui_.Cbo_Aidant.clear();
    put_employees();
  }
  ui_.Txt_Aidant.set_enabled(true);
  ui_.Txt_Aidant.set_text({});
  ui_.Cbo_Aidant.set_enabled(true);
}

void ReferenceLists::RemplirConvCol() {
  fill_or_take(ui_.Cbo_Convcol, &ui_.Txt_ConvCol, kept_.agreements, fit_codes(card::kAgreement));
}

void ReferenceLists::RemplirSecteur() {
  fill_or_take(ui_.Cbo_Secteur, &ui_.Txt_Secteur, kept_.sectors,
               procedure_.select("SSELECT SECTEUR PAR 1", "SECTEUR", "0 1"));
}

void ReferenceLists::RemplirCommune() {
  fill_or_take(ui_.Cbo_Com, nullptr, kept_.towns,
               procedure_.select("SSELECT COMMUNES PAR 1", "COMMUNES", "0 1"));
}

void ReferenceLists::RemplirAct() {
  const store::DbResult found = procedure_.select(
      "SSELECT ACTIVITES AVEC 0 = " + store::quoted_beginning(ui_.Txt_Asso.text()) + " PAR 1", "ACTIVITES",
      "0 1");
  ui_.Cbo_Activites.set_enabled(true);
  fill(ui_.Cbo_Activites, kept_.activities, found);
  ui_.Cbo_Activites.set_enabled(false);
}

void ReferenceLists::RemplirProfil1() { fill(ui_.Cbo_Profil1, kept_.profiles1, fit_codes(card::kProfile1)); }

void ReferenceLists::RemplirProfil2() { fill(ui_.Cbo_Profil2, kept_.profiles2, fit_codes(card::kProfile2)); }

void ReferenceLists::RemplirFinContrat() {
  const store::DbRecord& table = procedure_.variable().fincontrat;
  ui_.Cbo_MotifFin.set_enabled(true);
  ui_.Cbo_MotifFin.clear();
  if (table(card::tables::kLabels, 1).empty()) return;
  for (int value = 1; value <= table.Count(card::tables::kLabels); ++value) {
    if (card::is_offered(table, value)) ui_.Cbo_MotifFin.add(table(card::tables::kLabels, value));
  }
}

void ReferenceLists::Remplir_Etablissement() {
  constexpr int kCodeFrom = card::kEntityCodeLength + 1;
  fill_or_take(ui_.Cbo_Etab, &ui_.Txt_CodEtab, kept_.establishments,
               procedure_.select("SSELECT ETABLISSEMENT AVEC @ID = " +
                                     store::quoted_beginning(ui_.Txt_Asso.text()) + " PAR 1",
                                 "ETABLISSEMENT", "0 1"),
               kCodeFrom);
  card_.only_establishment =
      kept_.establishments.DCount() == 1 ? text::mid(kept_.establishments(1, kId), kCodeFrom) : "";
  fill(ui_.Cbo_ChargMutContrat, kept_.charges, fit_codes(card::kMutualCharge));
}

void ReferenceLists::fill_natures() {
  if (ui_.Cbo_NatureContrat.count() > 0) return;
  const store::DbRecord& table = procedure_.variable().naturecontrat;
  for (int value = 1; value <= table.Count(card::tables::kCodes); ++value) {
    if (table(card::tables::kOffered, value) == card::kYes)
      ui_.Cbo_NatureContrat.add(card::table_entry(table, value));
  }
}

void ReferenceLists::fill_diplomas() {
  const store::DbRecord& table = procedure_.variable().diplomes;
  for (int value = 1; value <= table.Count(card::tables::kCodes); ++value)
    ui_.Cbo_EtudeAidant.add(card::table_entry(table, value));
}

void ReferenceLists::fill_card_lists() {
  RemplirConvCol();
  RemplirSecteur();
  RemplirCommune();
  RemplirAct();
  RemplirProfil1();
  RemplirProfil2();
  RemplirFinContrat();
  Remplir_Etablissement();
  fill_natures();
}

void ReferenceLists::ChercheRegroupBudget(std::string_view qualification) {
  if (qualification.empty()) {
    ui_.Txt_RegroupBudget.set_text({});
    ui_.Txt_CodeRegBud.set_text({});
    card_.grouping.clear();
    return;
  }
  const store::DbRecord& qualifications = procedure_.variable().qualif;
  const store::DbRecord& groupings = procedure_.variable().regroupbudget;
  const int i = card::find_value(qualifications, card::tables::kCodes, qualification);
  const int j =
      i == 0 ? 0
             : card::find_value(groupings, card::tables::kCodes, qualifications(card::tables::kGrouping, i));
  if (j == 0) return;
  ui_.Txt_RegroupBudget.set_text(groupings(card::tables::kLabels, j));
  ui_.Txt_CodeRegBud.set_text(groupings(card::tables::kCodes, j));
  card_.grouping = ui_.Txt_CodeRegBud.text();
}

}  // namespace velanor::reference
