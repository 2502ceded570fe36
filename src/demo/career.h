// One employee's working life, as plain values; the cards of the years are cut from it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "demo/catalogue.h"
#include "demo/employers.h"
#include "demo/random.h"

namespace velanor::demo {

// A payroll item of an amendment, in the stored scales.
struct ItemLine {
  std::string_view code;
  std::optional<int> base, rate;
  int amount = 0;
};

struct Amendment {
  int effective = 0;
  const Qualification* qualification = nullptr;
  const Grid* grid = nullptr;  // or an hourly rate, in thousandths
  int grid_start = 0;
  int hourly_rate = 0;
  std::string_view category{};
  int monthly_time = 0;  // hundredths of hours
  bool new_measure = false;
  std::vector<ItemLine> items{};
};

struct ActivityShare {
  std::string_view activity;
  int share;  // hundredths of a percent
};

// Days are day numbers, figures in the stored scales.
struct Career {
  std::string code, name;
  const Establishment* establishment = nullptr;
  std::string_view agreement, sector, town, nature, education, profile1, profile2;
  Staff staff = Staff::kProduction;
  bool fixed_term = false;
  int start = 0;
  std::optional<int> end, birth, branch_entry, exempted, social_base;
  std::string_view end_reason;
  int ceiling_percent = 0;  // of the year's ceiling; 0 for the common one
  std::string_view mutual_charge;
  std::optional<int> mutual_employee, mutual_employer;
  std::vector<ActivityShare> activities;
  std::vector<Amendment> amendments;  // ascending by effective date
};

// Draws careers. Keeps the references; their owners outlive this and the careers.
class CareerMaker {
 public:
  CareerMaker(const Catalogue& catalogue, const Options& options);

  // The employee of that number (from 1). Depends on seed, years, employer and number alone, so
  // a person stays who they are when there are more or fewer others.
  Career make(const Employer& employer, int number) const;

 private:
  void draw_person(Career& career, const Employer& employer, int number, Random& random) const;
  void draw_contract(Career& career, const Agreement& agreement, Random& random) const;
  void draw_end(Career& career, Random& random) const;
  void draw_figures(Career& career, const Qualification& qualification, Random& random) const;
  void draw_activities(Career& career, const Employer& employer, Random& random) const;
  void draw_amendments(Career& career, const Agreement& agreement, const Qualification& qualification,
                       Random& random) const;
  std::vector<int> amendment_days(const Career& career, const Agreement& agreement, Random& random) const;
  std::vector<ItemLine> draw_items(const Amendment& amendment, const std::vector<const Item*>& habits,
                                   Random& random) const;

  const Catalogue& catalogue_;
  const Options& options_;
  int first_day_, last_day_;  // of the budget years
};

}  // namespace velanor::demo
