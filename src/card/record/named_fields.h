// The fields of a card that a clerk knows by name, and what each may hold by itself.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "card/record/fault.h"
#include "card/record/record_layout.h"

namespace velanor::card {

// In the order of the screen.
std::span<const Field> card_fields();
// nullptr for an attribute without a name.
const Field* card_field(int attribute);

// The letter of a flag, and the word that the screen has for it.
struct FlagWord {
  Field field;
  std::string_view letter, word;
};
std::span<const FlagWord> flag_words();

// What the screen would not take, or could not show, of a text that a record holds.
std::optional<Fault> fault_of(const Field& field, std::string_view stored);

}  // namespace velanor::card
