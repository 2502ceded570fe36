#include "entry/key_filters.h"

#include <gtest/gtest.h>

#include "entry/typed.h"

namespace velanor::entry {
namespace {

TEST(KeyFilters, AnySeparatorBecomesASlashInADate) {
  const auto date = [](std::string_view, char32_t key) { return filter_date_key(key); };
  EXPECT_EQ(typed(U"15-03-2024", date), "15/03/2024");
  EXPECT_EQ(typed(U"1.2 99", date), "1/2/99");
  EXPECT_EQ(typed(U"1x\b2", date), "12");
  EXPECT_EQ(filter_date_key(13), U'/') << "Enter too";
  EXPECT_EQ(filter_date_key(U'٣'), U'/');
}

TEST(KeyFilters, ADecimalHasOneComma) {
  EXPECT_EQ(typed(U"12.5", filter_decimal_key), "12,5");
  EXPECT_EQ(typed(U"1,2,3.4", filter_decimal_key), "1,234");
  EXPECT_EQ(typed(U"-1 0e2\r\t", filter_decimal_key), "102");
  EXPECT_EQ(typed(U"1,\b.5", filter_decimal_key), "1,5");
}

TEST(KeyFilters, ACategoryIsMadeOfPlainLetters) {
  const auto letter = [](std::string_view, char32_t key) { return filter_letter_key(key); };
  EXPECT_EQ(typed(U"aZ@[`{é1 \r", letter), "aZ");
  EXPECT_EQ(filter_letter_key(9), U'\t') << "Tab must leave the box";
  EXPECT_EQ(filter_letter_key(8), U'\b');
}

TEST(KeyFilters, ACodeIsMadeOfDigits) {
  const auto code = [](std::string_view, char32_t key) { return filter_code_key(key); };
  EXPECT_EQ(typed(U"0a1,2\r.\b9/:", code), "019");
}

}  // namespace
}  // namespace velanor::entry
