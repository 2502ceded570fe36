#include "entry/fields/fields.h"

#include "entry/decimal.h"
#include "entry/key_filters.h"
#include "text/utf8.h"

namespace velanor::entry {

void Fields::bind(const DateField& field) {
  field.box.key_press = [](screen::Key& key) { key.code = filter_date_key(key.code); };
  field.box.lost_focus += [this, field] {
    const DateOutcome outcome = leave_date(field);
    if (field.left) field.left(outcome);
  };
}

DateOutcome Fields::leave_date(const DateField& field) {
  screen::TextBox& box = field.box;
  if (box.is_empty()) return DateOutcome::kEmpty;
  if (box.shows_more()) return DateOutcome::kPassed;
  bool refused = false;
  box.set_text(entry_.CompleteDate(box.text(), refused));
  if (entry_.DateRefused(refused)) {
    box.form().set_focus(box);
    return DateOutcome::kRefused;
  }
  const CheckedDate date = entry_.CheckDate(box.text());
  const bool too_long = field.second_length > 0 && text::length(date.second) > field.second_length;
  if (!date.day.empty() && !too_long) return DateOutcome::kPassed;
  screen_.refuse("Erreur de saisie dans la date, veuillez la ressaisir.");
  box.form().set_focus(box);
  return DateOutcome::kInvalid;
}

void Fields::bind_decimal_keys(screen::TextBox& box, int decimals) {
  box.key_press = [&box, decimals](screen::Key& key) {
    if (key.code == screen::Key::kEnter && !box.shows_more())
      box.set_text(format_pattern(box.text(), decimals));
    key.code = filter_decimal_key(box.text(), key.code);
  };
}

void Fields::bind(const DecimalField& field) {
  bind_decimal_keys(field.box, field.decimals);
  field.box.lost_focus += [this, field] { leave_decimal(field); };
}

bool Fields::holds_entry(screen::TextBox& box) {
  const bool number = parse_decimal(box.text(), 0).has_value();
  if (box.shows_more() || (!box.edited() && !number)) return false;
  if (!has_digit(box.text())) box.set_text({});
  return !box.is_empty();
}

void Fields::leave_decimal(const DecimalField& field) {
  screen::TextBox& box = field.box;
  if (!holds_entry(box)) return;
  if (!parse_decimal(box.text(), 0)) return refuse_number(box, field.caret);
  box.set_text(format_pattern(box.text(), field.decimals));
  // A value that the box has cut formats to something else.
  if (format_pattern(box.text(), field.decimals) != box.text()) refuse_number(box, field.caret);
}

void Fields::bind(const BoundedField& field) {
  bind_decimal_keys(field.box, 2);
  field.box.lost_focus += [this, field] { leave_bounded(field); };
}

void Fields::leave_bounded(const BoundedField& field) {
  screen::TextBox& box = field.box;
  if (!holds_entry(box)) return;
  const auto value = parse_decimal(box.text(), 2);
  if (!value || *value > field.upper_bound) return refuse_number(box, Caret::kBack);
  box.set_text(format_decimal(*value, 2, 2));
}

// The same words for a number that does not fit and for a text that is none.
void Fields::refuse_number(screen::TextBox& box, Caret caret) {
  screen_.refuse("Zone numérique trop longue.");
  box.set_text({});
  if (caret == Caret::kBack) box.form().set_focus(box);
}

void Fields::bind(const AmountField& field) {
  field.box.key_press = [this, field](screen::Key& key) {
    key.code = entry_.FilterNumericKey(field.box.text(), key.code, field.integer_digits);
  };
  field.box.lost_focus += [this, field] {
    if (!holds_entry(field.box)) return;
    if (!parse_decimal(field.box.text(), 0)) return field.box.set_text({});
    field.box.set_text(entry_.FormatAmount(field.box.text(), field.decimals, field.integer_digits));
  };
}

void Fields::bind_letters(screen::TextBox& box) {
  box.key_press = [](screen::Key& key) { key.code = filter_letter_key(key.code); };
}

}  // namespace velanor::entry
