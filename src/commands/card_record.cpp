#include "commands/card_record.h"

#include "card/activity_line.h"
#include "card/item_hours.h"
#include "card/record_compare.h"
#include "card/record_layout.h"
#include "screen/scope.h"
#include "text/utf8.h"

namespace velanor::commands {

using namespace card;  // the named attributes of the layout

template <auto A>
CardRecord::Field CardRecord::field(screen::TextControl& box) {
  return {A.number, &box, [](const Codec& codec, std::string_view stored) { return codec.shown(A, stored); },
          [](const Codec& codec, std::string_view shown) { return codec.stored(A, shown); }};
}

CardRecord::CardRecord(const Ground& on)
    : ui_(on.ui),
      card_(on.card),
      procedure_(on.procedure),
      codec_(on.entry),
      entry_(on.entry),
      lists_(on.lists),
      grids_(on.grids),
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
              field<kMutualCharge>(ui_.Txt_ChargMutContrat)} {}

void CardRecord::show(int attribute, screen::TextControl& box, const std::string& text) {
  box.show_whole(text);
  card_.kept[attribute] = {box.text(), std::string(card_.working(attribute))};
}

std::string CardRecord::kept_or(int attribute, const screen::TextControl& box, std::string otherwise) const {
  const auto kept = card_.kept.find(attribute);
  return kept != card_.kept.end() && kept->second.shown == box.text() ? kept->second.stored
                                                                      : std::move(otherwise);
}

// ---- From the record to the screen.

void CardRecord::ChargerAidant() {
  const store::DbRecord& record = card_.working;
  const screen::Scope loading(card_.loading);
  card_.kept.clear();
  ui_.Txt_NomAidant.show_whole(record(kName));
  load_options();
  for (const Field& field : fields_)
    show(field.attribute, *field.box, field.shown(codec_, record(field.attribute)));
  load_activities();
  load_amendments();
  load_end_reason();
  ui_.Cmd_Detail.set_enabled(true);
  load_establishment();
  for (auto [attribute, box] : {std::pair{kMutualEmployee, &ui_.Txt_MutSalContrat},
                                std::pair{kMutualEmployer, &ui_.Txt_MutPatContrat}})
    show(attribute, *box, entry_.FormatAmount(codec_.shown(attribute, record(attribute)), 2, 4));
  load_charge();
  load_table_entry(kContractNature, ui_.Cbo_NatureContrat, procedure_.variable().naturecontrat);
  const bool dated = ui_.Txt_DateBranche.visible();
  show(kBranchEntry, ui_.Txt_DateBranche,
       dated ? codec_.shown(kBranchEntry, record(kBranchEntry)) : std::string());
  load_table_entry(kEducation, ui_.Cbo_EtudeAidant, procedure_.variable().diplomes);
}

// A card without one keeps the only one that its entity has.
void CardRecord::load_establishment() {
  const std::string_view code =
      text::mid(card_.working(kEstablishment), kEntityCodeLength + 1, kEstablishmentCodeLength);
  ui_.Txt_CodEtab.set_text(text::trim(code).empty() ? std::string_view(card_.only_establishment) : code);
}

void CardRecord::load_options() {
  const bool fixed_term = card_.working(kContractType) == "D";
  ui_.Opt_CDD.set_value(fixed_term);
  ui_.Opt_CDI.set_value(!fixed_term);
  const bool production = card_.working(kStaffKind) == "P";
  ui_.Opt_Prod.set_value(production);
  ui_.Opt_Admin.set_value(!production);
}

void CardRecord::load_activities() {
  const store::DbRecord& record = card_.working;
  card_.activities.clear();
  for (int k = 1; !record(kActivity, k).empty(); ++k) {
    const std::string code(record(kActivity, k));
    const auto activity = procedure_.file(control::File::kActivities).find(code);
    const std::string label = activity && !(*activity)(1).empty() ? std::string((*activity)(1)) : code;
    const std::string line = activity_line(label, codec_.shown(kShare, record(kShare, k)));
    ui_.Lst_Activites.add(line);
    card_.activities.push_back(
        {{label, code}, {std::string(activity_share(line)), std::string(record(kShare, k))}});
  }
}

void CardRecord::load_amendments() {
  const store::DbRecord& record = card_.working;
  store::DbFile& items = procedure_.file(control::File::kItems);
  card_.amendments.clear();
  for (int i = 1; !record(kEffective, i).empty(); ++i) {
    AmendmentMemory line;
    for (std::size_t c = 0; c < line.size(); ++c) {
      const std::string_view stored = record(kAmendmentColumns[c].attribute, i);
      line[c] = {kAmendmentColumns[c].shown(codec_, stored), std::string(stored)};
    }
    line[kGridColumn].shown = grids_.label_of(line[kGridColumn].stored);
    if (!ui_.Opt_Admin.value()) {
      const std::string hours = item_hours(record, i, items);
      line[kMonthlyColumn] = {hours, codec_.stored(kMonthlyTime, hours)};
    }
    amendments_.append(line);
  }
  amendments_.size_scroll_bar();
}

