#include "office/card_check.h"

#include <algorithm>
#include <optional>
#include <set>

#include "card/record/amendment_columns.h"
#include "card/record/card_dates.h"
#include "card/record/codec.h"
#include "card/record/cut_lines.h"
#include "card/record/named_fields.h"
#include "card/record/record_compare.h"
#include "card/record/rules.h"
#include "exchange/card_import.h"
#include "exchange/shapes.h"
#include "text/number.h"
#include "velanor/date.h"

namespace velanor::office {

using store::DbRecord;
namespace {

class Examination {
 public:
  using Good = std::vector<exchange::JudgedTexts>;

  Examination(const card::References& references, const card::Codec& codec, int today, Good& good,
              std::string_view id, const DbRecord& card)
      : references_(references), codec_(codec), today_(today), good_(good), id_(id), card_(card) {}

  std::vector<card::Fault> faults() {
    check_id();
    for (card::Fault& found : card::faults_of(card_, codec_, references_.reference_day())) {
      // Where the screen leaves the caret alone: what no box can mend is mended among the amendments.
      faults_.push_back(found.field.number == 0 ? about(card::kEffective, found, found.line) : found);
    }
    check_order();
    for (card::Fault& found : card::faults_of_dates(card_, today_)) faults_.push_back(std::move(found));
    check_fields();
    for (card::Fault& found : card::faults_of_cut_lines(card_)) faults_.push_back(std::move(found));
    return std::move(faults_);
  }

 private:
  void fault(const card::Field& field, std::string pattern, std::string_view value = {}, int line = 0) {
    faults_.push_back(about(field, card::Fault(std::move(pattern), std::string(value)), line));
  }

  void check_id();
  void check_order();
  void check_fields();
  void check_field(const card::Field& field, exchange::JudgedTexts& good, std::string_view texts);
  std::optional<card::Fault> fault_of(const card::Field& field, std::string_view text) const;

  const card::References& references_;
  const card::Codec& codec_;
  int today_;
  Good& good_;
  std::string_view id_;
  const DbRecord& card_;
  std::vector<card::Fault> faults_;
};

void Examination::check_id() {
  if (!text::is_digits(id_) || !card::is_record_id(id_))
    return fault({}, "L'identifiant n'est pas un code de salarié, un code d'entité et une année.");
  const auto entity = card::entity_of(id_);
  if (!references_.has("ASSOCIATION", entity)) faults_.push_back(card::unknown_entity(entity));
  const auto establishment = element(card_, card::kEstablishment);
  if (!establishment.empty() && !establishment.starts_with(entity))
    fault(card::kEstablishment, "L'établissement « … » n'est pas de l'entité de la fiche.", establishment);
}

void Examination::check_order() {
  const int amendments = card::lines_of(card_, card::kEffective);
  for (int i = 2; i <= amendments; ++i) {
    if (day(card_, card::kEffective, i - 1) >= day(card_, card::kEffective, i))
      return fault(card::kEffective, "Les dates d'effet des avenants ne se suivent pas.", {}, i);
  }
}

std::optional<card::Fault> Examination::fault_of(const card::Field& field, std::string_view text) const {
  if (auto found = card::fault_of(field, text)) return found;
  if (!field.list.empty() && !references_.has(field.list, text)) return card::unknown_code(field, text);
  if (!references_.fits(field.list, text)) return card::unfit_code(field, text);
  return std::nullopt;
}

void Examination::check_fields() {
  const auto fields = card::card_fields();
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const std::string_view texts = element(card_, fields[i]);
    if (!texts.empty() && !good_[i].has(texts)) check_field(fields[i], good_[i], texts);
  }
}

// A text that is met again in the same field is told once.
void Examination::check_field(const card::Field& field, exchange::JudgedTexts& good, std::string_view texts) {
  std::set<std::string_view> told;
  exchange::each_part(texts, store::kValueMark, [&](int line, std::string_view value) {
    exchange::each_part(value, store::kSubvalueMark, [&](int, std::string_view text) {
      if (text.empty() || good.has(text)) return;
      auto found = fault_of(field, text);
      if (!found) return good.add(text);
      if (told.insert(text).second) faults_.push_back(about(field, std::move(*found), line));
    });
  });
}

}  // namespace

CardCheck::CardCheck(store::Database& database, const entry::Clock& clock)
    : references_(database), entry_(entry::make_util_saisie(clock)), today_(*entry::day_number(clock())) {
  for (const card::Field& field : card::card_fields()) good_.push_back(exchange::texts_of(field));
}

std::vector<card::Fault> CardCheck::faults_of(std::string_view id, const DbRecord& card) const {
  return Examination(references_, card::Codec(*entry_), today_, good_, id, card).faults();
}

}  // namespace velanor::office
