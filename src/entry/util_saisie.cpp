#include "velanor/util_saisie.h"

#include <optional>
#include <vector>

#include "entry/blanks.h"
#include "entry/decimal.h"
#include "text/number.h"
#include "text/utf8.h"
#include "velanor/date.h"

namespace velanor::entry {
namespace {

std::vector<std::string_view> parts_of(std::string_view text) {
  // Six or eight digits need no slash.
  if (text::is_digits(text) && (text.size() == 6 || text.size() == 8)) {
    return {text.substr(0, 2), text.substr(2, 2), text.substr(4)};
  }
  std::vector<std::string_view> parts;
  for (auto slash = text.find('/'); slash != text.npos; slash = text.find('/')) {
    parts.push_back(text.substr(0, slash));
    text.remove_prefix(slash + 1);
  }
  parts.push_back(text);
  return parts;
}

std::optional<int> number_of(std::string_view part, std::size_t longest) {
  if (!text::is_digits(part) || part.size() > longest) return {};
  int number = 0;
  for (char digit : part) number = number * 10 + (digit - '0');
  return number;
}

std::optional<int> year_of(std::string_view part) {
  if (part.size() == 4) return number_of(part, 4);
  const auto year = number_of(part, 2);
  return year ? full_year(*year) : year;
}

// Completes by form alone: whether the day exists is for CheckDate to say.
std::optional<Date> completed(std::string_view typed, const Date& today) {
  const auto parts = parts_of(typed);
  if (parts.size() > 3) return {};
  const auto day = number_of(parts[0], 2);
  const auto month = parts.size() > 1 ? number_of(parts[1], 2) : today.month;
  const auto year = parts.size() > 2 ? year_of(parts[2]) : today.year;
  if (!day || !month || !year) return {};
  return Date{*day, *month, *year};
}

class DefaultUtilSaisie : public UtilSaisie {
 public:
  explicit DefaultUtilSaisie(Clock clock) : clock_(std::move(clock)) {}

  std::string CompleteDate(std::string_view typed, bool& refused) override {
    refused = false;
    const auto date = completed(without_outer_blanks(typed), clock_());
    return date ? date_text(*date) : std::string(typed);
  }

  bool DateRefused(bool& refused) override { return refused; }

  CheckedDate CheckDate(std::string_view text) override {
    const auto date = parse_date(text);
    if (!date) return {};
    const std::string day = std::to_string(*day_number(*date));
    return {day, day};
  }

  std::string InternalToDate(std::string_view stored) override {
    const auto day = stored_day(stored);
    return day ? date_text(date_of(*day)) : std::string();
  }

  char32_t FilterNumericKey(std::string_view text, char32_t key, int integer_digits) override {
    constexpr char32_t kBackspace = 8;
    if (key == kBackspace) return key;
    const auto comma = text.find_first_of(",.");
    if (key == U'.' || key == U',') return comma == text.npos ? U',' : 0;
    if (!text::is_digit(key)) return 0;
    return comma != text.npos || digits_in(text) < integer_digits ? key : 0;
  }

  // No format cuts a number: one that is too wide comes out whole, so that it is seen.
  std::string FormatAmount(std::string_view text, int decimals, int /*integer_digits*/) override {
    return format_pattern(text, decimals);
  }

  std::string FormatColumn(std::string_view text, int integer_digits, int decimals) override {
    if (text.empty()) return {};
    return text::pad_left(format_pattern(text, decimals), integer_digits + 1 + decimals);
  }

  std::string UnformatNumber(std::string_view text) override {
    return std::string(without_leading_blanks(text));
  }

 private:
  static int digits_in(std::string_view text) {
    int count = 0;
    for (char c : text) count += c >= '0' && c <= '9' ? 1 : 0;
    return count;
  }

  Clock clock_;
};

}  // namespace

std::unique_ptr<UtilSaisie> make_util_saisie(Clock clock) {
  return std::make_unique<DefaultUtilSaisie>(std::move(clock));
}

}  // namespace velanor::entry
