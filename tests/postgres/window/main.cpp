#include <gtest/gtest.h>

#include <QApplication>
#include <iostream>

#include "postgres/server.h"

// One server for all tests of the program, so ctest has them as one.
int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleTest(&argc, argv);
  if (velanor::store::Server::programs().empty()) {
    std::cout << "Skipped: Debian's package postgresql is not installed.\n";
    constexpr int kSkipped = 77;
    return kSkipped;
  }
  QApplication application(argc, argv);
  QCoreApplication::setApplicationName("velanor");
  return RUN_ALL_TESTS();
}
