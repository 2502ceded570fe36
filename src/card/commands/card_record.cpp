#include "card/commands/card_record.h"

#include <algorithm>

#include "card/record/activity_line.h"
#include "card/record/element.h"
#include "card/record/record_compare.h"
#include "card/record/saving.h"
#include "screen/scope.h"
#include "text/utf8.h"

namespace velanor::commands {

using namespace card;  // the named attributes of the layout

CardRecord::CardRecord(const Ground& on)
    : ui_(on.ui),
      card_(on.card),
      entry_(on.entry),
      lists_(on.lists),
      amendments_(on.amendments),
      fields_{{&ui_.Txt_NomAidant, kName},     {&ui_.Txt_HorMensEtab, kEstablishmentHours},
              {&ui_.Txt_ConvCol, kAgreement},  {&ui_.Txt_Secteur, kSector},
              {&ui_.Cbo_Com, kTown},           {&ui_.Txt_DatDeb, kContractStart},
              {&ui_.Txt_DatNais, kBirth},      {&ui_.Txt_Profil1, kProfile1},
              {&ui_.Txt_Profil2, kProfile2},   {&ui_.Txt_HresExo, kExemptedHours},
              {&ui_.Txt_PlafSecu, kCeiling},   {&ui_.Txt_AssSS, kSocialBase},
              {&ui_.Txt_DatFin, kContractEnd}, {&ui_.Txt_ChargMutContrat, kMutualCharge}},
      shares_{{&ui_.Txt_MutSalContrat, kMutualEmployee}, {&ui_.Txt_MutPatContrat, kMutualEmployer}},
      opened_{card_.draft, {}} {
  for (const Group group : {Group::kNameBox, Group::kEstablishmentBoxes, Group::kContractKey,
                            Group::kEmployee, Group::kEndReasonBox, Group::kMutual}) {
    for (screen::Control* control : ui_.group(group)) {
      if (auto* box = dynamic_cast<screen::TextControl*>(control)) boxes_.push_back(box);
      if (auto* option = dynamic_cast<screen::OptionButton*>(control)) options_.push_back(option);
    }
  }
}

// ---- From the record to the screen.

void CardRecord::ChargerAidant() {
  const screen::Scope loading(card_.loading);
  load_options();
  for (const auto& [box, field] : fields_) box->show_whole(card_.draft.shown(field));
  show_activities(card_.draft.all_activities());
  load_amendments();
  load_end_reason();
  ui_.Cmd_Detail.set_enabled(true);
  load_establishment();
  for (const auto& [box, share] : shares_) box->show_whole(amount(card_.draft, share));
  load_charge();
  load_entry(ui_.Cbo_NatureContrat, kContractNature);
  if (ui_.Txt_DateBranche.visible()) ui_.Txt_DateBranche.show_whole(card_.draft.shown(kBranchEntry));
  load_entry(ui_.Cbo_EtudeAidant, kEducation);
}

// A card without one keeps the only one that its entity has.
void CardRecord::load_establishment() {
  const std::string_view code =
      text::left(own_code_of(element(card_.draft.record(), kEstablishment)), kOwnCodeLength);
  ui_.Txt_CodEtab.set_text(text::trim(code).empty() ? std::string_view(card_.only_establishment) : code);
}

void CardRecord::load_options() {
  const store::DbRecord& record = card_.draft.record();
  const bool fixed_term = element(record, kContractType) == kFixedTerm;
  ui_.Opt_CDD.set_value(fixed_term);
  ui_.Opt_CDI.set_value(!fixed_term);
  const bool production = element(record, kStaffKind) == kProduction;
  ui_.Opt_Prod.set_value(production);
  ui_.Opt_Admin.set_value(!production);
}

void CardRecord::show_activities(const std::vector<ActivityText>& activities) {
  ui_.Lst_Activites.clear();
  for (const ActivityText& activity : activities)
    ui_.Lst_Activites.add(activity_line(activity.label, activity.share));
}

// The monthly time of production staff is that of their items.
void CardRecord::load_amendments() {
  Draft& card = card_.draft;
  for (int line = 0; !ui_.Opt_Admin.value() && line < card.amendments(); ++line)
    card.put_monthly_time(line, card.item_hours(line));
  amendments_.show_all(card);
}

void CardRecord::load_end_reason() {
  ui_.Cbo_MotifFin.set_text(card_.draft.shown(kEndReason));
  ui_.Cbo_MotifFin.set_enabled(!ui_.Txt_DatFin.is_empty());
}

std::string CardRecord::amount(const Draft& card, const Field& field) const {
  return entry_.FormatAmount(card.shown(field), decimals(field), integer_digits(field));
}

// An entry that is not offered any more is shown by its label, a code that has left the table by
// itself, both without being selected.
void CardRecord::load_entry(screen::ComboBox& box, const Field& field) {
  const std::string entry = card_.draft.shown(field);
  box.set_index(entry.empty() ? -1 : box.find(entry));
  box.show_whole(entry);
}

void CardRecord::load_charge() {
  const std::string_view code = element(card_.draft.record(), kMutualCharge);
  const int entry = reference::find_entry(lists_.kept().charges, 1, code);
  if (entry > 0 && !code.empty()) ui_.Cbo_ChargMutContrat.set_index(entry - 1);
}

screen::TextControl* CardRecord::box_of(const Field& field) const {
  for (const auto* boxes : {&fields_, &shares_}) {
    for (const auto& [box, own] : *boxes) {
      if (own == field) return box;
    }
  }
  return nullptr;
}

// ---- From the screen to the record.

Draft CardRecord::entered() const {
  Draft card = card_.draft;
  for (const auto& [box, field] : fields_) card.put(field, box->text());
  card.put_stored(kContractType, ui_.Opt_CDD.value() ? kFixedTerm : kPermanent);
  card.put_stored(kStaffKind, ui_.Opt_Prod.value() ? kProduction : kAdministrative);
  card.put(kEndReason, ui_.Cbo_MotifFin.text());
  for (const auto& [box, share] : shares_) {
    if (box->text() != amount(card, share)) card.put(share, box->text());
  }
  card.put(kContractNature, ui_.Cbo_NatureContrat.text());
  if (ui_.Txt_DateBranche.visible()) card.put(kBranchEntry, ui_.Txt_DateBranche.text());
  card.put(kEducation, ui_.Cbo_EtudeAidant.text());
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

void CardRecord::take_as_opened() { opened_ = shown(); }

bool CardRecord::is_shown(const Shown& card) const {
  return entries() == card.entries && same_record(card_.draft.record(), card.draft.record());
}

bool CardRecord::reads_otherwise(const screen::Control& box, const Shown& card) const {
  const auto at = std::find(boxes_.begin(), boxes_.end(), &box);
  return at != boxes_.end() && (*at)->text() != card.entries[static_cast<std::size_t>(at - boxes_.begin())];
}

std::string CardRecord::difference_from(const Shown& card) const {
  for (std::size_t i = 0; i < boxes_.size(); ++i) {
    const screen::Label* const label = boxes_[i]->label();
    if (boxes_[i]->text() != card.entries[i] && label)
      return label->caption() + " (" + boxes_[i]->text() + ")";
  }
  return {};
}

// ---- Back to what was shown.

void CardRecord::show(const Shown& card) {
  const screen::Scope loading(card_.loading);
  const std::vector<ActivityText> activities = card.draft.all_activities();
  amendments_.show_all(card.draft);
  card_.draft = card.draft;
  show_activities(activities);
  show_entries(card.entries);
  ui_.Cbo_MotifFin.set_enabled(!ui_.Txt_DatFin.is_empty());
}

// Codes before the labels, which follow them by themselves; a label that says something else says it last.
// What an agreement alone has a place for comes behind the agreement.
void CardRecord::show_entries(const std::vector<std::string>& entries) {
  for (std::size_t i = 0; i < options_.size(); ++i) {
    if (!entries[boxes_.size() + i].empty()) options_[i]->set_value(true);
  }
  for (std::size_t i = 0; i < boxes_.size(); ++i) {
    if (dynamic_cast<screen::TextBox*>(boxes_[i])) boxes_[i]->show_whole(entries[i]);
  }
  for (std::size_t i = 0; i < boxes_.size(); ++i) show_entry(*boxes_[i], entries[i]);
}

// A line that was chosen by itself is chosen again.
void CardRecord::show_entry(screen::TextControl& box, const std::string& text) {
  auto* combo = dynamic_cast<screen::ComboBox*>(&box);
  const bool alone = combo == &ui_.Cbo_NatureContrat || combo == &ui_.Cbo_EtudeAidant;
  if (alone && text != box.text()) combo->set_index(text.empty() ? -1 : combo->find(text));
  box.show_whole(text);
}

}  // namespace velanor::commands
