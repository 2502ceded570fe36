// The layout of a personnel budget record: attributes.def as constants.
#pragma once

#include <array>
#include <string_view>

#include "control/session/card_id.h"

namespace velanor::card {

// How an attribute stores what the screen shows.
enum class Encoding {
  kText,
  kCode,            // a reference code, as typed
  kDate,            // internal day number
  kHundredths,      // "0.00" times 100
  kThousandths,     // "0.000" times 1 000
  kTenThousandths,  // "0.0000" times 10 000
  kFlag,            // one letter
};

// Decimals of a figure; 0 for what is none.
constexpr int decimals(Encoding encoding) {
  switch (encoding) {
    case Encoding::kHundredths:
      return 2;
    case Encoding::kThousandths:
      return 3;
    case Encoding::kTenThousandths:
      return 4;
    default:
      return 0;
  }
}

enum class Calculation { kUsed, kUnused };

// An attribute and what there is to say about it, as attributes.def says it.
struct Field {
  int number = 0;
  Encoding encoding = Encoding::kText;
  int length = 0;
  Calculation calculation = Calculation::kUnused;
  std::string_view name = {}, noun = {}, list = {};

  constexpr operator int() const { return number; }
};

// The encoding is part of the type.
template <Encoding E>
struct Attribute : Field {};

using Text = Attribute<Encoding::kText>;
using Code = Attribute<Encoding::kCode>;
using Date = Attribute<Encoding::kDate>;
using Hundredths = Attribute<Encoding::kHundredths>;
using Thousandths = Attribute<Encoding::kThousandths>;
using TenThousandths = Attribute<Encoding::kTenThousandths>;
using Flag = Attribute<Encoding::kFlag>;

#define ATTRIBUTE(kind, constant, number, length, calculation, name, noun, list) \
  inline constexpr kind constant{                                                \
      {number, Encoding::k##kind, length, Calculation::calculation, name, noun, list}};
#include "card/record/attributes.def"
#undef ATTRIBUTE

inline constexpr std::array kItemColumns{30, 31, 32, 33};

// Results of the budget calculation: emptied when what they were computed from changes.
inline constexpr std::array kResults{25, 26, 27, 28, 29, 35, 36, 37};

// Attributes whose change makes the calculation stale: 1 to 33 and 41 to 43, but for those that
// it does not use (sector, town, birth date).
constexpr bool affects_calculation(int attribute) {
  if (attribute == kSector || attribute == kTown || attribute == kBirth) return false;
  return (attribute >= 1 && attribute <= 33) || (attribute >= 41 && attribute <= 43);
}
inline constexpr int kLastComparedAttribute = 43;

}  // namespace velanor::card
