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

// An attribute and what there is to say about it, as attributes.def says it. Where several stand in one
// list, each is read by the encoding that it brings along.
struct Field {
  int number = 0;  // 0: none
  Encoding encoding = Encoding::kText;
  int length = 0;
  Calculation calculation = Calculation::kUnused;
  std::string_view name = {}, noun = {}, list = {};

  friend constexpr bool operator==(const Field& a, const Field& b) { return a.number == b.number; }
};

// The encoding is part of the type, so that a date that is taken for an amount does not compile.
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

// The letters of the flags.
inline constexpr std::string_view kFixedTerm = "D", kPermanent = "I";
inline constexpr std::string_view kProduction = "P", kAdministrative = "A";
inline constexpr std::string_view kYes = "O", kNo = "N";

inline constexpr Field kAttributes[] = {
#define ATTRIBUTE(kind, constant, number, length, calculation, name, noun, list) constant,
#include "card/record/attributes.def"
#undef ATTRIBUTE
};

// Emptied when what they were computed from changes.
inline constexpr std::array kResults{kResult1, kResult2, kResult3, kResult4,
                                     kResult5, kResult6, kResult7, kResult8};

// Of a figure; 0 for what is none.
constexpr int decimals(const Field& field) { return decimals(field.encoding); }
// Of a figure, before the separator, as many as its box takes.
constexpr int integer_digits(const Field& field) { return field.length - 1 - decimals(field); }

}  // namespace velanor::card
