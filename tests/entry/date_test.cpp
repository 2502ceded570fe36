#include "velanor/date.h"

#include <gtest/gtest.h>

namespace velanor::entry {
namespace {

TEST(Date, DaysAreCountedFromTheLastDayOf1967) {
  EXPECT_EQ(day_number({31, 12, 1967}), 0);
  EXPECT_EQ(day_number({1, 1, 1968}), 1);
  EXPECT_EQ(day_number({30, 12, 1967}), -1);
  EXPECT_EQ(day_number({1, 1, 2024}), 20455);
}

TEST(Date, EveryDayOfTenThousandYearsComesBack) {
  const int last = *day_number({31, 12, 9999});
  Date before = date_of(*day_number({1, 1, 1}) - 1);
  for (int day = *day_number({1, 1, 1}); day <= last; ++day) {
    const Date date = date_of(day);
    ASSERT_EQ(day_number(date), day);
    ASSERT_TRUE(date.day == before.day + 1 || date.day == 1) << date_text(date);
    before = date;
  }
}

TEST(Date, DaysThatDoNotExistHaveNoNumber) {
  for (const Date& date :
       {Date{29, 2, 2023}, Date{29, 2, 1900}, Date{31, 4, 2024}, Date{0, 1, 2024}, Date{32, 1, 2024},
        Date{1, 0, 2024}, Date{1, 13, 2024}, Date{1, 1, 0}, Date{1, 1, 10000}, Date{-1, -1, -1}}) {
    SCOPED_TRACE(date_text(date));
    EXPECT_FALSE(day_number(date));
  }
  EXPECT_TRUE(day_number({29, 2, 2000}));
}

TEST(Date, TextIsReadWithShortPartsAndShortYears) {
  const struct {
    const char* text;
    Date date;
  } cases[] = {{"1/2/99", {1, 2, 1999}},       {"01/02/2024", {1, 2, 2024}}, {"31/12/49", {31, 12, 2049}},
               {"1/1/50", {1, 1, 1950}},       {"29/2/2024", {29, 2, 2024}}, {"1/1/00", {1, 1, 2000}},
               {"31/12/9999", {31, 12, 9999}}, {"1/1/0001", {1, 1, 1}}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(parse_date(c.text), c.date);
  }
}

TEST(Date, AnyOtherTextIsNoDate) {
  for (const char* text : {"",           "/",          "//",        "abc",        "1//2",
                           "/1/2",       "1/2/",       "1/2",       "31/02/2024", "29/02/2023",
                           "001/2/2024", "1/002/2024", "1/2/3",     "1/2/123",    "1/2/12345",
                           "1/2/2024/",  "1/2/2024/5", "-1/2/2024", "1/2/+24",    " 1/2/2024",
                           "1/2/2024 ",  "1-2-2024",   "01022024",  "١/٢/٢٠٢٤",   "99999999999/1/2024"}) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(parse_date(text));
  }
}

}  // namespace
}  // namespace velanor::entry
