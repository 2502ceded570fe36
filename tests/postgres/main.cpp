#include <gtest/gtest.h>

#include <iostream>

#include "postgres/server.h"

// One server for all tests of the program, so ctest has them as one.
int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (velanor::store::Server::programs().empty()) {
    std::cout << "Skipped: Debian's package postgresql is not installed.\n";
    constexpr int kSkipped = 77;
    return kSkipped;
  }
  return RUN_ALL_TESTS();
}
