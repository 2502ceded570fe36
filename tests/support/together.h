// Several programs at work at the same time.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <exception>
#include <iostream>

namespace velanor::test {

// Runs `work(n)` in `count` processes, n from 0; the sum of what they return.
template <class Work>
int together(int count, Work work) {
  constexpr int kFailed = -1'000'000;
  int ends[2];
  EXPECT_EQ(pipe(ends), 0);
  for (int n = 0; n < count; ++n) {
    if (fork() != 0) continue;
    int done = kFailed;
    try {
      done = work(n);
    } catch (const std::exception& error) {
      std::cerr << error.what() << "\n";
    }
    _exit(write(ends[1], &done, sizeof done) == sizeof done ? 0 : 1);
  }
  // One that dies without a word is not waited for.
  close(ends[1]);
  int sum = 0;
  for (int n = 0; n < count; ++n) {
    int done = kFailed;
    EXPECT_EQ(read(ends[0], &done, sizeof done), static_cast<ssize_t>(sizeof done));
    sum += done;
  }
  while (wait(nullptr) > 0) continue;
  close(ends[0]);
  return sum;
}

}  // namespace velanor::test
