// A program from outside.
#pragma once

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <string>

namespace velanor::test {

struct Outcome {
  int status;
  std::string output;
};

// Runs a command of the shell; both outputs together.
inline Outcome run_program(const std::string& command) {
  std::FILE* pipe = popen(("{ " + command + "; } 2>&1 </dev/null").c_str(), "r");
  std::string output;
  std::array<char, 4096> buffer;
  while (const auto size = std::fread(buffer.data(), 1, buffer.size(), pipe))
    output.append(buffer.data(), size);
  return {WEXITSTATUS(pclose(pipe)), output};
}

}  // namespace velanor::test
