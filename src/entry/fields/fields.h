// The free-entry boxes: what may be typed, and what leaving one makes of its text. A text without
// a digit is no entry: leaving a number box empties it of that. A stored value that is no number, or
// longer than its box, is let be as long as the user has not touched it.
#pragma once

#include <functional>

#include "velanor/screen.h"
#include "velanor/util_saisie.h"

namespace velanor::entry {

// What leaving a date box found.
enum class DateOutcome { kEmpty, kRefused, kInvalid, kPassed };

// Whether a refusal puts the caret back into the box.
enum class Caret { kBack, kLeft };

// A box for dates. `left` runs after the checks, whatever they found.
struct DateField {
  screen::TextBox& box;
  // Characters that the check's second value may have; 0: it is not looked at.
  int second_length = 0;
  std::function<void(DateOutcome)> left = {};
};

// A box for a decimal number, shown with a fixed number of decimals. What does not fit the box
// is refused and emptied.
struct DecimalField {
  screen::TextBox& box;
  int decimals = 2;
  Caret caret = Caret::kBack;
};

// The same with an upper bound of its own, in hundredths: what is above it or no number is
// refused and emptied.
struct BoundedField {
  screen::TextBox& box;
  int upper_bound;
};

// A box for an amount, filtered and formatted by the entry utility. Never speaks.
struct AmountField {
  screen::TextBox& box;
  int decimals;
  int integer_digits;
};

// Binds boxes to their kind. Keeps the references; their owners outlive the boxes.
class Fields {
 public:
  Fields(UtilSaisie& entry, screen::Screen& screen) : entry_(entry), screen_(screen) {}

  void bind(const DateField& field);
  void bind(const DecimalField& field);
  void bind(const BoundedField& field);
  void bind(const AmountField& field);
  static void bind_letters(screen::TextBox& box);
  // Empties a number box of what is no entry. Whether there is something to judge.
  static bool holds_entry(screen::TextBox& box);

 private:
  void bind_decimal_keys(screen::TextBox& box, int decimals);
  DateOutcome leave_date(const DateField& field);
  void leave_decimal(const DecimalField& field);
  void leave_bounded(const BoundedField& field);
  void refuse_number(screen::TextBox& box, Caret caret);

  UtilSaisie& entry_;
  screen::Screen& screen_;
};

}  // namespace velanor::entry
