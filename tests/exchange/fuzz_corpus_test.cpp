// Runs the saved inputs of the fuzz targets of what comes from outside as text.
#include <gtest/gtest.h>

#include "../../fuzz/csv_target.h"
#include "../../fuzz/entry_target.h"
#include "../../fuzz/replay.h"
#include "../../fuzz/scenario_target.h"

namespace velanor::store::fuzz {
namespace {

const std::filesystem::path kCorpus = std::filesystem::path(VELANOR_TEST_DATA) / "../fuzz/corpus";

TEST(FuzzCorpus, TablesAreReadAgainFromWhatIsWrittenOfThem) {
  EXPECT_GT(replay(kCorpus / "csv", run_csv), 0);
}
TEST(FuzzCorpus, ScenariosAreReadToTheirEnd) { EXPECT_GT(replay(kCorpus / "scenario", run_scenario), 0); }
TEST(FuzzCorpus, FiguresAndDatesAreUnderstoodAsTheyAreShown) {
  EXPECT_GT(replay(kCorpus / "entry", run_entry), 0);
}

}  // namespace
}  // namespace velanor::store::fuzz
