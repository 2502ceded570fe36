// A disk that brings back other bytes than it was given.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>

#include "sqlite/snapshot.h"
#include "sqlite/temporary_folder.h"
#include "support/so_far.h"

namespace velanor::store {
namespace {

namespace fs = std::filesystem;

std::string bytes_of(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

std::string a_base(const std::string& path) {
  {
    SqliteDatabase base(path, {.missing = SqliteDatabase::Missing::kCreate});
    base.history()->set_author("paul");
    base.in_one_change([&] {
      for (int n = 0; n < 120; ++n)
        base.put(n % 3 == 0 ? "COMMUNES" : "VELANORO", "0000" + std::to_string(n),
                 record("name^" + std::string(static_cast<std::size_t>(n * 13 % 900), 'x') + "|" +
                        std::to_string(n)));
    });
    for (int n = 0; n < 40; ++n) base.put("VELANORO", "0000" + std::to_string(n * 3 + 1), record("second"));
    for (int n = 0; n < 10; ++n) base.OpenFile("COMMUNES")->DeleteRecord("0000" + std::to_string(n * 3));
  }
  return bytes_of(path);
}

// All that is asked of a base: by id, by the beginning and the end of ids, by content.
std::string answers(SqliteDatabase& base) {
  std::string text = snapshot(base);
  for (const char* statement :
       {"SSELECT VELANORO AVEC 0 = \"[7\" PAR 1", "SSELECT VELANORO AVEC 0 = \"00001]\"",
        "SSELECT VELANORO AVEC 1 = \"second\""}) {
    const DbResult found = base.Select(DbQuery(statement, "VELANORO", "0 1 2").encoded());
    for (int i = 1; i <= found.DCount(); ++i) text += shown(found(i)) + "\n";
  }
  return text;
}

enum class Finding { kToldByReading, kToldByCheck, kHarmless, kWrong };

Finding judge(const std::string& path, const std::string& expected) {
  std::string found;
  bool told = false;
  try {
    SqliteDatabase base(path);
    found = answers(base);
    told = !base.damages().empty() || !base.disagreements().empty() || !base.damaged_records().empty();
  } catch (const DbError&) {
    return Finding::kToldByReading;
  }
  if (told) return Finding::kToldByCheck;
  return found == expected ? Finding::kHarmless : Finding::kWrong;
}

class ChangedFile : public testing::Test {
 protected:
  Finding judge_changed(const std::string& bytes) {
    for (const auto& entry : fs::directory_iterator(folder_.file(""))) fs::remove(entry.path());
    std::ofstream(path_, std::ios::binary) << bytes;
    return judge(path_, expected_);
  }
  void SetUp() override {
    original_ = a_base(path_);
    SqliteDatabase base(path_);
    expected_ = answers(base);
  }

  TemporaryFolder folder_{TemporaryFolder::On::kMemory};
  std::string path_ = folder_.file("base");
  std::string original_, expected_;
};

TEST_F(ChangedFile, EveryByteThatIsFlippedIsToldOrDoesNoHarm) {
  const int flips = long_tests() ? 50'000 : 500;
  std::mt19937 random(5);
  int counts[4] = {};
  for (int n = 0; n < flips; ++n) {
    std::string bytes = original_;
    // A tenth in the first page, which holds the header and the schema.
    const std::size_t at = random() % (n % 10 == 0 ? 4096 : bytes.size());
    const char flipped = static_cast<char>(bytes[at] ^ (1 + random() % 255));
    bytes[at] = flipped;
    const Finding finding = judge_changed(bytes);
    ++counts[static_cast<int>(finding)];
    EXPECT_NE(finding, Finding::kWrong)
        << "byte " << at << " of " << bytes.size() << ": " << static_cast<int>(original_[at]) << " to "
        << static_cast<int>(flipped);
  }
  std::cout << "flipped bytes: " << flips << ", " << counts[0] << " told by reading, " << counts[1]
            << " told by check, " << counts[2] << " harmless, " << counts[3] << " wrong" << test::so_far()
            << "\n";
}

TEST_F(ChangedFile, AFileThatIsCutOffAtAnyPageIsTold) {
  int told = 0;
  for (std::size_t size = 4096; size < original_.size(); size += 4096) {
    const Finding finding = judge_changed(original_.substr(0, size));
    EXPECT_TRUE(finding == Finding::kToldByReading || finding == Finding::kToldByCheck) << size;
    ++told;
  }
  std::cout << "cut off: " << told << " lengths, each told" << test::so_far() << "\n";
}

}  // namespace
}  // namespace velanor::store
