// The layout of a personnel budget record: the one place that knows attribute numbers.
#pragma once

#include <array>
#include <string>
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

// An attribute by its number; the encoding is part of the type.
template <Encoding E>
struct Attribute {
  int number;
  static constexpr Encoding encoding = E;
  constexpr operator int() const { return number; }
};

using Text = Attribute<Encoding::kText>;
using Code = Attribute<Encoding::kCode>;
using Date = Attribute<Encoding::kDate>;
using Hundredths = Attribute<Encoding::kHundredths>;
using Thousandths = Attribute<Encoding::kThousandths>;
using TenThousandths = Attribute<Encoding::kTenThousandths>;
using Flag = Attribute<Encoding::kFlag>;

// One value each.
inline constexpr Text kName{1};                      // stored in upper case
inline constexpr Hundredths kEstablishmentHours{2};  // hours a month
inline constexpr Code kAgreement{3};                 // CONVENTIONCOL
inline constexpr Code kSector{4};                    // SECTEUR
inline constexpr Text kTown{5};                      // as shown
inline constexpr Flag kContractType{6};              // D fixed-term, I permanent
inline constexpr Flag kStaffKind{7};                 // P production, A administrative
inline constexpr Date kContractStart{8};
inline constexpr Date kBirth{9};
inline constexpr Code kProfile1{19};             // PROFIL
inline constexpr Code kProfile2{20};             // PROFIL
inline constexpr Hundredths kExemptedHours{21};  // percent
inline constexpr Hundredths kCeiling{22};        // social-security ceiling, euros a month
inline constexpr Date kContractEnd{23};
inline constexpr Code kEndReason{24};             // TABLES FINCONTRAT
inline constexpr Hundredths kSocialBase{34};      // social-security base, euros
inline constexpr Text kStatus{39};                // of the calculation; "0" on a new card
inline constexpr Text kEstablishment{40};         // entity code, then establishment code
inline constexpr Hundredths kMutualEmployee{41};  // euros a month
inline constexpr Hundredths kMutualEmployer{42};  // euros a month
inline constexpr Code kMutualCharge{43};          // RUBCHARGE
inline constexpr Code kContractNature{44};        // TABLES NATURECONTRAT
inline constexpr Date kBranchEntry{45};
inline constexpr Code kEducation{46};  // TABLES DIPLOMES

// One value an activity; the list ends at the first empty value of kActivity.
inline constexpr Code kActivity{10};     // the whole ACTIVITES id
inline constexpr Hundredths kShare{11};  // percent

// One value an amendment; the list ends at the first empty value of kEffective.
inline constexpr Date kEffective{12};
inline constexpr Date kGridStart{13};
inline constexpr Code kQualification{14};  // TABLES QUALIF
inline constexpr Code kGrid{15};           // GRILLESCCBUDGET id
inline constexpr Text kCategory{16};
inline constexpr Thousandths kHourlyRate{17};  // euros
inline constexpr Hundredths kMonthlyTime{18};  // hours, administrative staff only
inline constexpr Flag kNewMeasure{38};         // O or N

// One value an amendment, one subvalue a payroll item; the items end at the first empty
// subvalue of kItemCode.
inline constexpr Code kItemCode{30};  // RUBSAISIE, three digits
inline constexpr Hundredths kItemBase{31};
inline constexpr TenThousandths kItemRate{32};
inline constexpr Hundredths kItemAmount{33};  // euros
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
