#include "office/employee_filter.h"

#include <algorithm>
#include <utility>

#include "entry/decimal.h"
#include "text/fold.h"
#include "text/number.h"
#include "velanor/date.h"

namespace velanor::office {
namespace {

std::optional<int> small_number(std::string_view digits) {
  if (!text::is_digits(digits) || digits.size() > 4) return std::nullopt;
  return static_cast<int>(*text::whole_number(digits));
}

// The columns in which a word is looked for that names none: those that tell the rows apart.
std::size_t searched(const Employees& employees) {
  return employees.reach().is_all() ? kColumns : index_of(Column::kEntity);
}

}  // namespace

Filter::Filter(std::string_view typed, int today) {
  for (std::size_t at = 0; at < typed.size();) {
    const std::size_t end = std::min(typed.find(' ', at), typed.size());
    const std::string_view word = typed.substr(at, end - at);
    Term term = term_of(word, today);
    at = end + 1;
    const std::size_t sign = word.find_first_of(":<>=");
    if (!term.column && sign != word.npos && sign > 0 && sign + 1 < word.size()) misread_.emplace_back(word);
    // Nothing is asked by what has only been begun.
    if (term.comparison != Comparison::kHolds || !term.folded.empty()) terms_.push_back(std::move(term));
  }
}

Filter::Term Filter::term_of(std::string_view word, int today) {
  const bool negated = word.starts_with('-');
  if (negated) word.remove_prefix(1);
  Term term = comparison_of(word, today).value_or(Term{});
  term.negated = negated;
  if (term.column) return term;
  term.folded = text::folded(word);
  return term;
}

std::optional<Filter::Term> Filter::comparison_of(std::string_view word, int today) {
  const std::size_t sign = word.find_first_of(":<>=");
  if (sign == word.npos) return std::nullopt;
  Term term;
  term.column = column_named(word.substr(0, sign));
  if (!term.column) return std::nullopt;
  const bool or_equal = word[sign] != '=' && word.substr(sign + 1).starts_with('=');
  const std::string_view value = word.substr(sign + (or_equal ? 2 : 1));
  if (word[sign] == ':') {
    term.folded = text::folded(word.substr(sign + 1));
    return term;
  }
  const auto period = period_of(value, *term.column, today);
  if (!period) return std::nullopt;
  term.comparison = word[sign] == '='   ? Comparison::kEqual
                    : word[sign] == '<' ? (or_equal ? Comparison::kLessOrEqual : Comparison::kLess)
                                        : (or_equal ? Comparison::kMoreOrEqual : Comparison::kMore);
  term.first = period->first;
  term.last = period->last;
  return term;
}

// "01/09/2026", "01/09/26", "01/09" of this year, "09/2026", "2026"; a figure in the decimals of its column.
std::optional<Filter::Period> Filter::period_of(std::string_view typed, Column column, int today) {
  const auto& title = kTitles[index_of(column)];
  if (title.kind == Kind::kText) return std::nullopt;
  if (title.kind == Kind::kNumber) {
    const auto value = entry::parse_decimal(typed, title.decimals);
    if (!value || entry::has_more_decimals(typed, title.decimals)) return std::nullopt;
    return Period{*value, *value};
  }
  const auto days = [](const entry::Date& first, const entry::Date& next) -> std::optional<Period> {
    const auto from = entry::day_number(first), before = entry::day_number(next);
    if (!from || !before) return std::nullopt;
    return Period{*from, *before - 1};
  };
  if (const auto year = small_number(typed); year && typed.size() == 4)
    return days({1, 1, *year}, {1, 1, *year + 1});
  const std::size_t slash = typed.find('/');
  if (slash == typed.npos) return std::nullopt;
  const std::string_view behind = typed.substr(slash + 1);
  const auto month = small_number(typed.substr(0, slash)), year = small_number(behind);
  if (month && year && behind.size() == 4) {
    const bool december = *month == 12;
    return days({1, *month, *year}, {1, december ? 1 : *month + 1, december ? *year + 1 : *year});
  }
  const bool has_year = behind.find('/') != behind.npos;
  const auto date = entry::parse_date(
      has_year ? std::string(typed) : std::string(typed) + "/" + std::to_string(entry::date_of(today).year));
  if (!date) return std::nullopt;
  const auto day = entry::day_number(*date);
  return day ? std::optional(Period{*day, *day}) : std::nullopt;
}

bool Filter::holds(const Term& term, const Texts::Text& text) {
  if (term.comparison == Comparison::kHolds) return text.folded.find(term.folded) != std::string::npos;
  if (!text.has_value) return false;
  switch (term.comparison) {
    case Comparison::kLess:
      return text.value < term.first;
    case Comparison::kLessOrEqual:
      return text.value <= term.last;
    case Comparison::kMoreOrEqual:
      return text.value >= term.first;
    case Comparison::kMore:
      return text.value > term.last;
    default:
      return text.value >= term.first && text.value <= term.last;
  }
}

std::vector<char> Filter::marks(const Term& term, const Texts& texts) {
  std::vector<char> marks(texts.size());
  for (std::uint32_t n = 0; n < texts.size(); ++n) marks[n] = holds(term, texts[n]) ? 1 : 0;
  return marks;
}

// Each different text is judged once; columns of which none holds are not looked at again.
void Filter::keep(const Term& term, const Employees& employees, std::vector<int>& rows) {
  std::vector<std::pair<Column, std::vector<char>>> marked;
  const auto mark = [&](Column column) {
    auto found = marks(term, employees.texts(column));
    if (std::find(found.begin(), found.end(), 1) != found.end())
      marked.emplace_back(column, std::move(found));
  };
  if (term.column) {
    mark(*term.column);
  } else {
    for (std::size_t c = 0; c < searched(employees); ++c) mark(Column(c));
  }
  std::erase_if(rows, [&](int row) {
    const bool held = std::any_of(marked.begin(), marked.end(), [&](const auto& column) {
      return column.second[employees.number(row, column.first)] != 0;
    });
    return held == term.negated;
  });
}

std::vector<int> Filter::filtered(const Employees& employees, const std::vector<int>& rows) const {
  std::vector<int> kept = rows;
  for (const Term& term : terms_) keep(term, employees, kept);
  return kept;
}

}  // namespace velanor::office
