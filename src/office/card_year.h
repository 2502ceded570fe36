// The budget year of a card, month by month.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "card/record/draft.h"

namespace velanor::office {

inline constexpr int kMonths = 12;

// Figures are in hundredths. Each day of a month weighs the same: an amendment that holds on 14 days of 31
// gives 14/31 of its monthly hours, and the sum of a month is rounded once, half up. Days out of the contract
// give nothing. The hours of the year are the sum of the months as they are shown, its full time is that sum
// over twelve months of the establishment's, so an employee of half a year on full time is 0,50.
struct CardYear {
  enum class Standing { kNotBegun, kEnded, kNoAmendment, kInForce };
  // Days of a month, from 1, that stand alike.
  struct Stretch {
    int first, last;
    Standing standing;
    int amendment;  // line from 0, of those in force
  };
  struct Month {
    int days = 0;
    std::vector<Stretch> stretches = {};  // all days, in their order
    // Nothing where no day has hours; a part of the year without contract is no 0.
    std::optional<std::int64_t> hours = {}, full_time = {};
    bool is_whole() const { return stretches.size() == 1; }
  };
  struct Amendment {
    std::string from, pay;  // as shown; the pay is the hourly rate, where there is none the grid
    std::optional<std::int64_t> hours, full_time;
  };

  int year = 0;
  std::array<Month, kMonths> months = {};
  std::vector<Amendment> amendments = {};
  std::int64_t hours = 0;
  std::optional<std::int64_t> full_time = {};
  // Of the contract, which the sums lack: no amendment holds, or its hours are not entered.
  int days_without_hours = 0;
};

// Of a year from 1 to 9999. Dates that cannot be read bound nothing. Throws store::DbError where a label
// cannot be read.
CardYear year_of(const card::Draft& card, int year);
// The year that a text is; nothing for any other text.
std::optional<int> budget_year(std::string_view text);

// ---- In the words of a clerk.

enum class YearLine { kDays, kAmendment, kHours, kFullTime, kPay };
inline constexpr std::array<std::string_view, 5> kYearLines{"Jours", "Avenant", "Heures", "ETP",
                                                            "Taux ou grille"};
// Months count from 0.
std::string_view month_name(int month);
// "15–31" where a month is not whole, "01/02/2020 → 15/03/2026" where amendments follow each other in it.
std::string text_of(const CardYear& year, YearLine line, int month);
std::string total_of(const CardYear& year, YearLine line);
// All of a month in a sentence.
std::string said(const CardYear& year, int month);
// That the sums lack days; "" where they do not.
std::string remark(const CardYear& year);

}  // namespace velanor::office
