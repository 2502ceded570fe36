// Runs the saved inputs of the fuzz targets.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "../../fuzz/record_target.h"
#include "../../fuzz/statement_target.h"

namespace velanor::store::fuzz {
namespace {

using Target = void (*)(const std::uint8_t* data, std::size_t size);

int replay(const char* folder, Target target) {
  int inputs = 0;
  for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(VELANOR_TEST_DATA) /
                                                               "../fuzz/corpus" / folder)) {
    SCOPED_TRACE(entry.path().string());
    std::ifstream in(entry.path(), std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
    target(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    ++inputs;
  }
  return inputs;
}

TEST(FuzzCorpus, StatementsRunOrAreRefused) { EXPECT_GT(replay("statement", run_statement), 0); }
TEST(FuzzCorpus, RecordOperationsAgreeWithTheModel) { EXPECT_GT(replay("record", run_record_operations), 0); }

}  // namespace
}  // namespace velanor::store::fuzz
