#include "demo/card_checker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "card/record/element.h"
#include "text/utf8.h"
#include "velanor/date.h"

namespace velanor::demo {
namespace {

using store::DbRecord;

class CardChecker {
 public:
  CardChecker(const MapSink& sink, int reference_date) : sink_(sink), reference_date_(reference_date) {}

  void check(std::string_view id, const DbRecord& card) {
    SCOPED_TRACE(id);
    check_id(id, card);
    check_obligatory(card);
    check_codes(card);
    check_activities(id, card);
    check_contract(card);
    check_amendments(card);
    check_lengths(card);
  }

 private:
  bool exists(std::string_view file, std::string_view id) const {
    return sink_.files.find(file)->second.contains(id);
  }
  const DbRecord& read(std::string_view file, std::string_view id) const {
    return sink_.files.find(file)->second.find(id)->second;
  }
  bool in_table(std::string_view table, std::string_view code) const {
    const auto codes = values(read("TABLES", table), 2);
    return std::find(codes.begin(), codes.end(), code) != codes.end();
  }

  void check_id(std::string_view id, const DbRecord& card) const {
    ASSERT_EQ(id.size(), 12u);
    EXPECT_EQ(id.find_first_not_of("0123456789"), id.npos);
    EXPECT_TRUE(exists("ASSOCIATION", id.substr(5, 3)));
    EXPECT_EQ(element(card, card::kEstablishment).substr(0, 3), id.substr(5, 3));
    EXPECT_TRUE(exists("ETABLISSEMENT", element(card, card::kEstablishment)));
  }

  void check_obligatory(const DbRecord& card) const {
    for (const card::Field& field : std::initializer_list<card::Field>{
             card::kName, card::kEstablishment, card::kEstablishmentHours, card::kAgreement, card::kSector,
             card::kTown, card::kContractStart, card::kActivity, card::kEffective, card::kProfile1,
             card::kStatus}) {
      EXPECT_FALSE(element(card, field).empty()) << field.noun;
    }
    EXPECT_EQ(element(card, card::kName), text::upper(element(card, card::kName)));
    EXPECT_TRUE(element(card, card::kContractType) == "D" || element(card, card::kContractType) == "I");
    EXPECT_TRUE(element(card, card::kStaffKind) == "P" || element(card, card::kStaffKind) == "A");
  }

  void check_codes(const DbRecord& card) {
    EXPECT_TRUE(exists("CONVENTIONCOL", element(card, card::kAgreement)));
    EXPECT_NE(element(card, card::kAgreement), "02");
    EXPECT_TRUE(exists("SECTEUR", element(card, card::kSector)));
    EXPECT_TRUE(towns().contains(element(card, card::kTown))) << element(card, card::kTown);
    for (const auto& profile : {card::kProfile1, card::kProfile2}) {
      if (element(card, profile).empty()) continue;
      ASSERT_TRUE(exists("PROFIL", element(card, profile)));
      EXPECT_NE(read("PROFIL", element(card, profile))(4), "1") << "a mandataire";
    }
    if (!element(card, card::kEducation).empty()) {
      EXPECT_TRUE(in_table("DIPLOMES", element(card, card::kEducation)));
    }
    if (!element(card, card::kContractNature).empty()) {
      EXPECT_TRUE(in_table("NATURECONTRAT", element(card, card::kContractNature)));
    }
    if (!element(card, card::kMutualCharge).empty()) {
      EXPECT_TRUE(may_be_chosen(element(card, card::kMutualCharge)));
    }
  }

  bool may_be_chosen(std::string_view charge) const {
    const DbRecord& record = read("RUBCHARGE", charge);
    return record(16) == "08" &&
           ((record(11) == "Montant" && record(30) == "Montant") || record(15) == "Montant");
  }

  const std::set<std::string, std::less<>>& towns() {
    if (towns_.empty()) {
      for (const auto& [id, town] : sink_.files.find("COMMUNES")->second) towns_.emplace(town(1));
    }
    return towns_;
  }

  void check_activities(std::string_view id, const DbRecord& card) const {
    int total = 0;
    const auto activities = values(card, card::kActivity.number);
    for (std::size_t i = 0; i < activities.size(); ++i) {
      EXPECT_TRUE(activities[i].starts_with(id.substr(5, 3)) && exists("ACTIVITES", activities[i]));
      const int share = number(element(card, card::kShare, static_cast<int>(i) + 1));
      EXPECT_GT(share, 0);
      total += share;
    }
    EXPECT_EQ(total, 10000);
    EXPECT_EQ(std::set(activities.begin(), activities.end()).size(), activities.size());
  }

  void check_contract(const DbRecord& card) const {
    const int start = number(element(card, card::kContractStart));
    if (element(card, card::kStaffKind) == "P") {
      EXPECT_FALSE(element(card, card::kExemptedHours).empty());
    }
    EXPECT_LE(number(element(card, card::kExemptedHours)), 10000);
    if (!element(card, card::kContractEnd).empty()) {
      EXPECT_GE(number(element(card, card::kContractEnd)), start);
      EXPECT_TRUE(in_table("FINCONTRAT", element(card, card::kEndReason)));
    } else {
      EXPECT_EQ(element(card, card::kContractType), "I");
      EXPECT_EQ(element(card, card::kEndReason), "");
    }
    // The branch date is shown, and so kept by a save, under two agreements only.
    const bool branch = element(card, card::kAgreement) == "01" || element(card, card::kAgreement) == "06";
    if (!element(card, card::kBranchEntry).empty()) {
      EXPECT_TRUE(branch);
      EXPECT_LE(number(element(card, card::kBranchEntry)), start);
    }
  }

