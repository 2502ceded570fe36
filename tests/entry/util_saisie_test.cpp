#include "velanor/util_saisie.h"

#include <gtest/gtest.h>

#include "entry/typed.h"

namespace velanor::entry {
namespace {

class UtilSaisieTest : public testing::Test {
 protected:
  std::unique_ptr<UtilSaisie> util = make_util_saisie([] { return Date{9, 11, 2025}; });
};

TEST_F(UtilSaisieTest, DatesAreCompletedByTodaysMonthAndYear) {
  const struct {
    const char *typed, *completed;
  } cases[] = {{"5", "05/11/2025"},        {"12", "12/11/2025"},      {"5/3", "05/03/2025"},
               {"1/2/99", "01/02/1999"},   {"1/2/49", "01/02/2049"},  {"1/2/50", "01/02/1950"},
               {"1/2/7", "01/02/2007"},    {"010299", "01/02/1999"},  {"01022024", "01/02/2024"},
               {"1/2/2024", "01/02/2024"}, {"31/2/24", "31/02/2024"}, {"15/03/2024", "15/03/2024"},
               {" 5/3 ", "05/03/2025"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.typed);
    bool refused = true;
    EXPECT_EQ(util->CompleteDate(c.typed, refused), c.completed);
    EXPECT_FALSE(util->DateRefused(refused));
  }
}

TEST_F(UtilSaisieTest, WhatCannotBeCompletedStaysAsTypedAndIsNotRefused) {
  for (const char* typed : {"", "/", "//", "1/", "1//2", "/2/2024", "1/2/", "1/2/123", "123", "1234",
                            "1234567", "123456789", "1/2/3/4", "abc", "1-2-99", "1/2/12345"}) {
    SCOPED_TRACE(typed);
    bool refused = true;
    EXPECT_EQ(util->CompleteDate(typed, refused), typed);
    EXPECT_FALSE(refused);
  }
}

TEST_F(UtilSaisieTest, ACheckedDateIsItsDayNumberTwice) {
  for (const auto& [text, day] : {std::pair{"31/12/1967", "0"},
                                  {"1/2/99", "11355"},
                                  {"01/01/2024", "20455"},
                                  {"01/01/1960", "-2921"},
                                  {"31/02/2024", ""},
                                  {"abc", ""},
                                  {"/", ""},
                                  {"1//2", ""},
                                  {"", ""}}) {
    SCOPED_TRACE(text);
    const CheckedDate checked = util->CheckDate(text);
    EXPECT_EQ(checked.day, day);
    EXPECT_EQ(checked.second, day);
  }
}

TEST_F(UtilSaisieTest, ADayNumberReadsBackAsItsDate) {
  for (const auto& [day, text] : {std::pair{"20455", "01/01/2024"},
                                  {"0", "31/12/1967"},
                                  {"-2921", "01/01/1960"},
                                  {"2933628", "31/12/9999"},
                                  {"2933629", ""},
                                  {"-999999", ""},
                                  {"", ""},
                                  {"12a", ""},
                                  {"1,5", ""},
                                  {"99999999999999", ""}}) {
    SCOPED_TRACE(day);
    EXPECT_EQ(util->InternalToDate(day), text);
  }
}

TEST_F(UtilSaisieTest, ANumberNeverOutgrowsItsIntegerDigits) {
  const auto typed = [&](std::u32string_view keys, int integer_digits) {
    return entry::typed(keys, [&](std::string_view text, char32_t key) {
      return util->FilterNumericKey(text, key, integer_digits);
    });
  };
  EXPECT_EQ(typed(U"123456,78", 4), "1234,78");
  EXPECT_EQ(typed(U"12.5", 5), "12,5");
  EXPECT_EQ(typed(U"1,2.3,4", 5), "1,234");
  EXPECT_EQ(typed(U"-1+2 a\r", 5), "12");
  EXPECT_EQ(typed(U"1234\b\b9", 3), "19");
}

TEST_F(UtilSaisieTest, ColumnsLineUpAndNumbersAreNeverCut) {
  const struct {
    const char* text;
    int integer_digits, decimals;
    const char* column;
  } cases[] = {{"1500", 5, 2, " 1500,00"},      {"2,5", 3, 4, "  2,5000"},         {"0", 3, 4, "  0,0000"},
               {"12345,67", 5, 2, "12345,67"},  {"1234567,8", 5, 2, "1234567,80"}, {"", 5, 2, ""},
               {"1\u202F500", 5, 2, " 1500,00"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(util->FormatColumn(c.text, c.integer_digits, c.decimals), c.column);
  }
  EXPECT_EQ(util->UnformatNumber(" 1500,00"), "1500,00");
  EXPECT_EQ(util->UnformatNumber("\u00A0\u202F 5"), "5");
  EXPECT_EQ(util->UnformatNumber("   "), "");
}

TEST_F(UtilSaisieTest, AnAmountTakesItsDecimals) {
  EXPECT_EQ(util->FormatAmount("12,5", 2, 4), "12,50");
  EXPECT_EQ(util->FormatAmount("123456", 2, 4), "123456,00");
  EXPECT_EQ(util->FormatAmount("2,00005", 4, 3), "2,0001");
  EXPECT_EQ(util->FormatAmount("", 2, 4), "");
  EXPECT_EQ(util->FormatAmount("n/c", 2, 4), "n/c");
}

}  // namespace
}  // namespace velanor::entry
