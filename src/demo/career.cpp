#include "demo/career.h"

#include <algorithm>
#include <numeric>
#include <set>

#include "text/utf8.h"
#include "velanor/date.h"

namespace velanor::demo {
namespace {

constexpr int kYear = 365;
constexpr int kHistoryYears = 6;  // amendments older than that were not taken over
constexpr int kLongHistory = 14;  // amendments that bring a card to a kilobyte

int day(int date, int month, int year) { return *entry::day_number({date, month, year}); }
const int kNewGrids = day(1, 10, 2021);

// One of the items, each as often as its weight says.
template <typename Items, typename Weight>
const auto& weighted(Random& random, const Items& items, Weight weight) {
  int total = 0;
  for (const auto& item : items) total += weight(item);
  int left = random.between(1, total);
  for (const auto& item : items) {
    left -= weight(item);
    if (left <= 0) return item;
  }
  return items.back();
}

// Base (hundredths) times rate (ten-thousandths), rounded half up to the cent.
int product(int base, int rate) {
  return static_cast<int>((static_cast<std::int64_t>(base) * rate + 5000) / 10000);
}

// The grids that a line of that day and qualification may name.
std::vector<const Grid*> grids_of(const Agreement& agreement, std::string_view qualification, int day) {
  const bool current = !agreement.two_generations || day >= kNewGrids;
  std::vector<const Grid*> found;
  for (const Grid& grid : agreement.grids) {
    const auto& open_to = grid.qualifications;
    if (grid.current == current &&
        std::find(open_to.begin(), open_to.end(), qualification) != open_to.end()) {
      found.push_back(&grid);
    }
  }
  return found;
}

// A category for a line without a grid, where the agreement asks for one.
std::string_view category_of(const Agreement& agreement, std::string_view qualification, int day) {
  if (!agreement.categories) return {};
  const auto grids = grids_of(agreement, qualification, day);
  return grids.empty() ? "A" : grids.front()->category;
}

}  // namespace

CareerMaker::CareerMaker(const Catalogue& catalogue, const Options& options)
    : catalogue_(catalogue),
      options_(options),
      first_day_(day(1, 1, options.years.front())),
      last_day_(day(31, 12, options.years.back())) {}

Career CareerMaker::make(const Employer& employer, int number) const {
  Random random(
      Random::mixed(Random::mixed(options_.seed, static_cast<std::uint64_t>(number_of(employer.code))),
                    static_cast<std::uint64_t>(number)));
  Career career;
  draw_person(career, employer, number, random);
  const Agreement& agreement = catalogue_.agreements.at(career.agreement);
  const Qualification& qualification =
      *weighted(random, agreement.qualifications, [](const Qualification* q) { return q->weight; });
  career.staff = qualification.staff;
  draw_contract(career, agreement, random);
  draw_figures(career, qualification, random);
  draw_activities(career, employer, random);
  draw_amendments(career, agreement, qualification, random);
  return career;
}

void CareerMaker::draw_person(Career& career, const Employer& employer, int number, Random& random) const {
  career.code = text::pad_left(std::to_string(number), 5, '0');
  // Steps through all pairs of names before one comes again, so that a name tells an employee.
  const std::size_t pairs = catalogue_.surnames.size() * catalogue_.first_names.size();
  std::size_t step = pairs * 5 / 13;
  while (std::gcd(step, pairs) != 1) ++step;
  const std::size_t offset = static_cast<std::size_t>(number_of(employer.code)) * 997;
  const std::size_t pair = (offset + static_cast<std::size_t>(number) * step) % pairs;
  career.name = text::upper(std::string(catalogue_.surnames[pair / catalogue_.first_names.size()]) + " " +
                            std::string(catalogue_.first_names[pair % catalogue_.first_names.size()]));
  career.establishment = &random.pick(employer.establishments);
  career.agreement = random.pick(employer.agreements);
  career.sector = random.pick(catalogue_.sectors);
  career.town = random.pick(employer.towns);
}

void CareerMaker::draw_contract(Career& career, const Agreement& agreement, Random& random) const {
  const bool even = options_.staffing == Staffing::kEven;
  career.fixed_term = !even && random.chance(15);
  if (career.fixed_term) {
    career.start = random.between(first_day_ - 60, last_day_ - 30);
    career.end = std::max(first_day_, career.start + random.between(30, kYear) - 1);
  } else if (even || random.chance(70)) {
    career.start = random.between(first_day_ - 15 * kYear, first_day_ - 30);
  } else {
    career.start = random.between(first_day_, last_day_ - 15);
  }
  if (!even && !career.fixed_term && random.chance(12)) {
    career.end = random.between(std::max(career.start + 30, first_day_), last_day_);
  }
  draw_end(career, random);
  if (random.chance(97)) career.birth = career.start - random.between(18 * kYear + 5, 57 * kYear);
  const int before = random.chance(60) ? random.between(0, 10 * kYear) : 0;
  if (agreement.two_generations) career.branch_entry = career.start - before;
}

void CareerMaker::draw_end(Career& career, Random& random) const {
  if (!career.end) return;
  career.end_reason = weighted(random, catalogue_.end_reasons, [&](const EndReason& reason) {
                        return career.fixed_term ? reason.fixed_term_weight : reason.permanent_weight;
                      }).code;
}

void CareerMaker::draw_figures(Career& career, const Qualification& qualification, Random& random) const {
  career.nature = random.chance(90) ? catalogue_.natures.front() : random.pick(catalogue_.natures);
  if (random.chance(85)) career.education = random.pick(qualification.diplomas);
  career.profile1 = random.pick(qualification.profiles);
  if (random.chance(10)) career.profile2 = random.pick(qualification.profiles);
  const bool production = career.staff == Staff::kProduction;
  if (production || random.chance(30)) {
    career.exempted = random.chance(70) ? (production ? 10000 : 0) : random.between(100, 199) * 50;
  }
  if (random.chance(20)) career.ceiling_percent = random.between(40, 99);
  if (random.chance(12)) career.social_base = random.between(600, 2400) * 100;
  if (!random.chance(75)) return;
  career.mutual_charge = random.pick(qualification.mutual_charges);
  career.mutual_employee = random.between(1200, 4800);
  career.mutual_employer = *career.mutual_employee + random.between(0, 12) * 100;
}

void CareerMaker::draw_activities(Career& career, const Employer& employer, Random& random) const {
  std::vector<std::string_view> open(employer.activities.begin(), employer.activities.end());
  const int count = random.chance(55) ? 1 : random.between(2, 4);
  int left = 10000;
  for (int i = 1; i <= count; ++i) {
    const std::size_t chosen = random.below(open.size());
    // Thirds as well as round shares: what is left always completes the hundred exactly.
    const int share = i == count          ? left
                      : random.chance(30) ? left / 3
                                          : random.between(1, left / 500 - 1) * 250;
    career.activities.push_back({open[chosen], share});
    open.erase(open.begin() + static_cast<std::ptrdiff_t>(chosen));
    left -= share;
  }
}

std::vector<int> CareerMaker::amendment_days(const Career& career, const Agreement& agreement,
                                             Random& random) const {
  const int first = std::max(career.start, day(1, 1, options_.years.front() - kHistoryYears));
  const int last = std::min(career.end.value_or(last_day_), last_day_);
  std::set<int> days{first};
  if (agreement.two_generations && first < kNewGrids && last >= kNewGrids) days.insert(kNewGrids);
  const int more = options_.staffing == Staffing::kEven ? kLongHistory : random.between(0, 3);
  for (int i = 0; i < more; ++i) {
    entry::Date date = entry::date_of(random.between(std::max(first, first_day_ - kYear), last));
    date.day = 1;
    const int day = *entry::day_number(date);
    if (day > first) days.insert(day);
  }
  return {days.begin(), days.end()};
}

void CareerMaker::draw_amendments(Career& career, const Agreement& agreement,
                                  const Qualification& qualification, Random& random) const {
  const int hours = career.establishment->hours;
  std::vector<const Item*> habits;
  for (const Item& item : catalogue_.items) {
    const int percent = career.staff == Staff::kProduction ? item.production : item.administration;
    if (random.chance(percent)) habits.push_back(&item);
  }
  const bool by_grid = random.chance(75);
  int rate = random.between(qualification.lowest_rate, qualification.highest_rate);
  int percent = random.chance(qualification.full_time) ? 100 : random.between(30, 95);
  for (int effective : amendment_days(career, agreement, random)) {
    Amendment amendment{.effective = effective, .qualification = &qualification};
    const auto grids = grids_of(agreement, qualification.code, effective);
    if (by_grid && !grids.empty()) {
      amendment.grid = random.pick(grids);
      amendment.grid_start = std::max(career.start, effective - random.between(0, 2) * kYear);
      amendment.category = agreement.categories ? amendment.grid->category : std::string_view();
    } else {
      amendment.hourly_rate = rate;
      amendment.category = category_of(agreement, qualification.code, effective);
    }
    amendment.monthly_time = hours * percent / 100;
    amendment.new_measure = random.chance(10);
    amendment.items = draw_items(amendment, habits, random);
    career.amendments.push_back(std::move(amendment));
    rate += rate * random.between(5, 25) / 1000;
    if (random.chance(40)) percent = std::clamp(percent + random.between(-3, 4) * 5, 20, 100);
  }
}

std::vector<ItemLine> CareerMaker::draw_items(const Amendment& amendment,
                                              const std::vector<const Item*>& habits, Random& random) const {
  std::vector<ItemLine> lines{{kNormalHours, amendment.monthly_time, 0, 0}};
  for (const Item* item : habits) {
    ItemLine line{.code = item->code, .base = {}, .rate = {}};
    switch (item->kind) {
      case Item::Kind::kHours:
        line.base = random.between(item->base.low, std::min(item->base.high, amendment.monthly_time / 10));
        line.rate = 0;
        // The hours of all lines together are the monthly time.
        *lines.front().base -= *line.base;
        break;
      case Item::Kind::kBaseAndRate:
        line.base = random.between(item->base.low, item->base.high);
        line.rate = random.between(item->rate.low, item->rate.high);
        line.amount = product(*line.base, *line.rate);
        break;
      case Item::Kind::kAmount:
        line.amount = random.between(item->amount.low, item->amount.high);
        break;
    }
    lines.push_back(line);
  }
  return lines;
}

}  // namespace velanor::demo
