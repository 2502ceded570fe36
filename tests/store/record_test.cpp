#include "velanor/record.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <stdexcept>
#include <utility>
#include <vector>

#include "../../fuzz/record_target.h"
#include "store/mark_lists.h"
#include "store/mark_scanner.h"
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

// Bytes with many marks or few, and pieces that end anywhere in a block.
std::string random_encoded(std::mt19937& random, std::size_t size) {
  const unsigned marks = 1 + random() % 12;
  std::string bytes(size, 'x');
  for (char& byte : bytes) {
    if (random() % marks == 0) byte = static_cast<char>(kSubvalueMark + static_cast<int>(random() % 3));
  }
  return bytes;
}

void expect_same_elements(const DbRecord& record, const DbRecord& wanted) {
  ASSERT_EQ(record.encoded(), wanted.encoded());
  ASSERT_EQ(record.DCount(), wanted.DCount());
  for (int a = 0; a <= wanted.DCount() + 1; ++a) {
    ASSERT_EQ(record(a), wanted(a)) << a;
    ASSERT_EQ(record.Count(a), wanted.Count(a)) << a;
    for (int v = 0; v <= wanted.Count(a) + 1; ++v) {
      ASSERT_EQ(record(a, v), wanted(a, v)) << a << "," << v;
      ASSERT_EQ(record.Count(a, v), wanted.Count(a, v)) << a << "," << v;
      for (int s = 0; s <= wanted.Count(a, v) + 1; ++s) ASSERT_EQ(record(a, v, s), wanted(a, v, s));
    }
  }
}

TEST(MarkLists, AreTheSameOnAnyProcessorAndLeaveWhatStandsBehindThem) {
  constexpr std::uint32_t kUntouched = 0xABCDABCD;
  std::mt19937 random(64);
  for (int round = 0; round < 2000; ++round) {
    const std::string bytes = random_encoded(random, random() % 400);
    const std::size_t from = random() % (bytes.size() + 1);
    const Reached behind{static_cast<std::uint32_t>(random() % 5), static_cast<std::uint32_t>(random() % 5),
                         static_cast<std::uint32_t>(random() % 5)};
    std::vector<std::uint32_t> lists[2][3];
    Reached reached[2];
    for (int way = 0; way < 2; ++way) {
      for (auto& list : lists[way]) list.assign(bytes.size() + 30, kUntouched);
      const MarkLists written{lists[way][0].data(), lists[way][1].data(), lists[way][2].data()};
      reached[way] = (way == 0 ? list_elements : list_elements_one_by_one)(bytes, from, behind, written);
    }
    ASSERT_EQ(lists[0][0], lists[1][0]);
    ASSERT_EQ(reached[0].leaf, reached[1].leaf);
    // Written one by one an entry is provisional until the next mark: up to the closing one they agree.
    const std::uint32_t last[] = {reached[0].leaf, reached[0].value, reached[0].attribute};
    for (int list = 0; list < 3; ++list) {
      for (int way = 0; way < 2; ++way) {
        const auto& entries = lists[way][list];
        ASSERT_TRUE(std::equal(entries.begin(), entries.begin() + last[list] + 1, lists[0][list].begin()));
        ASSERT_TRUE(std::all_of(entries.begin() + last[list] + 1, entries.end(),
                                [](std::uint32_t entry) { return entry == kUntouched; }))
            << "list " << list << " way " << way;
      }
    }
  }
}

TEST(MarkScanner, CountsWhatItFinds) {
  std::mt19937 random(5);
  for (int round = 0; round < 500; ++round) {
    const std::string bytes = random_encoded(random, random() % 300);
    const auto from = [&](char lowest) {
      return std::count_if(bytes.begin(), bytes.end(), [&](char byte) { return byte < 0 && byte >= lowest; });
    };
    const MarkCounts counts = count_each_mark(bytes);
    EXPECT_EQ(counts.all, from(kSubvalueMark));
    EXPECT_EQ(counts.values, from(kValueMark));
    EXPECT_EQ(counts.attributes, from(kAttributeMark));
    EXPECT_EQ(count_marks(bytes), counts.all);
  }
}

// Changes anywhere in records of some size, each against the same bytes read afresh.
TEST(DbRecord, ReadsAfterAChangeAsIfItWereReadAfresh) {
  std::mt19937 random(46);
  DbRecord again;
  for (int round = 0; round < 300; ++round) {
    DbRecord changed = DbRecord::from_trusted(random_encoded(random, random() % 600));
    for (int change = 0; change < 12; ++change) {
      const int a = 1 + static_cast<int>(random()) % (changed.DCount() + 2) % 50;
      const auto number = [&] { return 1 + static_cast<int>(random() % 4); };
      const int attribute = std::max(a, 1);
      const std::string text(random() % 20, 'y');
      switch (random() % 6) {
        case 0:
          changed.set(attribute, number(), text);
          break;
        case 1:
          changed.set(attribute, number(), number(), text);
          break;
        case 2:
          changed.Insert(attribute, number(), text);
          break;
        case 3:
          changed.Delete(attribute, random() % 2 == 0 ? static_cast<int>(kWhole) : number());
          break;
        case 4:
          changed.copy_attribute(attribute, DbRecord::from_trusted(random_encoded(random, random() % 80)),
                                 number());
          break;
        default:
          changed.set(attribute, changed(1 + static_cast<int>(random() % 9)));
      }
      expect_same_elements(changed, DbRecord::from_trusted(changed.encoded()));
      again.assign_trusted(changed.encoded());
      expect_same_elements(again, changed);
    }
  }
}

TEST(DbRecord, IsReadIntoCopiedAndMovedWhateverItHeldBefore) {
  const DbRecord kRecords[] = {DbRecord(), record("a"), record("a|b~c^d"), record("^^|~"),
                               record(std::string(5000, '^') + "x")};
  for (const DbRecord& before : kRecords) {
    for (const DbRecord& after : kRecords) {
      DbRecord assigned = before, decoded = before, cleaned = before, moved = before;
      assigned = after;
      expect_same_elements(assigned, after);
      decoded.assign_trusted(after.encoded());
      expect_same_elements(decoded, after);
      cleaned.assign_encoded(after.encoded());
      expect_same_elements(cleaned, after);
      DbRecord source = after;
      moved = std::move(source);
      expect_same_elements(moved, after);
      source = before;
      expect_same_elements(source, before);
    }
  }
  // Also from a view of its own.
  DbRecord own = record("a^b|c~d^e");
  own.assign_trusted(own(2));
  EXPECT_EQ(shown(own), "b|c~d");
  DbRecord foreign;
  foreign.assign_encoded(std::string("a\xFE\xFF") + std::string("b\0", 2));
  EXPECT_EQ(shown(foreign),
            "a^\xEF\xBF\xBD"
            "b\xEF\xBF\xBD");
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
