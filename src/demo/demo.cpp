#include "demo/demo.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "card/record/element.h"
#include "card/record/reference_layout.h"
#include "demo/card_record.h"
#include "demo/career.h"
#include "demo/catalogue.h"
#include "demo/employers.h"
#include "demo/random.h"
#include "demo/reference_files.h"
#include "text/utf8.h"

namespace velanor::demo {
namespace {

constexpr int kMonths = 12;

// The calculation records of a card: a total, and a record a month.
void put_calculation(Sink& sink, const std::string& id, const store::DbRecord& card) {
  const long long gross = number_of(element(card, card::kResults[0]));
  const long long charges = number_of(element(card, card::kResults[1]));
  store::DbRecord total;
  total.set(card::calculation::kGross, std::to_string(gross));
  total.set(card::calculation::kCharges, std::to_string(charges));
  sink.put("BUDGETHISTORCUMUL", id, total);
  for (int month = 1; month <= kMonths; ++month) {
    store::DbRecord detail;
    detail.set(card::calculation::kGross, std::to_string(gross / kMonths));
    detail.set(card::calculation::kCharges, std::to_string(charges / kMonths));
    sink.put("BUDGETDETAILCALCUL", id + text::pad_left(std::to_string(month), 2, '0'), detail);
  }
}

void put_cards(Sink& sink, const Options& options, const Employer& employer, const Career& career) {
  for (int year : options.years) {
    auto card = card_of(career, employer, year);
    if (!card) continue;
    const std::string id = card::record_id(career.code, employer.code, std::to_string(year));
    // Earlier years have all been calculated, the latest for a few employees so far.
    const bool latest = year == options.years.back();
    const bool calculated =
        options.staffing == Staffing::kLifelike && (!latest || number_of(career.code) % 10 == 0);
    if (calculated) set_results(*card, career, year);
    sink.put("VELANORO", id, *card);
    if (calculated && latest) put_calculation(sink, id, *card);
  }
}

void check(const Options& options) {
  const auto& years = options.years;
  const bool ascending =
      std::adjacent_find(years.begin(), years.end(), std::greater_equal<>()) == years.end();
  if (years.empty() || !ascending || years.front() < 1980 || years.back() > 2099) {
    throw std::invalid_argument("budget years ascending, between 1980 and 2099");
  }
  if (options.employees < 0 || options.employees / std::max(1, options.entities) > 90'000) {
    throw std::invalid_argument("at most 90000 employees an entity");
  }
}

}  // namespace

Options of_scale(int cards) {
  constexpr int kCardsOfEmployer = 5'000;
  Options options;
  options.years = {2025, 2026};
  options.staffing = Staffing::kEven;
  options.entities = std::clamp((cards + kCardsOfEmployer - 1) / kCardsOfEmployer, 1, 999);
  const int groups = options.entities * static_cast<int>(options.years.size());
  options.employees = (cards + groups - 1) / groups * options.entities;
  return options;
}

void fill(Sink& sink, const Options& options) {
  check(options);
  const std::vector<Employer> employers = read_employers(options);
  const Catalogue catalogue;
  const CareerMaker maker(catalogue, options);
  put_reference_files(sink, employers, options);
  for (const Employer& employer : employers) {
    for (int number = 1; number <= employer.employees; ++number) {
      put_cards(sink, options, employer, maker.make(employer, number));
    }
  }
}

}  // namespace velanor::demo
