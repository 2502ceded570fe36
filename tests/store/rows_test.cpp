#include "store/rows.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "velanor/query.h"

namespace velanor::store {
namespace {

RowBlock block(bool starts_with_id) {
  RowBlock rows(starts_with_id);
  for (int i = 0; i < 20; ++i) {
    const std::string id = "id" + std::to_string(100 + i);
    const std::string text = starts_with_id ? id + kValueMark + "Étienne" : "Étienne";
    rows.add(id, text, "key" + std::to_string(i / 5));
  }
  return rows;
}

TEST(RowBlock, IsReadAgainAsItWasWritten) {
  std::string bytes;
  block(true).save(bytes);
  block(false).save(bytes);
  std::string_view rest = bytes;
  for (const bool starts_with_id : {true, false}) {
    const auto read = RowBlock::load(rest);
    ASSERT_TRUE(read);
    const RowBlock written = block(starts_with_id);
    ASSERT_EQ(read->size(), written.size());
    for (std::size_t row = 0; row < written.size(); ++row) {
      EXPECT_EQ(read->id(row), written.id(row));
      EXPECT_EQ(read->text(row), written.text(row));
      EXPECT_EQ(read->key(row), written.key(row));
    }
  }
  EXPECT_TRUE(rest.empty());
}

// Bytes of a file that somebody may have written: whatever is taken can be read without leaving it.
TEST(RowBlock, TakesNoPlaceOutsideOfItself) {
  std::mt19937 random(5);
  std::string whole;
  block(true).save(whole);
  int taken = 0;
  for (int round = 0; round < 20'000; ++round) {
    std::string bytes = whole.substr(0, random() % 4 == 0 ? random() % whole.size() : whole.size());
    for (unsigned i = random() % 4; i > 0 && !bytes.empty(); --i)
      bytes[random() % bytes.size()] = static_cast<char>(random() % 2 == 0 ? random() : 0);
    std::string_view rest = bytes;
    const auto read = RowBlock::load(rest);
    if (!read) continue;
    ++taken;
    std::size_t size = 0;
    for (std::size_t row = 0; row < read->size(); ++row)
      size += read->id(row).size() + read->text(row).size() + read->key(row).size() + read->key_end(row);
    EXPECT_LT(size, 100'000u);
    read->find("id119");
    read->lower_bound("key2", "id110");
  }
  EXPECT_GT(taken, 1000);
  EXPECT_LT(taken, 19'000);
}

TEST(DbResult, OfAHostsOwnRowsReadsLikeTheRecordAndTakesNoRowsTogether) {
  DbRecord rows;
  for (const int row : {1, 2, 4}) {
    rows.set(row, 1, "same");
    rows.set(row, 2, 2, "b" + std::to_string(row));
  }
  const DbResult result(std::make_shared<const DbRecord>(rows));
  ASSERT_EQ(result.DCount(), 4);
  for (int row = -1; row <= 5; ++row) {
    EXPECT_EQ(result(row), rows(row));
    for (int field = -1; field <= 3; ++field) {
      for (int value = -1; value <= 3; ++value) EXPECT_EQ(result(row, field, value), rows(row, field, value));
    }
  }
  for (int row = 1; row <= 4; ++row) EXPECT_EQ(result.run_end(row), row + 1);
  EXPECT_EQ(DbResult(std::make_shared<const DbRecord>(), 1).DCount(), 1);
  EXPECT_EQ(DbResult().run_end(1), 1);
}

}  // namespace
}  // namespace velanor::store
