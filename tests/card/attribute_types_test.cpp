// What does not compile: an attribute that is read as something else than it is.
#include <gtest/gtest.h>

#include <type_traits>

#include "card/record/element.h"

namespace velanor::card {
namespace {

template <typename A>
concept ReadsAsDay = requires(const store::DbRecord& card, const A& attribute) {
  day(card, attribute);
};
template <typename A>
concept ReadsAsFigure = requires(const store::DbRecord& card, const A& attribute) {
  figure(card, attribute);
};
template <typename A>
concept ReadsAsNumber = requires(const store::DbRecord& card, const A& attribute) {
  card(attribute);
}
|| std::is_convertible_v<A, int>;

static_assert(ReadsAsDay<Date>);
static_assert(!ReadsAsDay<Hundredths> && !ReadsAsDay<Code> && !ReadsAsDay<Field>);
static_assert(ReadsAsFigure<Hundredths> && ReadsAsFigure<Thousandths> && ReadsAsFigure<TenThousandths>);
static_assert(!ReadsAsFigure<Date> && !ReadsAsFigure<Text> && !ReadsAsFigure<Flag> && !ReadsAsFigure<Field>);
static_assert(!ReadsAsNumber<Date> && !ReadsAsNumber<Hundredths> && !ReadsAsNumber<Field>);
static_assert(!std::is_convertible_v<Date, Hundredths> && !std::is_convertible_v<Field, Date>);

TEST(Attributes, AreReadInTheirOwnScaleAndAsNothingWhereTheyAreUnreadable) {
  store::DbRecord card;
  set_element(card, kContractStart, "20486");
  set_element(card, kHourlyRate, 2, "12345");
  set_element(card, kItemRate, 1, 2, "n/c");
  EXPECT_EQ(day(card, kContractStart), 20486);
  EXPECT_EQ(figure(card, kHourlyRate, 2), 12345);
  EXPECT_EQ(figure(card, kItemRate, 1, 2), 0);
  EXPECT_EQ(day(card, kContractEnd), 0);
}

}  // namespace
}  // namespace velanor::card
