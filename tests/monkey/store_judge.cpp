#include "monkey/store_judge.h"

#include <algorithm>

#include "card/record/card_dates.h"
#include "card/record/element.h"
#include "velanor/date.h"

namespace velanor::test {
namespace {

using store::DbRecord;

// Figures and dates are whole numbers, whatever the screen showed of them.
bool is_figure(const card::Field& field) {
  return decimals(field) > 0 || field.encoding == card::Encoding::kDate;
}

constexpr entry::Date kToday{1, 1, 2027};

bool all_digits(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool whole(std::string_view text) {
  return text.empty() || all_digits(text.front() == '-' ? text.substr(1) : text);
}

template <typename Visit>
void each_figure(const DbRecord& card, const Visit& visit) {
  for (const card::Field& field : card::kAttributes) {
    if (!is_figure(field)) continue;
    for (int v = 1; v <= card.Count(field.number); ++v) {
      for (int s = 1; s <= card.Count(field.number, v); ++s)
        visit(field.number, std::string(element(card, field, v, s)));
    }
  }
}

// The boxes that show one attribute each.
std::map<int, std::string> boxes(const card::CardScreen& ui) {
  return {{card::kEstablishmentHours.number, ui.Txt_HorMensEtab.text()},
          {card::kAgreement.number, ui.Txt_ConvCol.text()},
          {card::kSector.number, ui.Txt_Secteur.text()},
          {card::kTown.number, ui.Cbo_Com.text()},
          {card::kContractStart.number, ui.Txt_DatDeb.text()},
          {card::kBirth.number, ui.Txt_DatNais.text()},
          {card::kProfile1.number, ui.Txt_Profil1.text()},
          {card::kProfile2.number, ui.Txt_Profil2.text()},
          {card::kExemptedHours.number, ui.Txt_HresExo.text()},
          {card::kCeiling.number, ui.Txt_PlafSecu.text()},
          {card::kSocialBase.number, ui.Txt_AssSS.text()},
          {card::kContractEnd.number, ui.Txt_DatFin.text()},
          {card::kMutualEmployee.number, ui.Txt_MutSalContrat.text()},
          {card::kMutualEmployer.number, ui.Txt_MutPatContrat.text()},
          {card::kMutualCharge.number, ui.Txt_ChargMutContrat.text()},
          {card::kContractNature.number, ui.Cbo_NatureContrat.text()},
          {card::kEducation.number, ui.Cbo_EtudeAidant.text()}};
}

}  // namespace

StoreJudge::StoreJudge(store::MemoryDatabase& base) : check_(base, [] { return kToday; }) {
  base.for_each("VELANORO", [&](std::string_view, const DbRecord& card) {
    each_figure(card, [&](int attribute, const std::string& text) {
      if (!whole(text)) unreadable_.emplace(attribute, text);
    });
  });
}

void StoreJudge::before(Office& office, const std::string& control, const LineWatch& lines) {
  const bool new_card = office.ui.Txt_Etat.text() == "Création";
  writing_ = control == "Cmd_Copier" ? Writing::kCopy
             : control != "Cmd_OK"   ? Writing::kNothing
             : new_card              ? Writing::kNewCard
                                     : Writing::kCard;
  office_ = &office;
  grids_ = lines.kept_grids();
}

void StoreJudge::after(Office& office, const Act& act) {
  const std::string name = card_name(office);
  if (name == card_) return;
  card_ = name;
  excused_ = false;
  if (name.empty()) return;
  const card::CardScreen& ui = office.ui;
  read_ = office.component.card_in_hand();
  const std::string id = card::record_id(ui.Txt_Aidant.text(), ui.Txt_Asso.text(), ui.Cbo_Periode.text());
  faultless_ = faults_of(id, read_).empty();
  // A code that is completed by leaving its box opens the card on the way to something else, which may
  // have changed it by now.
  const bool chosen = act.control == "Txt_Aidant" || act.control == "Cbo_Aidant" || act.control == "open";
  shown_ = chosen ? boxes(ui) : std::map<int, std::string>();
}

std::string StoreJudge::bad_figure(const DbRecord& card) const {
  std::string bad;
  each_figure(card, [&](int attribute, const std::string& text) {
    if (!whole(text) && !unreadable_.contains({attribute, text}))
      bad = "attribute " + std::to_string(attribute) + " is stored as <" + text + ">";
  });
  return bad;
}

std::vector<std::string> StoreJudge::faults_of(std::string_view id, const DbRecord& card) const {
  std::vector<std::string> sentences;
  const auto of_dates = card::faults_of_dates(card, *entry::day_number(kToday));
  for (const card::Fault& fault : check_.faults_of(id, card)) {
    const auto same = [&](const card::Fault& other) { return other.kind() == fault.kind(); };
    // The hours of the items have no box that would bound them.
    const bool hours = fault.kind().starts_with("Une durée mensuelle dépasse");
    if (!hours && std::none_of(of_dates.begin(), of_dates.end(), same)) sentences.push_back(fault.sentence());
  }
  return sentences;
}

std::string StoreJudge::new_fault(std::string_view id, const DbRecord& card) const {
  if (excused_ || (writing_ != Writing::kNewCard && !faultless_)) return {};
  // Leaving the code box of an employee for the duplicate button opens the card first.
  if (const std::string now = card_name(*office_); !now.empty() && now != card_) return {};
  const auto faults = faults_of(id, card);
  return faults.empty() ? "" : "stored with a fault it did not have: " + faults.front();
}

// What is shown is stored. What still shows what it showed is stored as it was; a grid that nobody chose
// anew as well.
std::string StoreJudge::lost_field(const DbRecord& card) const {
  if (writing_ != Writing::kCard) return {};
  const auto shows = boxes(office_->ui);
  for (const auto& [attribute, text] : shows) {
    if (!text.empty() && card(attribute).empty())
      return "attribute " + std::to_string(attribute) + " is shown as <" + text + "> and stored as nothing";
  }
  for (const auto& [attribute, text] : shown_) {
    if (shows.at(attribute) == text && card(attribute) != read_(attribute))
      return "attribute " + std::to_string(attribute) + " was <" + std::string(read_(attribute)) +
             "> and shown as <" + text + "> to the end, but stored as <" + std::string(card(attribute)) + ">";
  }
  for (std::size_t i = 0; i < grids_.size(); ++i) {
    const std::string_view stored = element(card, card::kGrid, static_cast<int>(i) + 1);
    if (!grids_[i].empty() && stored != grids_[i])
      return "amendment " + std::to_string(i + 1) + " was on grid " + grids_[i] +
             ", which nobody changed, and is stored on " + std::string(stored);
  }
  return {};
}

void StoreJudge::judge(std::string_view file, std::string_view id, const DbRecord* record) {
  if (file != "VELANORO") return;
  if (id.size() != card::kRecordIdLength || !all_digits(id))
    breach_[0] = "a card goes by the id <" + std::string(id) + ">";
  if (!record) return;
  breach_[1] = bad_figure(*record);
  breach_[2] = new_fault(id, *record);
  breach_[3] = lost_field(*record);
}

}  // namespace velanor::test
