#include "card/commands/card_record.h"

#include "card/record/activity_line.h"
#include "card/record/record_compare.h"
#include "card/record/record_layout.h"
#include "card/record/saving.h"
#include "screen/scope.h"
#include "text/utf8.h"

namespace velanor::commands {

using namespace card;  // the named attributes of the layout

template <const auto& A>
CardRecord::Field CardRecord::field(screen::TextControl& box) {
  return {&box, [](const Draft& card) { return card.shown(A); },
          [](Draft& card, std::string_view shown) { card.put(A, shown); }};
}

CardRecord::CardRecord(const Ground& on)
    : ui_(on.ui),
      card_(on.card),
      entry_(on.entry),
      lists_(on.lists),
      amendments_(on.amendments),
      fields_{field<kEstablishmentHours>(ui_.Txt_HorMensEtab),
              field<kAgreement>(ui_.Txt_ConvCol),
              field<kSector>(ui_.Txt_Secteur),
              field<kTown>(ui_.Cbo_Com),
              field<kContractStart>(ui_.Txt_DatDeb),
              field<kBirth>(ui_.Txt_DatNais),
              field<kProfile1>(ui_.Txt_Profil1),
              field<kProfile2>(ui_.Txt_Profil2),
              field<kExemptedHours>(ui_.Txt_HresExo),
              field<kCeiling>(ui_.Txt_PlafSecu),
              field<kSocialBase>(ui_.Txt_AssSS),
              field<kContractEnd>(ui_.Txt_DatFin),
              field<kMutualCharge>(ui_.Txt_ChargMutContrat)},
      draft_as_opened_(card_.draft) {
  for (const Group group : {Group::kNameBox, Group::kEstablishmentBoxes, Group::kContractKey,
                            Group::kEmployee, Group::kEndReasonBox, Group::kMutual}) {
    for (const screen::Control* control : ui_.group(group)) {
      if (auto* box = dynamic_cast<const screen::TextControl*>(control)) boxes_.push_back(box);
      if (auto* option = dynamic_cast<const screen::OptionButton*>(control)) options_.push_back(option);
    }
  }
}

// ---- From the record to the screen.

void CardRecord::ChargerAidant() {
  const screen::Scope loading(card_.loading);
  ui_.Txt_NomAidant.show_whole(card_.draft.shown(kName));
  load_options();
  for (const Field& field : fields_) field.box->show_whole(field.shown(card_.draft));
  load_activities();
  load_amendments();
  load_end_reason();
  ui_.Cmd_Detail.set_enabled(true);
  load_establishment();
  load_mutual_shares();
  load_charge();
  load_entry(ui_.Cbo_NatureContrat, card_.draft.nature());
  if (ui_.Txt_DateBranche.visible()) ui_.Txt_DateBranche.show_whole(card_.draft.shown(kBranchEntry));
  load_entry(ui_.Cbo_EtudeAidant, card_.draft.education());
}

// A card without one keeps the only one that its entity has.
void CardRecord::load_establishment() {
  const std::string_view code =
      text::mid(card_.draft.record()(kEstablishment), kEntityCodeLength + 1, kEstablishmentCodeLength);
  ui_.Txt_CodEtab.set_text(text::trim(code).empty() ? std::string_view(card_.only_establishment) : code);
}

void CardRecord::load_options() {
  const store::DbRecord& record = card_.draft.record();
  const bool fixed_term = record(kContractType) == "D";
  ui_.Opt_CDD.set_value(fixed_term);
  ui_.Opt_CDI.set_value(!fixed_term);
  const bool production = record(kStaffKind) == "P";
  ui_.Opt_Prod.set_value(production);
  ui_.Opt_Admin.set_value(!production);
}

void CardRecord::load_activities() {
  for (int line = 0; line < card_.draft.activities(); ++line) {
    const ActivityText activity = card_.draft.activity(line);
    ui_.Lst_Activites.add(activity_line(activity.label, activity.share));
  }
}

// The monthly time of production staff is that of their items.
void CardRecord::load_amendments() {
  Draft& card = card_.draft;
  for (int line = 0; !ui_.Opt_Admin.value() && line < card.amendments(); ++line)
    card.put_monthly_time(line, card.item_hours(line));
  amendments_.show_all();
}

void CardRecord::load_end_reason() {
  ui_.Cbo_MotifFin.set_text(card_.draft.end_reason());
  ui_.Cbo_MotifFin.set_enabled(!ui_.Txt_DatFin.is_empty());
}

void CardRecord::load_mutual_shares() {
  for (auto [attribute, box] : {std::pair{kMutualEmployee, &ui_.Txt_MutSalContrat},
                                std::pair{kMutualEmployer, &ui_.Txt_MutPatContrat}})
    box->show_whole(entry_.FormatAmount(card_.draft.shown(attribute), 2, 4));
}

// An entry that is not offered any more is shown by its label, a code that has left the table by
// itself, both without being selected.
void CardRecord::load_entry(screen::ComboBox& box, const std::string& entry) {
  box.set_index(entry.empty() ? -1 : box.find(entry));
  box.show_whole(entry);
}

void CardRecord::load_charge() {
  const std::string_view code = card_.draft.record()(kMutualCharge);
  const int entry = reference::find_entry(lists_.kept().charges, 1, code);
  if (entry > 0 && !code.empty()) ui_.Cbo_ChargMutContrat.set_index(entry - 1);
}

// ---- From the screen to the record.

Draft CardRecord::entered() const {
  Draft card = card_.draft;
  card.put(kName, ui_.Txt_NomAidant.text());
  for (const Field& field : fields_) field.put(card, field.box->text());
  card.put_stored(kContractType, ui_.Opt_CDD.value() ? "D" : "I");
  card.put_stored(kStaffKind, ui_.Opt_Prod.value() ? "P" : "A");
  card.put_end_reason(ui_.Cbo_MotifFin.text());
  for (auto [attribute, box] : {std::pair{kMutualEmployee, &ui_.Txt_MutSalContrat},
                                std::pair{kMutualEmployer, &ui_.Txt_MutPatContrat}}) {
    if (box->text() != entry_.FormatAmount(card.shown(attribute), 2, 4)) card.put(attribute, box->text());
  }
  card.put_nature(ui_.Cbo_NatureContrat.text());
  if (ui_.Txt_DateBranche.visible()) card.put(kBranchEntry, ui_.Txt_DateBranche.text());
  card.put_education(ui_.Cbo_EtudeAidant.text());
  card.put_stored(kEstablishment, ui_.Txt_Asso.text() + ui_.Txt_CodEtab.text());
  return card;
}

void CardRecord::ChargerDonnees() {
  store::DbRecord record = entered().record();
  complete(record);
  drop_stale_results(record, card_.Creation ? nullptr : &*card_.file);
  card_.draft = Draft(card_.draft.reading(), std::move(record));
}

// ---- Whether anything has changed.

std::vector<std::string> CardRecord::entries() const {
  std::vector<std::string> entries;
  for (const auto* box : boxes_) entries.push_back(box->text());
  for (const auto* option : options_) entries.emplace_back(option->value() ? "1" : "");
  return entries;
}

void CardRecord::take_as_opened() {
  draft_as_opened_ = card_.draft;
  entries_as_opened_ = entries();
}

bool CardRecord::modified() const {
  return entries() != entries_as_opened_ || !same_record(card_.draft.record(), draft_as_opened_.record());
}

}  // namespace velanor::commands
