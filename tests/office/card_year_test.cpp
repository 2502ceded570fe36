// The year of a card: day-exact hours, and what is told of months that are not whole.
#include "office/card_year.h"

#include <gtest/gtest.h>

#include "app/velanorctl/open_store.h"
#include "office/card_reading.h"
#include "office/hours.h"
#include "velanor/date.h"

namespace velanor::office {
namespace {

std::string day(int d, int m, int y) { return std::to_string(*entry::day_number({d, m, y})); }

// Of administrative staff, at an establishment of 151,67 hours.
class YearOfACard : public testing::Test {
 protected:
  YearOfACard() {
    card_.set(2, "15167");
    card_.set(7, "A");
    card_.set(8, day(1, 3, 2020));
  }
  void amend(int line, const std::string& from, const char* hours, const char* rate = "12345") {
    card_.set(12, line, from);
    card_.set(17, line, rate);
    card_.set(18, line, hours);
  }
  CardYear year(int of = 2026) const { return year_of(reading_.draft(card_), of); }
  // Days, amendment, hours, full time and pay of a month from 1.
  std::string month(int number, int of = 2026) const {
    const CardYear all = year(of);
    std::string text;
    for (std::size_t line = 0; line < kYearLines.size(); ++line)
      text += (line > 0 ? "; " : "") + text_of(all, YearLine(line), number - 1);
    return text;
  }

  std::unique_ptr<store::Database> database_ = app::open_store({"", true});
  CardReading reading_{*database_};
  store::DbRecord card_;
};

TEST_F(YearOfACard, IsTheSameEveryMonthWhereNothingHappens) {
  amend(1, day(1, 3, 2020), "15167");
  EXPECT_EQ(month(1), "; 01/03/2020; 151,67; 1,00; 12,345");
  EXPECT_EQ(month(12), month(1));
  EXPECT_EQ(total_of(year(), YearLine::kHours), "1820,04");
  EXPECT_EQ(total_of(year(), YearLine::kFullTime), "1,00");
  EXPECT_EQ(remark(year()), "");
}

// 14 days of 151,67 and 17 of 100,00 in 31: 123,3348….
TEST_F(YearOfACard, WeighsTheDaysOfAMonthThatTwoAmendmentsShare) {
  amend(1, day(1, 3, 2020), "15167");
  amend(2, day(15, 3, 2026), "10000", "13000");
  EXPECT_EQ(month(2), "; 01/03/2020; 151,67; 1,00; 12,345");
  EXPECT_EQ(month(3), "1–14 | 15–31; 01/03/2020 → 15/03/2026; 123,33; 0,81; 12,345 → 13,000");
  EXPECT_EQ(month(4), "; 15/03/2026; 100,00; 0,66; 13,000");
  EXPECT_EQ(total_of(year(), YearLine::kHours), "1326,67") << "the sum of the months as they are shown";
  EXPECT_EQ(said(year(), 2),
            "Mars 2026 : du 1 au 14, avenant du 01/03/2020, 151,67 heures par mois, 12,345 ; du 15 au 31, "
            "avenant du 15/03/2026, 100,00 heures par mois, 13,000 ; en tout 123,33 heures, ETP 0,81.");
}

// February of a leap year has 29 days.
TEST_F(YearOfACard, CountsTheDaysOfTheContractAlone) {
  card_.set(8, day(11, 2, 2028));
  card_.set(23, day(1, 6, 2028));
  amend(1, day(11, 2, 2028), "14500");
  EXPECT_EQ(month(1, 2028), "hors contrat; ; ; ; ");
  EXPECT_EQ(month(2, 2028), "11–29; 11/02/2028; 95,00; 0,63; 12,345");
  EXPECT_EQ(month(6, 2028), "1; 11/02/2028; 4,83; 0,03; 12,345");
  EXPECT_EQ(month(7, 2028), "hors contrat; ; ; ; ");
  EXPECT_EQ(total_of(year(2028), YearLine::kHours), "534,83");
  EXPECT_EQ(total_of(year(2028), YearLine::kFullTime), "0,29");
  EXPECT_EQ(year(2028).days_without_hours, 0);
}

TEST_F(YearOfACard, TellsTheDaysThatItsSumsLack) {
  amend(1, day(16, 1, 2026), "15167");
  amend(2, day(1, 2, 2026), "");
  amend(3, day(1, 3, 2026), "99999999999999");
  amend(4, day(1, 4, 2026), ",");
  EXPECT_EQ(month(1), "16–31; 16/01/2026; 78,28; 0,52; 12,345");
  EXPECT_EQ(month(2), "; 01/02/2026; ; ; 12,345");
  EXPECT_EQ(month(3), "; 01/03/2026; ; ; 12,345");
  EXPECT_EQ(remark(year()), "Sans heures : 349 jours du contrat.");
  EXPECT_EQ(month(5, 2025), "sans avenant; ; ; ; ");
}

TEST_F(YearOfACard, TakesTheHoursOfProductionStaffFromTheirItemsAndTheGridWhereThereIsNoRate) {
  const auto stored = reading_.file(control::File::kCards).find("000010012026");
  const CardYear huet = year_of(reading_.draft(*stored), 2026);
  EXPECT_EQ(text_of(huet, YearLine::kHours, 0), "100,10");
  EXPECT_EQ(text_of(huet, YearLine::kFullTime, 0), "0,66");
  EXPECT_EQ(text_of(huet, YearLine::kPay, 0), reading_.draft(*stored).shown(card::kGrid, 2));
  EXPECT_NE(text_of(huet, YearLine::kPay, 0), "");
}

TEST_F(YearOfACard, CalculatesBetweenHoursAndPercent) {
  EXPECT_EQ(percent_of(10400, 15167), 6857);
  EXPECT_EQ(hours_of(6857, 15167), 10400);
  EXPECT_EQ(percent_of(0, 15167), 0);
  EXPECT_EQ(budget_year("20x6"), std::nullopt);
  EXPECT_EQ(budget_year("0"), std::nullopt);
}

}  // namespace
}  // namespace velanor::office
