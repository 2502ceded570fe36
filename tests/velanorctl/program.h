// The built program, from outside.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <string>

#include "sqlite/temporary_folder.h"

namespace velanor::app {

struct Outcome {
  int status;
  std::string output;
};

class CommandLine : public testing::Test {
 protected:
  // Both outputs together.
  Outcome run(const std::string& arguments, const std::string& as = "") const {
    const std::string command =
        "cd '" + folder_.file("") + "' && " + as + VELANORCTL " " + arguments + " 2>&1";
    std::FILE* pipe = popen(command.c_str(), "r");
    std::string output;
    std::array<char, 4096> buffer;
    while (const auto size = std::fread(buffer.data(), 1, buffer.size(), pipe))
      output.append(buffer.data(), size);
    return {WEXITSTATUS(pclose(pipe)), output};
  }
  void write(const std::string& name, const std::string& text) const {
    std::ofstream(folder_.file(name)) << text;
  }

  TemporaryFolder folder_;
};

}  // namespace velanor::app
