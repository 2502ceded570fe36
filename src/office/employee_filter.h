// What a clerk types to find employees among many.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "office/employees.h"

namespace velanor::office {

// Words between blanks, all of which must hold of a row. "mar" stands anywhere in any column, accents and
// case aside; "secteur:nord" in that column; "fin<01/09/2026", "début>=2024", "etp<0,5", "avenants=0" compare
// dates and figures. A minus before any of them: rows of which it does not hold. A date without its year is
// of this year, a month or a year stand for all their days. A column goes by its name or what tells it from
// the others ("sect", "etab"). What cannot be compared is a text like any other.
class Filter {
 public:
  Filter() = default;
  // `today` is a day number.
  Filter(std::string_view typed, int today);

  // Words that ask for a column or compare, as it seems, and were taken for texts: "xyz:abc", "fin<99/99".
  const std::vector<std::string>& misread() const { return misread_; }
  bool is_empty() const { return terms_.empty(); }
  // Those of the rows for which it holds, in their order.
  std::vector<int> filtered(const Employees& employees, const std::vector<int>& rows) const;

 private:
  enum class Comparison { kHolds, kLess, kLessOrEqual, kEqual, kMoreOrEqual, kMore };
  struct Term {
    bool negated = false;
    std::optional<Column> column;
    Comparison comparison = Comparison::kHolds;
    std::string folded;                // what is held
    std::int64_t first = 0, last = 0;  // what is compared: a value, or the days of a month or a year
  };
  struct Period {
    std::int64_t first = 0, last = 0;
  };

  static Term term_of(std::string_view word, int today);
  static std::optional<Term> comparison_of(std::string_view word, int today);
  static std::optional<Period> period_of(std::string_view typed, Column column, int today);
  static bool holds(const Term& term, const Texts::Text& text);
  static std::vector<char> marks(const Term& term, const Texts& texts);
  static void keep(const Term& term, const Employees& employees, std::vector<int>& rows);

  std::vector<Term> terms_;
  std::vector<std::string> misread_;
};

}  // namespace velanor::office
