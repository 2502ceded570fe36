#include "exchange/card_import.h"

#include <algorithm>

#include "card/record/card_dates.h"
#include "card/record/cut_lines.h"
#include "card/record/known_files.h"
#include "card/record/saving.h"
#include "text/number.h"
#include "text/utf8.h"

namespace velanor::exchange {
namespace {

using store::DbRecord;

std::string not_an_id(std::string_view text) {
  return "« " + std::string(text) +
         " » n'est pas un code de salarié (5 chiffres), d'entité (3) et une année (4)";
}

// Every element at or below a position.
template <typename Visit>
void each_position(const DbRecord& card, const store::Position& at, const Visit& visit) {
  const int values = at.value == 0 ? card.Count(at.attribute) : at.value;
  for (int v = std::max(at.value, 1); v <= values; ++v) {
    const int subvalues = at.subvalue == 0 ? card.Count(at.attribute, v) : at.subvalue;
    for (int s = std::max(at.subvalue, 1); s <= subvalues; ++s) visit(store::Position{at.attribute, v, s});
  }
}

}  // namespace

std::string card_id(const CardIdParts& parts, std::string& wrong) {
  const auto employee = text::pad_left(parts.employee, card::kEmployeeCodeLength, '0');
  const auto entity = text::pad_left(parts.entity, card::kEntityCodeLength, '0');
  if (parts.employee.empty()) {
    wrong = "le code du salarié est vide";
  } else if (parts.entity.empty()) {
    wrong = "le code de l'entité est vide";
  } else if (parts.year.empty()) {
    wrong = "l'année est vide";
  } else if (!text::is_digits(employee) || employee.size() != card::kEmployeeCodeLength) {
    wrong = "« " + std::string(parts.employee) + " » n'est pas un code de salarié (5 chiffres)";
  } else if (!text::is_digits(entity) || entity.size() != card::kEntityCodeLength) {
    wrong = "« " + std::string(parts.entity) + " » n'est pas un code d'entité (3 chiffres)";
  } else if (!text::is_digits(parts.year) || parts.year.size() != card::kYearLength) {
    wrong = "« " + std::string(parts.year) + " » n'est pas une année (4 chiffres)";
  } else {
    return card::record_id(employee, entity, parts.year);
  }
  return {};
}

std::string card_id(std::string_view whole, std::string& wrong) {
  const auto id = card::completed_id(kCardFile, text::trim(whole));
  if (id && text::is_digits(*id) && card::is_record_id(*id)) return *id;
  wrong = not_an_id(whole);
  return {};
}

JudgedTexts texts_of(const card::Field& field) {
  return JudgedTexts(card::decimals(field) > 0 ? JudgedTexts::Kind::kFigures : JudgedTexts::Kind::kAny);
}

CardImport::CardImport(store::Database& database, const std::vector<Column>& columns,
                       const entry::Clock& clock)
    : references_(database), columns_(columns), today_(*entry::day_number(clock())) {
  for (const Column& column : columns_) {
    const int attribute = column.position.attribute;
    const bool is_id = column.id != IdPart::kNone;
    const card::Field* field = is_id ? nullptr : card::card_field(attribute);
    if (!is_id) attributes_.insert(attribute);
    known_of_column_.push_back(
        field == nullptr ? nullptr
                         : &known_.try_emplace(attribute, Known{field, texts_of(*field)}).first->second);
  }
}

CardImport::Findings CardImport::finish(std::string_view id, const DbRecord* before,
                                        const std::vector<std::size_t>& filled, DbRecord& card) {
  Findings findings;
  if (const auto entity = card::entity_of(id); before == nullptr && !references_.has("ASSOCIATION", entity))
    findings.unknown_codes.push_back(card::unknown_entity(entity));
  if (has_column(card::kName)) {
    const std::string name = text::upper(element(card, card::kName));
    if (name != element(card, card::kName)) set_element(card, card::kName, name);
  }
  for (const std::size_t column : filled) {
    Known* known = known_of_column_[column];
    const store::Position& at = columns_[column].position;
    if (known == nullptr || known->good.has(element(card, at))) continue;
    each_position(card, at, [&](const store::Position& position) {
      finish_element(*known, position, id, before, card, findings);
    });
  }
  const auto dates = [](const DbRecord& record) {
    return std::pair(element(record, card::kBirth), element(record, card::kContractStart));
  };
  if (before == nullptr || dates(*before) != dates(card)) {
    for (const card::Fault& fault : card::faults_of_dates(card, today_)) findings.faults.push_back(fault);
  }
  // Another table may bring what is missing; until then the screen would not show them.
  if (findings.faults.empty() && findings.unknown_codes.empty())
    findings.remarks = card::faults_of_cut_lines(card);
  follow_saving(before, card);
  return findings;
}

// What was stored stays, whatever the reference files hold today.
void CardImport::finish_element(Known& known, const store::Position& position, std::string_view id,
                                const DbRecord* before, DbRecord& card, Findings& findings) const {
  const card::Field& field = *known.field;
  const std::string given(element(card, position));
  const auto stood = [&](std::string_view text) {
    return before != nullptr && element(*before, position) == text;
  };
  if (given.empty() || stood(given)) return;
  if (field.list.empty()) {
    if (auto fault = card::fault_of(field, given))
      findings.faults.push_back(std::move(*fault));
    else
      known.good.add(given);
    return;
  }
  const std::string code = references_.completed(field.list, given, card::entity_of(id));
  if (code != given) set_element(card, position, code);
  if (stood(code)) return;
  if (auto fault = card::fault_of(field, code)) {
    findings.faults.push_back(std::move(*fault));
  } else if (!references_.has(field.list, code)) {
    findings.unknown_codes.push_back(card::unknown_code(field, code));
  } else if (!references_.fits(field.list, code)) {
    findings.faults.push_back(card::unfit_code(field, code));
  } else if (code == given) {
    known.good.add(code);
  }
}

bool CardImport::has_column(const card::Field& field) const { return attributes_.contains(field.number); }

// A column of the table has the last word.
void CardImport::follow_saving(const DbRecord* before, DbRecord& card) const {
  if (before == nullptr && !has_column(card::kStatus)) set_element(card, card::kStatus, "0");
  if (before == nullptr || !card::results_are_stale(card, before)) return;
  for (const card::Field& result : card::kResults) {
    if (!has_column(result)) set_element(card, result, "");
  }
}

}  // namespace velanor::exchange
