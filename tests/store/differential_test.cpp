// The engine with its plans and what it keeps, against the plainest reading of a statement over all
// records: random records, random statements.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "store/plain_selection.h"
#include "velanor/memory_database.h"

namespace velanor::store {
namespace {

using namespace plain;

TEST(Differential, PlannedSelectionsFindWhatALookAtEveryRecordFinds) {
  Dice dice(2026);
  MemoryDatabase database;
  int rows_found = 0;
  for (int round = 0; round < 6000; ++round) {
    // Most writes change nothing that a kept result or an index could notice, some do.
    if (dice.one_in(2)) database.put("F", dice.id(), dice.card());
    if (dice.one_in(8)) database.remove("F", dice.id());
    std::vector<Card> cards;
    database.for_each("F", [&](std::string_view id, const DbRecord& card) { cards.emplace_back(id, card); });
    const PlainStatement plain = dice.statement();
    const std::string statement = written(plain);
    SCOPED_TRACE(statement);
    const DbResult result = database.Select(DbQuery(statement, "F", "0").encoded());
    std::vector<std::string> found;
    for (int i = 1; i <= result.DCount(); ++i) found.emplace_back(result(i));
    ASSERT_EQ(found, selected(plain, cards));
    rows_found += result.DCount();
  }
  EXPECT_GT(rows_found, 10'000) << "statements that find nothing compare nothing";
}

}  // namespace
}  // namespace velanor::store
