// What the fields of a card are called, and what each may hold by itself. How long a text may be is
// what its box on the screen takes.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "card/record/fault.h"
#include "card/record/record_layout.h"
#include "card/screen/card_screen.h"
#include "forms/frm_rub_saisie.h"

namespace velanor::card {

// The box that a field is entered in; nothing for what is chosen from a list alone.
struct Box {
  constexpr Box() = default;
  constexpr Box(screen::TextBox card::CardScreen::*box) : of_card(box) {}
  constexpr Box(screen::TextBox forms::ItemScreen::*box) : of_items(box) {}
  // Characters that it takes; 0: no bound.
  int length() const;

  screen::TextBox card::CardScreen::*of_card = nullptr;
  screen::TextBox forms::ItemScreen::*of_items = nullptr;
};

struct CardField {
  int attribute;
  card::Encoding encoding;
  // As the heading of a column, and as the subject of a sentence.
  std::string_view name, noun;
  Box box = {};
  // The list of References that must have the code; "" where any text will do.
  std::string_view list = {};
};

// All that have a name, in the order of the screen.
std::span<const CardField> card_fields();
// nullptr for an attribute without a name.
const CardField* card_field(int attribute);

// The letter of a flag, and the word that the screen has for it.
struct FlagWord {
  int attribute;
  std::string_view letter, word;
};
std::span<const FlagWord> flag_words();

// Decimals of a figure; 0 for what is none.
int decimals(card::Encoding encoding);

// What the screen would not take, or could not show, of a text that a record holds.
std::optional<card::Fault> fault_of(const CardField& field, std::string_view stored);

}  // namespace velanor::card
