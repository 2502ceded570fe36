#include "entry/decimal.h"

#include <gtest/gtest.h>

#include <limits>

#include "entry/amount.h"

namespace velanor::entry {
namespace {

TEST(Decimal, NumbersAreReadAndRoundedHalfAwayFromZero) {
  const struct {
    const char* text;
    int decimals;
    std::int64_t value;
  } cases[] = {
      {"12,345", 2, 1235},
      {"12.344", 2, 1234},
      {"-12,345", 2, -1235},
      {"0,005", 2, 1},
      {"0,004999999999999999999999", 2, 0},
      {"999,995", 2, 100000},
      {"+7", 2, 700},
      {",5", 2, 50},
      {"5,", 2, 500},
      {"00012", 0, 12},
      {"0,5", 0, 1},
      {"1 500,00", 2, 150000},
      {" 12 ", 2, 1200},
      {"1\u00A0500,25", 2, 150025},
      {"\u202F1\u202F234\u202F567,8\u00A0", 2, 123456780},
      {"999999999999999", 2, 99999999999999900},
      {"00000000000000000000001", 2, 100},
      {"-0", 2, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(parse_decimal(c.text, c.decimals), c.value);
  }
}

TEST(Decimal, OtherTextsAreNoNumbers) {
  for (const char* text :
       {"",    " ",  ",",   ".",    "-",    "+,",    "1,2,3", "1.500,00",         "12a", "a12", "1e5",
        "--1", "1-", "- 1", "1 ,5", "1, 5", "1,5 6", "0x10",  "1000000000000000", "∞",   "½",   "inf"}) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(parse_decimal(text, 2));
  }
  EXPECT_FALSE(parse_decimal("999999999999999", 4)) << "does not fit in 64 bits";
}

TEST(Decimal, NumbersAreWrittenWithTheDecimalsAskedFor) {
  const struct {
    std::int64_t value;
    int scale, decimals;
    const char* text;
  } cases[] = {{1235, 2, 2, "12,35"},
               {5, 2, 2, "0,05"},
               {-5, 2, 2, "-0,05"},
               {0, 2, 2, "0,00"},
               {12345, 4, 2, "1,23"},
               {12350, 4, 2, "1,24"},
               {-12350, 4, 2, "-1,24"},
               {-49, 4, 2, "0,00"},
               {-50, 4, 2, "-0,01"},
               {7, 0, 2, "7,00"},
               {1235, 2, 0, "12"},
               {1250, 2, 0, "13"},
               {99995, 4, 3, "10,000"},
               {125000, 4, 4, "12,5000"},
               {std::numeric_limits<std::int64_t>::min(), 2, 2, "-92233720368547758,08"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(format_decimal(c.value, c.scale, c.decimals), c.text);
  }
}

TEST(Decimal, APatternKeepsWhatIsNoNumber) {
  EXPECT_EQ(format_pattern("12,5", 2), "12,50");
  EXPECT_EQ(format_pattern("9,9995", 3), "10,000");
  EXPECT_EQ(format_pattern("1 500", 2), "1500,00");
  EXPECT_EQ(format_pattern("", 2), "");
  EXPECT_EQ(format_pattern("douze", 2), "douze");
  EXPECT_EQ(format_pattern("12345,", 2), "12345,00") << "a value cut at its comma is still a number";
}

TEST(Decimal, StoredNumbersComeBackUnchanged) {
  const struct {
    const char* stored;
    int scale;
    const char* text;
  } cases[] = {{"15167", 2, "151,67"}, {"0", 2, "0,00"}, {"12345", 3, "12,345"}, {"", 2, ""}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.stored);
    EXPECT_EQ(stored_to_text(c.stored, c.scale, c.scale), c.text);
    EXPECT_EQ(text_to_stored(c.text, c.scale), c.stored);
  }
  EXPECT_EQ(stored_to_text("n/c", 2, 2), "n/c") << "what cannot be read is shown";
}

TEST(Decimal, NothingButAWholeNumberIsEverStored) {
  for (const char* text : {",", "", " ", "n/c", "1,2,3", "-", "12 euros"})
    EXPECT_EQ(text_to_stored(text, 2), "") << text;
}

TEST(Amount, IsTheProductRoundedHalfUpToTheCent) {
  const struct {
    const char *base, *rate, *amount;
  } cases[] = {{"10,00", "1,2345", "12,35"},
               {"1500,00", "2,5000", "3750,00"},
               {"  12,50", "  0,0000", "0,00"},
               {"1,00", "0,0049", "0,00"},
               {"1,00", "0,0050", "0,01"},
               {"0,01", "0,4999", "0,00"},
               {"0,35", "0,1000", "0,04"},
               {"1,15", "0,1000", "0,12"},
               {"99999,99", "999,9999", "99999980,00"},
               {"-1,00", "0,0050", "0,00"},
               {"-1,00", "0,0051", "-0,01"},
               {"1 500,00", "2", "3000,00"},
               {"", "1,0000", ""},
               {"1,00", "", ""},
               {"dix", "1,0000", ""},
               {"999999999999", "999999", ""}};
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.base) + " x " + c.rate);
    EXPECT_EQ(amount_of(c.base, c.rate), c.amount);
  }
}

}  // namespace
}  // namespace velanor::entry
