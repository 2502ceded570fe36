#include "card/commands/card_fields.h"

#include "card/commands/card_commands.h"
#include "card/record/fit_codes.h"
#include "card/record/record_layout.h"
#include "card/record/reference_layout.h"
#include "text/utf8.h"

namespace velanor::commands {

using reference::LookupPair;

// ---- Dates, hours, rates, percentages, amounts.

void CardFields::bind_free_entry(entry::Fields& fields) {
  using entry::DateOutcome;
  card::CardScreen& ui = on_.ui;
  const entry::DateField dates[] = {
      {ui.Txt_DatDeb, 0, [this](DateOutcome outcome) { Txt_DatDeb_LostFocus(outcome); }},
      {ui.Txt_DatFin, 0, [this](DateOutcome outcome) { Txt_DatFin_LostFocus(outcome); }},
      {ui.Txt_DatNais},
      {ui.Txt_DateBranche},
      {ui.Txt_DatEffet, 6, [this](DateOutcome outcome) { Txt_DatEffet_LostFocus(outcome); }},
      {ui.Txt_DatDepGrille},
  };
  const entry::DecimalField figures[] = {
      {ui.Txt_DureMens, decimals(card::kMonthlyTime), entry::Caret::kLeft},
      {ui.Txt_TxHor, decimals(card::kHourlyRate)},
      {ui.Txt_AssSS, decimals(card::kSocialBase)},
      {ui.Txt_PlafSecu, decimals(card::kCeiling)},
      {ui.Txt_HresExo, decimals(card::kExemptedHours)},
      {ui.Txt_Pourc, decimals(card::kShare)},
  };
  const auto amount = [](screen::TextBox& box, const card::Field& field) {
    return entry::AmountField{box, decimals(field), integer_digits(field)};
  };
  const entry::AmountField amounts[] = {amount(ui.Txt_MutSalContrat, card::kMutualEmployee),
                                        amount(ui.Txt_MutPatContrat, card::kMutualEmployer)};
  constexpr int kLongestMonth = 99999;  // hundredths of an hour
  for (const auto& field : dates) fields.bind(field);
  for (const auto& field : figures) fields.bind(field);
  for (const auto& field : amounts) fields.bind(field);
  fields.bind(entry::BoundedField{ui.Txt_HorMensEtab, kLongestMonth});
  entry::Fields::bind_letters(ui.Txt_Categorie);
  ui.Txt_DatEffet.changed += [this] { Txt_DatEffet_Change(); };
}

void CardFields::Txt_DatDeb_LostFocus(entry::DateOutcome outcome) {
  using entry::DateOutcome;
  if (outcome == DateOutcome::kPassed || outcome == DateOutcome::kEmpty) on_.states.update_add_amendment();
}

// An end reason can only be chosen while an end date stands.
void CardFields::Txt_DatFin_LostFocus(entry::DateOutcome outcome) {
  const bool passed = outcome == entry::DateOutcome::kPassed;
  if (!passed) {
    on_.ui.Cbo_MotifFin.set_text({});
    on_.card.draft.put_stored(card::kEndReason, {});
  }
  on_.ui.Cbo_MotifFin.set_enabled(passed);
}

void CardFields::Txt_DatEffet_LostFocus(entry::DateOutcome outcome) {
  card::CardScreen& ui = on_.ui;
  if (outcome == entry::DateOutcome::kPassed && on_.card.AjoutDetail && ui.Txt_DatDepGrille.is_empty())
    ui.Txt_DatDepGrille.set_text(ui.Txt_DatEffet.text());
  if (ui.Txt_DatEffet.text().size() == card::kEffective.length) on_.grids.RemplirGrille();
}

void CardFields::Txt_DatEffet_Change() {
  card::CardScreen& ui = on_.ui;
  const bool complete = ui.Txt_DatEffet.text().size() == card::kEffective.length;
  ui.Cmd_Detail.set_enabled(!on_.card.AjoutDetail && !ui.Txt_RegroupBudget.is_empty() && complete &&
                            ui.Txt_ConvCol.text().size() == card::kAgreement.length);
  if (complete) on_.grids.RemplirGrille();
}

// ---- The pairs of code and label.

LookupPair CardFields::file_pair(screen::TextBox& code, screen::ComboBox& label, control::File file,
                                 const store::DbResult& kept) {
  return {.code = code,
          .label = label,
          .unknown = "Ce code n'existe pas.",
          .read = [this, file](const std::string& id) { return on_.procedure.file(file).find(id); },
          .kept = kept};
}

LookupPair CardFields::profile_pair(screen::TextBox& code, screen::ComboBox& label,
                                    const store::DbResult& kept) {
  LookupPair pair = file_pair(code, label, control::File::kProfiles, kept);
  pair.refusal = [](const std::string&, const store::DbRecord& profile) {
    return card::fits_profile(profile) ? std::string_view() : card::fit_of(card::kProfile1.list)->refusal;
  };
  return pair;
}

LookupPair CardFields::agreement_pair() {
  LookupPair pair = file_pair(on_.ui.Txt_ConvCol, on_.ui.Cbo_Convcol, control::File::kAgreements,
                              on_.lists.kept().agreements);
  pair.refusal = [](const std::string& code, const store::DbRecord&) {
    return card::fits_agreement(code) ? std::string_view() : card::fit_of(card::kAgreement.list)->refusal;
  };
  pair.accepted = [this](const store::DbRecord& agreement) { on_.card.agreement = agreement; };
  pair.incomplete = [this] { on_.card.agreement = {}; };
  return pair;
}

LookupPair CardFields::entity_pair(CardCommands& commands) {
  LookupPair pair =
      file_pair(on_.ui.Txt_Asso, on_.ui.Cbo_Asso, control::File::kEntities, on_.lists.kept().entities);
  pair.accepted = [&commands](const store::DbRecord&) { commands.entity_accepted(); };
  pair.incomplete = [&commands] { commands.entity_incomplete(); };
  return pair;
}

LookupPair CardFields::employee_pair(CardCommands& commands) {
  card::CardScreen& ui = on_.ui;
  return {.code = ui.Txt_Aidant,
          .label = ui.Cbo_Aidant,
          .unknown = "Cet aidant n'existe pas.",
          .read =
              [this](const std::string& code) {
                const auto year = text::trim(on_.ui.Cbo_Periode.text());
                return on_.procedure.file(control::File::kCards)
                    .find(card::record_id(code, on_.ui.Txt_Asso.text(), year));
              },
          .kept = on_.lists.kept().employees,
          .accepted = [&commands](const store::DbRecord& record) { commands.open_employee(record); },
          .incomplete = [&commands] { commands.employee_left(); },
          // A card that cannot be read must not open as an empty one.
          .failures_surface = true,
          .alike = reference::Alike::kDifferent};
}

LookupPair CardFields::establishment_pair() {
  return {.code = on_.ui.Txt_CodEtab,
          .label = on_.ui.Cbo_Etab,
          .unknown = "Cet établissement n'existe pas.",
          .read =
              [this](const std::string& code) {
                return on_.procedure.establishments().find(on_.ui.Txt_Asso.text() + code);
              },
          .kept = on_.lists.kept().establishments,
          .code_from = card::kEntityCodeLength + 1};
}

// A charge item must be one of its list, whose criteria are what makes it fit.
LookupPair CardFields::charge_pair() {
  const store::DbResult& kept = on_.lists.kept().charges;
  return {.code = on_.ui.Txt_ChargMutContrat,
          .label = on_.ui.Cbo_ChargMutContrat,
          .unknown = card::fit_of(card::kMutualCharge.list)->refusal,
          .read = [&kept](const std::string& code) -> std::optional<store::DbRecord> {
            const int entry = reference::find_entry(kept, 1, code);
            if (entry == 0) return std::nullopt;
            store::DbRecord charge;
            charge.set(card::kReferenceLabel, kept(entry, 2));
            return charge;
          },
          .kept = kept};
}

void CardFields::bind_pairs(reference::LookupPairs& pairs, CardCommands& commands) {
  card::CardScreen& ui = on_.ui;
  const reference::KeptResults& kept = on_.lists.kept();
  pairs.add(entity_pair(commands));
  pairs.add(employee_pair(commands));
  pairs.add(establishment_pair());
  pairs.add(agreement_pair());
  pairs.add(file_pair(ui.Txt_Secteur, ui.Cbo_Secteur, control::File::kSectors, kept.sectors));
  pairs.add(profile_pair(ui.Txt_Profil1, ui.Cbo_Profil1, kept.profiles1));
  pairs.add(profile_pair(ui.Txt_Profil2, ui.Cbo_Profil2, kept.profiles2));
  pairs.add(charge_pair());
  pairs.add_town(ui.Cbo_Com, on_.procedure);
  ui.Txt_ConvCol.changed += [this] { Txt_ConvCol_Change(); };
}

// The branch date exists under two agreements only; a line needs an agreement.
void CardFields::Txt_ConvCol_Change() {
  card::CardScreen& ui = on_.ui;
  const bool branch = card::agreements::is_of_the_branch(ui.Txt_ConvCol.text());
  ui.Txt_DateBranche.set_visible(branch);
  ui.Etq_DepBranche.set_visible(branch);
  if (!branch) ui.Txt_DateBranche.set_text({});
  if (on_.card.open && ui.Txt_ConvCol.enabled()) on_.states.update_add_amendment();
}

// ---- Labels without a code box.

void CardFields::bind_labels() {
  on_.ui.Cbo_MotifFin.lost_focus += [this] { Cbo_MotifFin_LostFocus(); };
  on_.ui.Cbo_NatureContrat.drop_down += [this] { Cbo_NatureContrat_DropDown(); };
  on_.ui.Cbo_NatureContrat.lost_focus += [this] { Cbo_NatureContrat_LostFocus(); };
}

void CardFields::Cbo_NatureContrat_LostFocus() {
  screen::ComboBox& box = on_.ui.Cbo_NatureContrat;
  if (!box.edited() || box.is_empty() || box.find(box.text()) >= 0) return;
  if (on_.card.draft.shown(card::kContractNature) == box.text()) return;
  if (reference::take_typed(box) == reference::Found::kOne) return;
  on_.screen.refuse("La nature saisie n'existe pas, veuillez la ressaisir.");
  on_.ui.set_focus(box);
}

// Saving says what a reason that matches nothing lacks.
void CardFields::Cbo_MotifFin_LostFocus() {
  if (on_.ui.Cbo_MotifFin.edited()) reference::take_typed(on_.ui.Cbo_MotifFin);
}

}  // namespace velanor::commands
