#include "entry/decimal.h"

#include <limits>

#include "entry/blanks.h"
#include "text/number.h"
#include "text/utf8.h"

namespace velanor::entry {
namespace {

constexpr int kMostIntegerDigits = 15;

// Walks a number text once: sign, integer digits with blanks between them, separator, decimals.
class DecimalReader {
 public:
  DecimalReader(std::string_view text, int decimals) : text_(text), decimals_(decimals) {}

  std::optional<std::int64_t> read() {
    read_sign();
    read_integer();
    if (at_separator()) {
      ++at_;
      read_decimals();
    }
    for (; decimals_ > 0; --decimals_) push(0);
    if (round_up_) round_up();
    if (bad_ || !any_digit_ || at_ < text_.size()) return {};
    return negative_ ? -value_ : value_;
  }
  bool rounded() const { return rounded_; }

 private:
  bool at_digit() const { return at_ < text_.size() && text_[at_] >= '0' && text_[at_] <= '9'; }
  bool at_separator() const { return at_ < text_.size() && (text_[at_] == ',' || text_[at_] == '.'); }
  int take_digit() {
    any_digit_ = true;
    return text_[at_++] - '0';
  }

  void read_sign() {
    if (text_.empty() || (text_[0] != '-' && text_[0] != '+')) return;
    negative_ = text_[0] == '-';
    ++at_;
  }

  void read_integer() {
    while (at_digit()) {
      const int digit = take_digit();
      push(digit);
      significant_ += value_ != 0 ? 1 : 0;
      skip_blanks_before_digit();
    }
    if (significant_ > kMostIntegerDigits) bad_ = true;
  }

  void skip_blanks_before_digit() {
    const std::string_view rest = without_leading_blanks(text_.substr(at_));
    if (!rest.empty() && rest[0] >= '0' && rest[0] <= '9') at_ = text_.size() - rest.size();
  }

  // The first digit that is not kept decides the rounding; those behind it cannot change it.
  void read_decimals() {
    for (; at_digit() && decimals_ > 0; --decimals_) push(take_digit());
    if (at_digit()) round_up_ = text_[at_] >= '5';
    while (at_digit()) rounded_ |= take_digit() != 0;
  }

  // Nines all the way become a digit more, which may be one too many.
  void round_up() {
    const auto digits = std::to_string(value_).size();
    add(1);
    const bool longer = std::to_string(value_).size() > digits;
    if (longer && significant_ == kMostIntegerDigits) bad_ = true;
  }

  void push(int digit) {
    if (value_ > std::numeric_limits<std::int64_t>::max() / 10) bad_ = true;
    if (bad_) return;
    value_ *= 10;
    add(digit);
  }
  void add(int amount) {
    if (value_ > std::numeric_limits<std::int64_t>::max() - amount) bad_ = true;
    if (!bad_) value_ += amount;
  }

  std::string_view text_;
  int decimals_;
  std::size_t at_ = 0;
  std::int64_t value_ = 0;
  int significant_ = 0;  // digits before the separator
  bool negative_ = false;
  bool any_digit_ = false;
  bool round_up_ = false;
  bool rounded_ = false;
  bool bad_ = false;
};

// Digits of a value divided by a power of ten, rounded half away from zero.
std::uint64_t divided(std::uint64_t value, int powers) {
  bool up = false;
  for (; powers > 0; --powers) {
    up = value % 10 >= 5;
    value /= 10;
  }
  return value + (up ? 1 : 0);
}

}  // namespace

std::optional<std::int64_t> parse_decimal(std::string_view text, int decimals) {
  return DecimalReader(without_outer_blanks(text), decimals).read();
}

bool has_more_decimals(std::string_view text, int decimals) {
  DecimalReader reader(without_outer_blanks(text), decimals);
  return reader.read() && reader.rounded();
}

std::string format_decimal(std::int64_t value, int scale, int decimals) {
  const bool negative = value < 0;
  std::uint64_t magnitude = static_cast<std::uint64_t>(value);
  if (negative) magnitude = 0 - magnitude;  // also right for the smallest value of all
  magnitude = divided(magnitude, scale - decimals);
  std::string digits = std::to_string(magnitude);
  if (decimals > scale) digits.append(static_cast<std::size_t>(decimals - scale), '0');
  digits = text::pad_left(digits, decimals + 1, '0');
  if (decimals > 0) digits.insert(digits.size() - static_cast<std::size_t>(decimals), 1, ',');
  if (negative && magnitude != 0) digits.insert(0, 1, '-');
  return digits;
}

std::string format_pattern(std::string_view text, int decimals) {
  const auto value = parse_decimal(text, decimals);
  return value ? format_decimal(*value, decimals, decimals) : std::string(text);
}

std::string stored_to_text(std::string_view stored, int scale, int decimals) {
  const auto value = text::whole_number(stored);
  return value ? format_decimal(*value, scale, decimals) : std::string(stored);
}

std::string text_to_stored(std::string_view text, int scale) {
  const auto value = parse_decimal(text, scale);
  return value ? std::to_string(*value) : std::string();
}

bool has_digit(std::string_view text) { return text.find_first_of("0123456789") != std::string_view::npos; }

}  // namespace velanor::entry
