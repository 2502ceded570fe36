#include "card/record/named_fields.h"

#include <algorithm>

#include "entry/decimal.h"
#include "text/number.h"
#include "text/utf8.h"
#include "velanor/date.h"

namespace velanor::card {
namespace {

// Those without a name stand at the end.
constexpr std::span kNamed(std::begin(kAttributes),
                           std::find_if(std::begin(kAttributes), std::end(kAttributes),
                                        [](const Field& field) { return field.name.empty(); }));

constexpr FlagWord kFlagWords[] = {
    {kContractType, kFixedTerm, "CDD"},
    {kContractType, kPermanent, "CDI"},
    {kStaffKind, kProduction, "PRODUCTION"},
    {kStaffKind, kAdministrative, "ADMINISTRATION"},
    {kNewMeasure, kYes, "OUI"},
    {kNewMeasure, kNo, "NON"},
};

Fault fault(const Field& field, const std::string& is_wrong, std::string_view value) {
  return about(field, Fault(std::string(field.noun) + " " + is_wrong + " : « … ».", std::string(value)));
}

std::optional<Fault> fault_of_length(const Field& field, std::string_view shown) {
  if (field.length == 0 || text::length(shown) <= field.length) return std::nullopt;
  return fault(field, "dépasse les " + std::to_string(field.length) + " caractères de sa case", shown);
}

std::optional<Fault> fault_of_flag(const Field& field, std::string_view stored) {
  const bool known = std::any_of(std::begin(kFlagWords), std::end(kFlagWords), [&](const FlagWord& flag) {
    return flag.field == field && flag.letter == stored;
  });
  return known ? std::nullopt : std::optional(fault(field, "est illisible", stored));
}

std::optional<Fault> fault_of_date(const Field& field, std::string_view stored) {
  if (entry::stored_day(stored)) return std::nullopt;
  return fault(field, "est illisible", stored);
}

std::optional<Fault> fault_of_figure(const Field& field, std::string_view stored) {
  const auto figure = text::whole_number(stored);
  if (!figure) return fault(field, "est illisible", stored);
  const int scale = decimals(field);
  const std::string shown = entry::format_decimal(*figure, scale, scale);
  if (*figure < 0) return fault(field, "est au-dessous de zéro", shown);
  return fault_of_length(field, shown);
}

}  // namespace

std::span<const Field> card_fields() { return kNamed; }

const Field* card_field(int attribute) {
  const auto found = std::find_if(kNamed.begin(), kNamed.end(),
                                  [=](const Field& field) { return field.number == attribute; });
  return found == kNamed.end() ? nullptr : &*found;
}

std::span<const FlagWord> flag_words() { return kFlagWords; }

std::optional<Fault> fault_of(const Field& field, std::string_view stored) {
  if (stored.empty()) return std::nullopt;
  if (field.encoding == Encoding::kFlag) return fault_of_flag(field, stored);
  if (field.encoding == Encoding::kDate) return fault_of_date(field, stored);
  if (decimals(field) > 0) return fault_of_figure(field, stored);
  // The screen shows the establishment without its entity.
  const bool establishment = field == kEstablishment;
  return fault_of_length(field, establishment ? own_code_of(stored) : stored);
}

}  // namespace velanor::card
