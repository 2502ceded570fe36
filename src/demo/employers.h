// The employers: the three of the sources, and copies of them for larger sets.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "demo/demo.h"
#include "demo/table.h"

namespace velanor::demo {

struct Establishment {
  std::string_view code;
  int hours;  // a month, hundredths
};

struct Employer {
  std::string code;
  std::string_view model;  // the employer of the sources that this one is, or copies
  int employees = 0;
  Row agreements;
  std::vector<Establishment> establishments;
  std::vector<std::string> activities;  // whole ACTIVITES ids
  Row towns;
};

std::vector<Employer> read_employers(const Options& options);

}  // namespace velanor::demo
