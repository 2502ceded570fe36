#include "store/checksum.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

namespace velanor::store {
namespace {

// The vectors of RFC 3720, B.4, and the check value of the catalogues.
TEST(Checksum, IsCrc32cAsItIsPublished) {
  std::string ascending, descending;
  for (int n = 0; n < 32; ++n) {
    ascending += static_cast<char>(n);
    descending += static_cast<char>(31 - n);
  }
  EXPECT_EQ(crc32c(""), 0u);
  EXPECT_EQ(crc32c("123456789"), 0xE3069283u);
  EXPECT_EQ(crc32c(std::string(32, '\0')), 0x8A9136AAu);
  EXPECT_EQ(crc32c(std::string(32, '\xFF')), 0x62A8AB43u);
  EXPECT_EQ(crc32c(ascending), 0x46DD794Eu);
  EXPECT_EQ(crc32c(descending), 0x113FDB5Cu);
}

TEST(Checksum, GoesOnWhereAnEarlierCallStopped) {
  const std::string text = "Fiche du personnel, avenant du 01/01/2026";
  for (std::size_t cut = 0; cut <= text.size(); ++cut)
    EXPECT_EQ(crc32c(text.substr(cut), crc32c(text.substr(0, cut))), crc32c(text)) << cut;
}

TEST(Checksum, IsTheSameWithAndWithoutTheInstructionOfTheProcessor) {
  std::mt19937 random(1);
  std::string bytes(300, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random());
  for (std::size_t from = 0; from < 9; ++from) {
    for (std::size_t size = 0; from + size <= bytes.size(); ++size) {
      const std::string_view text = std::string_view(bytes).substr(from, size);
      ASSERT_EQ(crc32c(text, 0xABCDu), crc32c_by_tables(text, 0xABCDu)) << from << " " << size;
    }
  }
}

}  // namespace
}  // namespace velanor::store
