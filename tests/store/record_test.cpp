#include "velanor/record.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <stdexcept>

#include "../../fuzz/record_target.h"
#include "store/notation.h"
#include "velanor/database.h"

namespace velanor::store {
namespace {

TEST(DbRecord, ReadsElementsOfThreeLevelsAndNothingOutsideThem) {
  const DbRecord card = record("MARTIN^a|b~c|^^z");
  struct {
    int attribute, value, subvalue;
    const char* text;
  } const kReads[] = {
      {1, kWhole, kWhole, "MARTIN"},
      {1, 1, 1, "MARTIN"},
      {2, kWhole, kWhole, "a|b~c|"},
      {2, 2, kWhole, "b~c"},
      {2, 2, 1, "b"},
      {2, 2, 2, "c"},
      {2, 3, kWhole, ""},
      {3, 1, 1, ""},
      {4, 1, kWhole, "z"},
      {5, 1, kWhole, ""},
      {2, 4, kWhole, ""},
      {2, 2, 3, ""},
      {0, kWhole, kWhole, ""},
      {-1, 1, 1, ""},
      {2, 0, kWhole, ""},
      {2, 2, 0, ""},
      {2, -2, kWhole, ""},
      {2, 2, -2, ""},
  };
  for (const auto& read : kReads) {
    SCOPED_TRACE(testing::Message() << read.attribute << "," << read.value << "," << read.subvalue);
    EXPECT_EQ(shown(card(read.attribute, read.value, read.subvalue)), read.text);
    EXPECT_EQ(shown(card.Extract(read.attribute, read.value, read.subvalue)), read.text);
  }
}

TEST(DbRecord, CountsWhatIsThereAndNothingInAnEmptyElement) {
  const DbRecord card = record("^a^b||c~d^|");
  EXPECT_EQ(card.DCount(), 4);
  EXPECT_EQ(card.DCount(1), 0);
  EXPECT_EQ(card.DCount(2), 1);
  EXPECT_EQ(card.DCount(3), 3);
  EXPECT_EQ(card.DCount(4), 2);
  EXPECT_EQ(card.DCount(5), 0);
  EXPECT_EQ(card.Count(3, 2), 0);
  EXPECT_EQ(card.Count(3, 3), 2);
  EXPECT_EQ(card.Count(3, 9), 0);
  EXPECT_EQ(DbRecord().DCount(), 0);
}

TEST(DbRecord, WritesChangeOneElementAndLeaveTheOthers) {
  struct {
    const char* before;
    const char* after;
    std::function<void(DbRecord&)> write;
  } const kWrites[] = {
      {"a^b", "a^b^^^x", [](DbRecord& r) { r.set(5, "x"); }},
      {"", "^^x", [](DbRecord& r) { r.set(3, "x"); }},
      {"", "", [](DbRecord& r) { r.set(1, ""); }},
      {"a^b|c^d", "a^x^d", [](DbRecord& r) { r.set(2, "x"); }},
      {"a^b|c^d", "a^b|x^d", [](DbRecord& r) { r.set(2, 2, "x"); }},
      {"a^b", "a^b|||x", [](DbRecord& r) { r.set(2, 4, "x"); }},
      {"a^^c", "a^|x^c", [](DbRecord& r) { r.set(2, 2, "x"); }},
      {"a^b|c^d", "a^b|c~~x^d", [](DbRecord& r) { r.set(2, 2, 3, "x"); }},
      {"a", "a^^|~x", [](DbRecord& r) { r.set(3, 2, 2, "x"); }},
      {"a~b|c", "a~x|c", [](DbRecord& r) { r.set(1, 1, 2, "x"); }},
      {"a^b", "a^b|x", [](DbRecord& r) { r.set(2, kAppend, "x"); }},
      {"a^^c", "a^x^c", [](DbRecord& r) { r.set(2, kAppend, "x"); }},
      {"a", "a^^x", [](DbRecord& r) { r.set(3, kAppend, "x"); }},
      {"a|b", "a|b~x", [](DbRecord& r) { r.set(1, 2, kAppend, "x"); }},
      {"a|", "a|x", [](DbRecord& r) { r.set(1, 2, kAppend, "x"); }},
      {"a", "a|~x", [](DbRecord& r) { r.set(1, kAppend, 2, "x"); }},
      {"a^b", "a^b~x|y", [](DbRecord& r) { r.copy_attribute(2, record("^^b~x|y"), 3); }},
      {"a^b|c", "b|c^b|c", [](DbRecord& r) { r.copy_attribute(1, r, 2); }},
      {"a^bc", "bc^bc", [](DbRecord& r) { r.set(1, r(2)); }},
      {"a|b", "x|a|b", [](DbRecord& r) { r.Insert(1, 1, "x"); }},
      {"a|b", "a|x|b", [](DbRecord& r) { r.Insert(1, 2, "x"); }},
      {"a|b", "a|b|x", [](DbRecord& r) { r.Insert(1, 3, "x"); }},
      {"a|b", "a|b|x", [](DbRecord& r) { r.Insert(1, 9'000'000, "x"); }},
      {"a^b", "a^|b", [](DbRecord& r) { r.Insert(2, 1, ""); }},
      {"a^^c", "a^^c", [](DbRecord& r) { r.Insert(2, 1, ""); }},
      {"a^^c", "a^x^c", [](DbRecord& r) { r.Insert(2, 7, "x"); }},
      {"a", "a^^x", [](DbRecord& r) { r.Insert(3, 2, "x"); }},
      {"a|b~c", "a|x~b~c", [](DbRecord& r) { r.Insert(1, 2, 1, "x"); }},
      {"a|b~c", "a|b~c~x", [](DbRecord& r) { r.Insert(1, 2, 9, "x"); }},
      {"a", "a||x", [](DbRecord& r) { r.Insert(1, 3, 4, "x"); }},
      {"a^b^c", "a^c", [](DbRecord& r) { r.Delete(2); }},
      {"a^b", "a", [](DbRecord& r) { r.Delete(2); }},
      {"a", "", [](DbRecord& r) { r.Delete(1); }},
      {"a|b|c^d", "a|c^d", [](DbRecord& r) { r.Delete(1, 2); }},
      {"a|b^c", "b^c", [](DbRecord& r) { r.Delete(1, 1); }},
      {"a^b^c", "a^^c", [](DbRecord& r) { r.Delete(2, 1); }},
      {"a|b~c~d", "a|b~d", [](DbRecord& r) { r.Delete(1, 2, 2); }},
      {"a|b", "a|b", [](DbRecord& r) { r.Delete(1, 3), r.Delete(4), r.Delete(1, 2, 2), r.Delete(1, 0); }},
  };
  for (const auto& write : kWrites) {
    SCOPED_TRACE(testing::Message() << write.before << " -> " << write.after);
    DbRecord changed = record(write.before);
    write.write(changed);
    EXPECT_EQ(shown(changed), write.after);
    // Reading after a write must not differ from reading the same string afresh.
    const DbRecord fresh = record(write.after);
    ASSERT_EQ(changed.DCount(), fresh.DCount());
    for (int a = 1; a <= fresh.DCount(); ++a) EXPECT_EQ(changed(a), fresh(a));
  }
}

TEST(DbRecord, NumbersThatNameNoElementCannotBeWritten) {
  DbRecord card = record("a^b");
  EXPECT_THROW(card.set(0, "x"), std::out_of_range);
  EXPECT_THROW(card.set(-1, "x"), std::out_of_range);
  EXPECT_THROW(card.set(1, 0, "x"), std::out_of_range);
  EXPECT_THROW(card.set(1, 1, -2, "x"), std::out_of_range);
  EXPECT_THROW(card.Insert(1, 0, "x"), std::out_of_range);
  EXPECT_THROW(card.set(kMaxNumber + 1, "x"), std::out_of_range);
  EXPECT_EQ(shown(card), "a^b");
}

TEST(DbRecord, TextFromOutsideCannotBreakTheStructure) {
  const std::string bad = "\xEF\xBF\xBD";
  const std::pair<std::string, std::string> kTexts[] = {
      {"Élodie Œuvré 😀", "Élodie Œuvré 😀"},
      {"a\xFE"
       "b\xFD"
       "c\xFC"
       "d",
       "a" + bad + "b" + bad + "c" + bad + "d"},
      {std::string("a\0b", 3), "a" + bad + "b"},
      {"\xFF", bad},
      {"\xC0\xAF", bad + bad},                      // overlong
      {"\xED\xA0\x80", bad + bad + bad},            // surrogate
      {"\xF4\x90\x80\x80", bad + bad + bad + bad},  // beyond the last character
      {"\xE2\x82", bad + bad},                      // cut
      {"\xE2\x82\xACx\x80", "€x" + bad},
  };
  for (const auto& [text, clean] : kTexts) {
    SCOPED_TRACE(text);
    EXPECT_EQ(clean_text(text), clean);
    DbRecord card = record("a^b^c");
    card.set(2, text);
    EXPECT_EQ(card.DCount(), 3);
    EXPECT_EQ(card(2), clean);
  }
  EXPECT_EQ(shown(DbRecord::from_encoded("a\xFE\xFF|\xC3^\xC3\xA9")), "a^" + bad + "|" + bad + "^é");
}

TEST(DbRecord, AMegabyteOfValuesIsReadAndWrittenLikeAnyOther) {
  DbRecord card;
  card.set(2, std::string(1 << 20, 'x'));
  std::string values = "v";
  for (int i = 2; i <= 100'000; ++i) values += "|v";
  card.copy_attribute(3, record(values), 1);
  card.Insert(3, 50'000, "here");
  EXPECT_EQ(card.DCount(3), 100'001);
  EXPECT_EQ(card(3, 50'000), "here");
  EXPECT_EQ(card(2).size(), 1u << 20);
}

TEST(DbRecord, RandomOperationsAgreeWithListsOfLists) {
  std::mt19937 random(1967);
  for (int round = 0; round < 3000; ++round) {
    std::vector<std::uint8_t> operations(random() % 120);
    for (auto& byte : operations) byte = static_cast<std::uint8_t>(random());
    fuzz::run_record_operations(operations.data(), operations.size());
  }
}

TEST(DbResult, AnEmptyOneReadsAsNothing) {
  const DbResult none;
  EXPECT_EQ(none.DCount(), 0);
  EXPECT_EQ(none(1, 1), "");
}

TEST(DbQuery, HoldsStatementFileAndAttributes) {
  EXPECT_EQ(shown(DbQuery("SSELECT SECTEUR PAR 1", "SECTEUR", "0 1")), "SSELECT SECTEUR PAR 1^SECTEUR^0 1");
}

}  // namespace
}  // namespace velanor::store
