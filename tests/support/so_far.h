// What a test that measures tells beside its figures.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <string>

namespace velanor::test {

// ", 3.2 s": how long the test has been running. Nothing is judged by it.
inline std::string so_far() {
  using std::chrono::duration_cast, std::chrono::milliseconds, std::chrono::system_clock;
  const auto now = duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
  const auto start = testing::UnitTest::GetInstance()->current_test_info()->result()->start_timestamp();
  char text[32];
  std::snprintf(text, sizeof text, ", %.1f s", static_cast<double>(now - start) / 1000);
  return text;
}

}  // namespace velanor::test
