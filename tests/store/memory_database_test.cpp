#include "store/memory_database.h"

#include <gtest/gtest.h>

namespace velanor::store {
namespace {

TEST(Smoke, Works) {
  MemoryDatabase db;
  DbRecord r;
  for (auto id : {"000010072026", "000020072026", "000030072025", "000040082026"}) {
    r.set(1, std::string("N") + id);
    db.put("VELANORO", id, r);
  }
  auto res = db.Select(DbQuery("SSELECT VELANORO AVEC 0 = \"[0072026\" PAR 1", "VELANORO", "0 1").encoded());
  EXPECT_EQ(res.DCount(), 2);
  EXPECT_EQ(res(1, 1), "000010072026");
  EXPECT_EQ(res(2, 2), "N000020072026");
  auto y = db.Select(DbQuery("SSELECT VELANORO PAR CodeAsso PAR-DECR Annee", "VELANORO", "0").encoded());
  EXPECT_EQ(y.DCount(), 4);
  EXPECT_EQ(y(3), "000030072025");
  EXPECT_EQ(y(4), "000040082026");
}

}  // namespace
}  // namespace velanor::store
