#include "office/card_check.h"

#include <algorithm>
#include <set>

#include "card/record/card_dates.h"
#include "card/record/codec.h"
#include "card/record/named_fields.h"
#include "card/record/record_compare.h"
#include "card/record/record_layout.h"
#include "card/record/rules.h"
#include "text/number.h"
#include "text/utf8.h"
#include "velanor/date.h"

namespace velanor::office {

using store::DbRecord;
namespace {

std::int64_t number_or_0(std::string_view text) { return text::whole_number(text).value_or(0); }

// Lists whose lines go by the values of another attribute: a value behind its end is on no line.
struct Line {
  int list, attribute;
};
constexpr Line kLines[] = {
    {card::kActivity, card::kShare},          {card::kEffective, card::kGridStart},
    {card::kEffective, card::kQualification}, {card::kEffective, card::kGrid},
    {card::kEffective, card::kCategory},      {card::kEffective, card::kHourlyRate},
    {card::kEffective, card::kMonthlyTime},   {card::kEffective, card::kNewMeasure},
    {card::kEffective, card::kItemCode},      {card::kEffective, card::kItemBase},
    {card::kEffective, card::kItemRate},      {card::kEffective, card::kItemAmount},
};

template <typename Visit>
void each_element(const DbRecord& card, int attribute, const Visit& visit) {
  for (int v = 1; v <= card.Count(attribute); ++v) {
    for (int s = 1; s <= card.Count(attribute, v); ++s) {
      if (!card(attribute, v, s).empty()) visit(card(attribute, v, s));
    }
  }
}

class Examination {
 public:
  Examination(const card::References& references, const card::Codec& codec, int today, std::string_view id,
              const DbRecord& card)
      : references_(references), codec_(codec), today_(today), id_(id), card_(card) {}

  std::vector<card::Fault> faults() {
    check_id();
    for (card::Fault& found : card::faults_of(card_, codec_, references_.reference_day()))
      faults_.push_back(std::move(found));
    check_order();
    for (card::Fault& found : card::faults_of_dates(card_, today_)) faults_.push_back(std::move(found));
    check_fields();
    check_lines();
    return std::move(faults_);
  }

 private:
  void fault(std::string pattern, std::string_view value = {}) {
    faults_.emplace_back(std::move(pattern), std::string(value));
  }

  void check_id();
  void check_order();
  void check_fields();
  void check_lines();

  const card::References& references_;
  const card::Codec& codec_;
  int today_;
  std::string_view id_;
  const DbRecord& card_;
  std::vector<card::Fault> faults_;
};

void Examination::check_id() {
  constexpr int kLength = card::kEmployeeCodeLength + card::kEntityCodeLength + 4;
  const bool digits = std::all_of(id_.begin(), id_.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (!digits || text::length(id_) != kLength)
    return fault("L'identifiant n'est pas un code de salarié, un code d'entité et une année.");
  const auto entity = id_.substr(card::kEmployeeCodeLength, card::kEntityCodeLength);
  if (!references_.has("ASSOCIATION", entity)) faults_.push_back(card::unknown_entity(entity));
  const auto establishment = card_(card::kEstablishment);
  if (!establishment.empty() && !establishment.starts_with(entity))
    fault("L'établissement « … » n'est pas de l'entité de la fiche.", establishment);
}

void Examination::check_order() {
  const int amendments = card::lines_of(card_, card::kEffective);
  for (int i = 2; i <= amendments; ++i) {
    if (number_or_0(card_(card::kEffective, i - 1)) >= number_or_0(card_(card::kEffective, i)))
      return fault("Les dates d'effet des avenants ne se suivent pas.");
  }
}

// A text that is met again in the same field is told once.
void Examination::check_fields() {
  for (const card::Field& field : card::card_fields()) {
    std::set<std::string_view> told;
    each_element(card_, field.number, [&](std::string_view text) {
      if (!told.insert(text).second) return;
      if (auto found = card::fault_of(field, text)) {
        faults_.push_back(std::move(*found));
      } else if (!field.list.empty() && !references_.has(field.list, text)) {
        faults_.push_back(card::unknown_code(field, text));
      }
    });
  }
}

// A line that is cut off is said once, however many columns it has.
void Examination::check_lines() {
  std::set<int> told;
  for (const Line& line : kLines) {
    const int lines = card::lines_of(card_, line.list);
    const int most = std::max(card_.Count(line.attribute), card_.Count(line.list));
    if (most <= lines || !told.insert(line.list).second) continue;
    fault(line.list == card::kActivity
              ? "Des lignes d'activité suivent une activité vide : l'écran ne les montre pas."
              : "Des lignes d'avenant suivent une date d'effet vide : l'écran ne les montre pas.");
  }
}

}  // namespace

CardCheck::CardCheck(store::Database& database, const entry::Clock& clock)
    : references_(database), entry_(entry::make_util_saisie(clock)), today_(*entry::day_number(clock())) {}

std::vector<card::Fault> CardCheck::faults_of(std::string_view id, const DbRecord& card) const {
  return Examination(references_, card::Codec(*entry_), today_, id, card).faults();
}

}  // namespace velanor::office
