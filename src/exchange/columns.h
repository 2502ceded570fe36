// What the columns of a table stand for: the id, an element of the record by its position, or by
// the name that a clerk gives it, whose fields are then read and written as the screen shows them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "card/record/codec.h"
#include "card/record/named_fields.h"
#include "store/position.h"
#include "velanor/record.h"

namespace velanor::exchange {

inline constexpr std::string_view kCardFile = "VELANORO";

enum class IdPart { kNone, kWhole, kEmployee, kEntity, kYear };

// Between the values of an attribute in one field.
inline constexpr char kValueSeparator = '|';

struct Column {
  IdPart id = IdPart::kNone;
  store::Position position{};
  // nullptr: fields are stored texts as they stand.
  const card::Field* named = nullptr;

  // A field holds all values of the attribute, between bars.
  bool holds_values() const { return id == IdPart::kNone && named == nullptr && position.value == 0; }
};

// The column of a heading: "id", a position such as "1" or "30,1,2" (what follows a blank behind it
// is a remark), or a name. In VELANORO that is one of its fields, followed for what a card has several
// of by the number of the value, and of the subvalue: "Date d'effet 2", "Montant 2.1"; elsewhere what
// the file of the demonstration calls it. Nothing for any other text.
std::optional<Column> column_of(std::string_view heading, std::string_view file);
// The heading of a position, with what stands there as its remark, or its name in VELANORO where it
// has one; both read back by column_of.
std::string heading_of(const store::Position& position, std::string_view file);
std::string name_of(const store::Position& position, std::string_view file);

// What is stored for a field, in `stored`; otherwise returns what is wrong with it.
std::string read_field(const card::Codec& codec, const Column& column, std::string_view field,
                       std::string& stored);
// The field for what is stored.
std::string write_field(const card::Codec& codec, const Column& column, std::string_view stored);

// Writes the values of a field, which stand between bars, from value `first` of the attribute on.
void set_values(store::DbRecord& record, int attribute, int first, std::string_view field);

}  // namespace velanor::exchange
