#include "office/field_history.h"

#include <optional>

#include "card/record/amendment_columns.h"
#include "card/record/element.h"
#include "card/record/record_compare.h"
#include "exchange/columns.h"
#include "office/versions.h"

namespace velanor::office {
namespace {

using store::DbRecord;

bool is_of_split(int attribute) {
  return attribute == card::kShare.number || attribute == card::kActivity.number;
}

// Nothing where the version has no such line.
std::optional<std::string> value_in(const DbRecord& card, const CardField& field) {
  if (field.line.empty()) return std::string(card(field.attribute));
  const card::Field key =
      is_of_split(field.attribute) ? card::Field(card::kActivity) : card::Field(card::kEffective);
  for (int line = 1; line <= card::lines_of(card, key); ++line) {
    if (element(card, key, line) == field.line) return std::string(card(field.attribute, line));
  }
  return std::nullopt;
}

std::string shown(const CardField& field, std::string_view stored) {
  const auto entry = entry::make_util_saisie();
  const store::Position at =
      field.line.empty() ? store::Position{field.attribute} : store::Position{field.attribute, 1};
  return exchange::write_field(card::Codec(*entry),
                               {.position = at, .named = card::card_field(field.attribute)}, stored);
}

}  // namespace

std::string FieldWas::text() const {
  return "était " + (value.empty() ? "vide" : value) + " jusqu'au " + until + " (" + author + ")";
}

std::vector<FieldWas> field_history(store::Database& database, std::string_view id, const CardField& field) {
  const auto versions = versions_of(database, exchange::kCardFile, id);
  std::vector<FieldWas> past;
  std::optional<std::string> before;
  for (const store::Version& version : versions) {
    const auto value = version.record ? value_in(*version.record, field) : std::nullopt;
    if (!value) continue;
    if (before && *before != *value) {
      const std::string moment = moment_of(version);
      past.insert(past.begin(),
                  {shown(field, *before), moment.substr(0, moment.find(' ')), author_of(version)});
    }
    before = value;
  }
  return past;
}

}  // namespace velanor::office