  void check_amendments(const DbRecord& card) const {
    const int start = number(element(card, card::kContractStart));
    const auto days = values(card, card::kEffective.number);
    bool on_start = false;
    for (std::size_t i = 0; i < days.size(); ++i) {
      const int line = static_cast<int>(i) + 1;
      SCOPED_TRACE("amendment " + std::to_string(line));
      EXPECT_GE(number(days[i]), start);
      if (i > 0) {
        EXPECT_GT(number(days[i]), number(days[i - 1]));
      }
      on_start |= number(days[i]) == start;
      check_position(card, line);
      check_items(card, line);
    }
    if (start >= reference_date_) {
      EXPECT_TRUE(on_start);
    }
    if (start < reference_date_) {
      EXPECT_LE(number(days.front()), reference_date_);
    }
    for (int attribute : {13, 14, 15, 16, 17, 18, 30, 31, 32, 33, 38}) {
      EXPECT_LE(card.Count(attribute), static_cast<int>(days.size())) << "attribute " << attribute;
    }
  }

  // A grid with its start date, or an hourly rate; what the lists of the day would offer.
  void check_position(const DbRecord& card, int line) const {
    const std::string agreement(element(card, card::kAgreement));
    const std::string grid_id(element(card, card::kGrid, line));
    EXPECT_TRUE(in_table("QUALIF", element(card, card::kQualification, line)));
    EXPECT_EQ(grid_id.empty(), element(card, card::kGridStart, line).empty());
    EXPECT_NE(grid_id.empty(), element(card, card::kHourlyRate, line).empty());
    const bool categories = !read("CONVENTIONCOL", agreement)(36).empty();
    EXPECT_EQ(categories, !element(card, card::kCategory, line).empty());
    EXPECT_TRUE(element(card, card::kNewMeasure, line) == "O" ||
                element(card, card::kNewMeasure, line) == "N");
    EXPECT_EQ(element(card, card::kMonthlyTime, line).empty(), element(card, card::kStaffKind) == "P");
    if (grid_id.empty()) return;
    ASSERT_TRUE(exists("GRILLESCCBUDGET", grid_id));
    EXPECT_TRUE(grid_id.starts_with(agreement));
    if (categories) {
      EXPECT_EQ(element(card, card::kCategory, line), read("GRILLESCCBUDGET", grid_id)(7));
    }
    if (agreement == "01" || agreement == "06") {
      const bool new_day = number(element(card, card::kEffective, line)) >= *entry::day_number({1, 10, 2021});
      EXPECT_EQ(grid_id[2] == '4', new_day);
    }
  }

  void check_items(const DbRecord& card, int line) const {
    EXPECT_FALSE(element(card, card::kItemCode, line, 1).empty()) << "no payroll item";
    int hours = 0;
    for (int n = 1; !element(card, card::kItemCode, line, n).empty(); ++n) {
      const auto code = element(card, card::kItemCode, line, n);
      SCOPED_TRACE("item " + std::string(code));
      ASSERT_TRUE(exists("RUBSAISIE", code));
      const DbRecord& item = read("RUBSAISIE", code);
      const int type = number(item(2));
      EXPECT_TRUE(type >= 2 && item(5) == "+" && item(18) != "1" && number(code) < 800)
          << "not in the catalogue";
      const bool rated = type == 2 && (item(8) == "1" || item(10) == "2");
      const bool timed = type >= 3 && type <= 5;
      EXPECT_EQ(rated || timed, !element(card, card::kItemBase, line, n).empty());
      const long long base = number(element(card, card::kItemBase, line, n));
      const long long rate = number(element(card, card::kItemRate, line, n));
      if (rated) {
        EXPECT_EQ(number(element(card, card::kItemAmount, line, n)), (base * rate + 5000) / 10000);
      }
      EXPECT_FALSE(element(card, card::kItemAmount, line, n).empty());
      EXPECT_GE(base, 0);
      hours += timed ? static_cast<int>(base) : 0;
    }
    EXPECT_LE(hours, number(element(card, card::kEstablishmentHours)));
    if (element(card, card::kStaffKind) == "A") {
      EXPECT_EQ(hours, number(element(card, card::kMonthlyTime, line)));
    }
  }

  // Every figure fits the box that shows it.
  void check_lengths(const DbRecord& card) const {
    const struct {
      card::Field field;
      std::size_t digits;
    } boxes[] = {{card::kEstablishmentHours, 5}, {card::kMonthlyTime, 5},    {card::kHourlyRate, 6},
                 {card::kSocialBase, 7},         {card::kCeiling, 7},        {card::kExemptedHours, 5},
                 {card::kMutualEmployee, 6},     {card::kMutualEmployer, 6}, {card::kItemAmount, 7}};
    for (const auto& box : boxes) {
      for (const auto& value : values(card, box.field.number)) {
        for (std::string_view figure : split(value, store::kSubvalueMark))
          EXPECT_LE(figure.size(), box.digits);
      }
    }
    EXPECT_LE(text::length(element(card, card::kName)), 50);
  }

  const MapSink& sink_;
  int reference_date_;
  std::set<std::string, std::less<>> towns_;
};

}  // namespace

void check_all_cards(const MapSink& sink) {
  const DbRecord& parameters = sink.files.at("BUDGETPARAM").at("1");
  CardChecker checker(sink, number(parameters(1, parameters.Count(1))));
  for (const auto& [id, card] : sink.files.at("VELANORO")) {
    checker.check(id, card);
    if (testing::Test::HasFailure()) FAIL() << "first bad card: " << id;
  }
}

}  // namespace velanor::demo
