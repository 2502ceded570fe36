// Runs the saved inputs of the fuzz targets of the store.
#include <gtest/gtest.h>

#include "../../fuzz/record_target.h"
#include "../../fuzz/replay.h"
#include "../../fuzz/statement_target.h"

namespace velanor::store::fuzz {
namespace {

const std::filesystem::path kCorpus = std::filesystem::path(VELANOR_TEST_DATA) / "../fuzz/corpus";

TEST(FuzzCorpus, StatementsRunOrAreRefused) { EXPECT_GT(replay(kCorpus / "statement", run_statement), 0); }
TEST(FuzzCorpus, RecordOperationsAgreeWithTheModel) {
  EXPECT_GT(replay(kCorpus / "record", run_record_operations), 0);
}

}  // namespace
}  // namespace velanor::store::fuzz
