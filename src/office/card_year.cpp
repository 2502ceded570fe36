#include "office/card_year.h"

#include <algorithm>

#include "entry/decimal.h"
#include "office/hours.h"
#include "text/number.h"
#include "velanor/date.h"

namespace velanor::office {
namespace {

using Standing = CardYear::Standing;
using Stretch = CardYear::Stretch;

constexpr std::string_view kNames[] = {"Janvier", "Février", "Mars",      "Avril",   "Mai",      "Juin",
                                       "Juillet", "Août",    "Septembre", "Octobre", "Novembre", "Décembre"};
// Beyond it a figure was never typed, and sums of it would not hold.
constexpr std::int64_t kMostHours = 1'000'000'000;

std::string shown(std::int64_t hundredths) { return entry::format_decimal(hundredths, 2, 2); }
std::string shown(const std::optional<std::int64_t>& hundredths) {
  return hundredths ? shown(*hundredths) : std::string();
}

CardYear::Amendment amendment_of(const card::Draft& card, int line, std::int64_t full) {
  const int value = line + 1;
  const bool has_rate = figure(card.record(), card::kHourlyRate, value) > 0;
  const auto hours = monthly_hours(
      card.record(), line, [&](std::string_view code) { return card.reading().labels.is_hours_item(code); });
  const bool readable = hours && *hours >= 0 && *hours <= kMostHours;
  return {card.shown(card::kEffective, value),
          has_rate ? card.shown(card::kHourlyRate, value) : card.shown(card::kGrid, value),
          readable ? hours : std::nullopt, readable ? full_time(*hours, full) : std::nullopt};
}

// What stands on a day.
struct Days {
  std::optional<int> start, end;
  InForce in_force;

