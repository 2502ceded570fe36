// The layout of the reference files as far as a card depends on it: attributes by their numbers, and the
// codes that rules know.
#pragma once

#include <string_view>

namespace velanor::card {

// Of every record that is not a list: what its code is called.
inline constexpr int kReferenceLabel = 1;
// Of the records that are looked at for a mark.
inline constexpr std::string_view kMarked = "1";

// Collective agreements.
namespace agreements {
inline constexpr int kCategories = 36;  // not empty: it uses categories
// Never on a card.
inline constexpr std::string_view kReserved = "02";
// The branch of home help: branch dates, grids of two generations, no categories.
constexpr bool is_of_the_branch(std::string_view code) { return code == "01" || code == "06"; }
}  // namespace agreements

namespace establishments {
inline constexpr int kMonthlyHours = 2;  // hundredths
inline constexpr std::string_view kFirst = "001";
}  // namespace establishments

// Payroll profiles.
namespace profiles {
inline constexpr int kMandate = 4;  // marked: never on a card
}

// Payroll charges.
namespace charges {
inline constexpr int kEmployeeShare = 11, kEmployerAlone = 15, kNature = 16, kEmployerShare = 30;
inline constexpr std::string_view kMutual = "08", kAmount = "Montant";
}  // namespace charges

// Career grids; the code of one stands behind that of its agreement.
namespace grids {
inline constexpr int kCategory = 7;
inline constexpr int kNoQualifications = 8;  // marked: those of no grid are offered for it
inline constexpr int kQualifications = 9;
// Codes of the branch that are in force since 01/10/2021: from the first to before the second.
inline constexpr std::string_view kFirstNew = "400", kFirstBehind = "500";
}  // namespace grids

// Payroll items.
namespace items {
inline constexpr int kType = 2;  // 2 and 6 values, 3 to 5 hours
inline constexpr int kRateTyped = 8, kDefaultRate = 9, kFigures = 10;
constexpr bool is_hours(std::string_view type) { return type == "3" || type == "4" || type == "5"; }
}  // namespace items

// Entry templates, value by value but for the last.
namespace templates {
inline constexpr int kItem = 1, kBaseSource = 2, kFixedBase = 3, kRate = 4, kFixedAmount = 5,
                     kPaidForWorked = 6;
}

// The lists in TABLES, value by value.
namespace tables {
inline constexpr int kCodes = 2, kLabels = 3;
inline constexpr int kGrouping = 4;   // of a qualification
inline constexpr int kOffered = 4;    // of a nature of contract: kYes
inline constexpr int kWithdrawn = 5;  // of an end reason: kYes
}  // namespace tables

// Totals and months of the budget calculation.
namespace calculation {
inline constexpr int kGross = 1, kCharges = 2;
}

}  // namespace velanor::card