void CardRecord::load_end_reason() {
  const store::DbRecord& table = procedure_.variable().fincontrat;
  const int reason = reference::find_value(table, reference::kTableCodes, card_.working(kEndReason));
  const bool listed = reason > 0 && !card_.working(kEndReason).empty();
  show(kEndReason, ui_.Cbo_MotifFin,
       listed ? std::string(table(reference::kTableLabels, reason)) : std::string());
  ui_.Cbo_MotifFin.set_enabled(!ui_.Txt_DatFin.is_empty());
}

// An entry that is not offered any more is shown by its label, a code that has left the table by
// itself, both without being selected.
void CardRecord::load_table_entry(int attribute, screen::ComboBox& box, const store::DbRecord& table) {
  const std::string code(card_.working(attribute));
  const int value = code.empty() ? 0 : reference::find_value(table, reference::kTableCodes, code);
  const std::string entry = value > 0 ? std::string(text::trim(reference::table_entry(table, value))) : code;
  const int index = code.empty() ? -1 : box.find(entry);
  box.set_index(index);
  show(attribute, box, entry);
}

void CardRecord::load_charge() {
  const int entry = reference::find_entry(lists_.kept().charges, 1, card_.working(kMutualCharge));
  if (entry > 0 && !card_.working(kMutualCharge).empty()) ui_.Cbo_ChargMutContrat.set_index(entry - 1);
}

// ---- From the screen to the record.

void CardRecord::ChargerDonnees() {
  store::DbRecord& record = card_.working;
  record.set(kName, text::upper(ui_.Txt_NomAidant.text()));
  for (const Field& field : fields_)
    record.set(field.attribute,
               kept_or(field.attribute, *field.box, field.stored(codec_, field.box->text())));
  record.set(kContractType, ui_.Opt_CDD.value() ? "D" : "I");
  record.set(kStaffKind, ui_.Opt_Prod.value() ? "P" : "A");
  save_activities();
  save_amendments();
  save_end_reason();
  for (auto [attribute, box] : {std::pair{kMutualEmployee, &ui_.Txt_MutSalContrat},
                                std::pair{kMutualEmployer, &ui_.Txt_MutPatContrat}})
    record.set(attribute, kept_or(attribute, *box, codec_.stored(attribute, box->text())));
  for (auto [attribute, box] :
       {std::pair{kContractNature, &ui_.Cbo_NatureContrat}, std::pair{kEducation, &ui_.Cbo_EtudeAidant}})
    record.set(attribute, kept_or(attribute, *box, box->text().substr(0, box->text().find(' '))));
  record.set(kBranchEntry, kept_or(kBranchEntry, ui_.Txt_DateBranche,
                                   codec_.stored(kBranchEntry, ui_.Txt_DateBranche.text())));
  save_results();
  record.set(kEstablishment, ui_.Txt_Asso.text() + ui_.Txt_CodEtab.text());
}

void CardRecord::save_activities() {
  store::DbRecord& record = card_.working;
  record.set(kActivity, {});
  record.set(kShare, {});
  for (int k = 0; k < ui_.Lst_Activites.count(); ++k) {
    const ActivityMemory& memory = card_.activities[static_cast<std::size_t>(k)];
    const std::string_view share = activity_share(ui_.Lst_Activites.line(k));
    record.set(kActivity, k + 1, memory.activity.stored);
    record.set(kShare, k + 1,
               memory.share.shown == share ? memory.share.stored : codec_.stored(kShare, share));
  }
}

void CardRecord::save_amendments() {
  store::DbRecord& record = card_.working;
  const auto lists = ui_.amendment_lists();
  for (const AmendmentColumn& column : kAmendmentColumns) record.set(column.attribute, {});
  for (int i = 0; i < ui_.Lst_DatEffet.count(); ++i) {
    const AmendmentMemory& memory = card_.amendments[static_cast<std::size_t>(i)];
    for (std::size_t c = 0; c < lists.size(); ++c) {
      if (c == kMonthlyColumn && !ui_.Opt_Admin.value()) continue;  // production staff: from the items
      const std::string_view shown = lists[c]->line(i);
      const bool flag = kAmendmentColumns[c].attribute == kNewMeasure;
      const bool untouched = memory[c].shown == shown && !flag;
      record.set(kAmendmentColumns[c].attribute, i + 1,
                 untouched ? memory[c].stored : kAmendmentColumns[c].stored(codec_, shown));
    }
  }
}

void CardRecord::save_end_reason() {
  std::string code;
  if (!ui_.Txt_DatFin.is_empty()) {
    const std::string& label = ui_.Cbo_MotifFin.text();
    code = kept_or(kEndReason, ui_.Cbo_MotifFin,
                   reference::offered_reason(procedure_.variable().fincontrat, label));
  }
  card_.working.set(kEndReason, code);
}

// The budget is computed anew when anything that it is made of has changed.
void CardRecord::save_results() {
  store::DbRecord& record = card_.working;
  bool stale = card_.Creation;
  if (card_.Creation) record.set(kStatus, "0");
  for (int attribute = 1; attribute <= kLastComparedAttribute && !stale; ++attribute)
    stale = affects_calculation(attribute) && card_.file && !same_attribute(record, *card_.file, attribute);
  if (!stale) return;
  for (int attribute : kResults) record.set(attribute, {});
}

}  // namespace velanor::commands