  Stretch on(int day) const {
    if (start && day < *start) return {0, 0, Standing::kNotBegun, -1};
    if (end && day > *end) return {0, 0, Standing::kEnded, -1};
    const int line = in_force.on(day);
    return {0, 0, line < 0 ? Standing::kNoAmendment : Standing::kInForce, line};
  }
};

std::vector<Stretch> stretches_of(const Days& days, int first_day, int count) {
  std::vector<Stretch> stretches;
  for (int d = 1; d <= count; ++d) {
    Stretch now = days.on(first_day + d - 1);
    now.first = now.last = d;
    if (stretches.empty() || stretches.back().standing != now.standing ||
        stretches.back().amendment != now.amendment) {
      stretches.push_back(now);
    } else {
      stretches.back().last = d;
    }
  }
  return stretches;
}

const CardYear::Amendment& amendment_in(const CardYear& year, const Stretch& stretch) {
  return year.amendments[static_cast<std::size_t>(stretch.amendment)];
}

// In hours times days.
void weigh(CardYear& year, CardYear::Month& month, std::int64_t full) {
  std::int64_t sum = 0;
  bool any = false;
  for (const Stretch& stretch : month.stretches) {
    if (stretch.standing == Standing::kNotBegun || stretch.standing == Standing::kEnded) continue;
    const int days = stretch.last - stretch.first + 1;
    const bool known = stretch.standing == Standing::kInForce && amendment_in(year, stretch).hours;
    if (known) sum += *amendment_in(year, stretch).hours * days;
    if (!known) year.days_without_hours += days;
    any = any || known;
  }
  if (!any) return;
  month.hours = (sum + month.days / 2) / month.days;
  month.full_time = full_time(sum, full * month.days);
  year.hours += *month.hours;
}

// The parts of the lines of a month that differ, one after another.
template <typename Part>
std::string in_turn(const CardYear& year, int month, const Part& part) {
  std::string all, last;
  for (const Stretch& stretch : year.months[static_cast<std::size_t>(month)].stretches) {
    if (stretch.standing != Standing::kInForce) continue;
    const std::string& now = part(amendment_in(year, stretch));
    if (!all.empty() && now == last) continue;
    all.append(all.empty() ? "" : " → ").append(now);
    last = now;
  }
  return all;
}

std::string_view word(Standing standing) {
  return standing == Standing::kNoAmendment ? "sans avenant" : "hors contrat";
}

// Of a month that is whole, only why it has nothing.
std::string days_of(const CardYear::Month& month) {
  if (month.is_whole()) {
    const Standing standing = month.stretches.front().standing;
    return standing == Standing::kInForce ? std::string() : std::string(word(standing));
  }
  std::string all;
  for (const Stretch& stretch : month.stretches) {
    if (stretch.standing != Standing::kInForce) continue;
    all.append(all.empty() ? "" : " | ").append(std::to_string(stretch.first));
    if (stretch.last > stretch.first) all.append("–").append(std::to_string(stretch.last));
  }
  return all.empty() ? std::string(word(Standing::kNoAmendment)) : all;
}

std::string said(const CardYear& year, const CardYear::Month& month, const Stretch& stretch) {
  std::string told;
  if (!month.is_whole())
    told = "du " + std::to_string(stretch.first) + " au " + std::to_string(stretch.last) + ", ";
  if (stretch.standing != Standing::kInForce) return told.append(word(stretch.standing));
  const auto& amendment = amendment_in(year, stretch);
  told.append("avenant du ").append(amendment.from).append(", ");
  told.append(amendment.hours ? shown(*amendment.hours) + " heures par mois" : "sans heures");
  if (!amendment.pay.empty()) told.append(", ").append(amendment.pay);
  return told;
}

}  // namespace

std::optional<int> budget_year(std::string_view text) {
  const auto year = text::whole_number(text);
  return year && *year >= 1 && *year <= 9999 ? std::optional(static_cast<int>(*year)) : std::nullopt;
}

CardYear year_of(const card::Draft& card, int of) {
  CardYear year;
  year.year = of;
  const store::DbRecord& record = card.record();
  const Days days{entry::stored_day(element(record, card::kContractStart)),
                  entry::stored_day(element(record, card::kContractEnd)), InForce(record)};
  const std::int64_t full = std::min(figure(record, card::kEstablishmentHours), kMostHours);
  for (int line = 0; line < days.in_force.amendments(); ++line)
    year.amendments.push_back(amendment_of(card, line, full));
  int first = *entry::day_number({1, 1, of});
  for (int m = 0; m < kMonths; ++m) {
    const int last =
        m + 1 < kMonths ? *entry::day_number({1, m + 2, of}) - 1 : *entry::day_number({31, 12, of});
    CardYear::Month& month = year.months[static_cast<std::size_t>(m)];
    month.days = last - first + 1;
    month.stretches = stretches_of(days, first, month.days);
    weigh(year, month, full);
    first = last + 1;
  }
  year.full_time = full_time(year.hours, full * kMonths);
  return year;
}

std::string_view month_name(int month) { return kNames[month]; }

std::string text_of(const CardYear& year, YearLine line, int number) {
  const CardYear::Month& month = year.months[static_cast<std::size_t>(number)];
  switch (line) {
    case YearLine::kDays:
      return days_of(month);
    case YearLine::kAmendment:
      return in_turn(year, number, [](const auto& a) -> const std::string& { return a.from; });
    case YearLine::kHours:
      return shown(month.hours);
    case YearLine::kFullTime:
      return shown(month.full_time);
    case YearLine::kPay:
      return in_turn(year, number, [](const auto& a) -> const std::string& { return a.pay; });
  }
  return {};
}

std::string total_of(const CardYear& year, YearLine line) {
  if (line == YearLine::kHours) return shown(year.hours);
  return line == YearLine::kFullTime ? shown(year.full_time) : std::string();
}

std::string said(const CardYear& year, int number) {
  const CardYear::Month& month = year.months[static_cast<std::size_t>(number)];
  std::string told = std::string(month_name(number)) + " " + std::to_string(year.year) + " : ";
  for (std::size_t i = 0; i < month.stretches.size(); ++i)
    told.append(i > 0 ? " ; " : "").append(said(year, month, month.stretches[i]));
  if (month.hours && !month.is_whole())
    told.append(" ; en tout ").append(shown(*month.hours)).append(" heures");
  if (month.full_time) told.append(", ETP ").append(shown(*month.full_time));
  return told + ".";
}

std::string remark(const CardYear& year) {
  if (year.days_without_hours == 0) return {};
  return "Sans heures : " + std::to_string(year.days_without_hours) +
         (year.days_without_hours > 1 ? " jours" : " jour") + " du contrat.";
}

}  // namespace velanor::office
