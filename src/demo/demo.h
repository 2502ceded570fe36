// The demonstration data: reference files, and cards drawn from a seed.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "velanor/record.h"

namespace velanor::demo {

// Where the data goes.
class Sink {
 public:
  virtual ~Sink() = default;
  virtual void put(std::string_view file, std::string_view id, const store::DbRecord& record) = 0;
};

enum class Staffing {
  kLifelike,  // employers of different size, people who come and go
  kEven,      // employers of the same size, everybody there in every year
};

struct Options {
  std::uint64_t seed = 20'260'101;
  int entities = 3;  // at most 999; from the fourth on, copies of the first three
  int employees = 400;
  std::vector<int> years{2024, 2025, 2026};  // ascending, at least one
  Staffing staffing = Staffing::kLifelike;
};

// Options that give `cards` cards of about 1 KB, rounded up to a whole number for each employer
// and year: 2,500 of them where there are that many.
Options of_scale(int cards);

// Puts all reference files, then the cards with the results of the budget calculation that some
// have. The same options give the same records in the same order on every machine; every card
// passes all checks of saving in the latest of the years.
void fill(Sink& sink, const Options& options = {});

}  // namespace velanor::demo
