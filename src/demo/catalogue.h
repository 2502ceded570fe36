// What the reference sources offer a card, arranged for drawing from it.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "demo/table.h"

namespace velanor::demo {

enum class Staff { kProduction, kAdministration };

struct Qualification {
  std::string_view code;
  Staff staff;
  int weight;
  int lowest_rate, highest_rate;  // thousandths
  int full_time;                  // percent of its people
  Row profiles, mutual_charges, diplomas;
};

struct Grid {
  std::string_view id;
  std::string_view category;
  Row qualifications;
  bool current;  // in force since 01/10/2021, or without an end
};

struct Agreement {
  bool categories = false;
  bool two_generations = false;  // its grids changed on 01/10/2021
  std::vector<Grid> grids;
  std::vector<const Qualification*> qualifications;  // that a card under it may have
};

struct Bounds {
  int low, high;
};

// A payroll item of the catalogue that is not the normal hours.
struct Item {
  enum class Kind { kHours, kBaseAndRate, kAmount };
  std::string_view code;
  Kind kind;
  int production, administration;  // how many of the staff have it, percent
  Bounds base, rate, amount;
};

struct EndReason {
  std::string_view code;
  int fixed_term_weight, permanent_weight;
};

inline constexpr std::string_view kNormalHours = "001";

struct Catalogue {
  // Reads the sources; the views stay valid as long as the program. Not to be moved: agreements
  // point at qualifications.
  Catalogue();
  Catalogue(const Catalogue&) = delete;
  Catalogue& operator=(const Catalogue&) = delete;

  std::vector<Qualification> qualifications;
  std::map<std::string_view, Agreement> agreements;
  std::vector<Item> items;  // ascending by code
  std::vector<EndReason> end_reasons;
  Row sectors, natures;
  Row surnames, first_names;

 private:
  void read_agreements();
  void read_items();
};

}  // namespace velanor::demo
