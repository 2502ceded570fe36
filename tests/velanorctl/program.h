// The built program, from outside.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "sqlite/temporary_folder.h"
#include "support/run_program.h"

namespace velanor::app {

using test::Outcome;

class CommandLine : public testing::Test {
 protected:
  // Both outputs together.
  Outcome run(const std::string& arguments, const std::string& as = "") const {
    return test::run_program("cd '" + folder_.file("") + "' && " + as + VELANORCTL " " + arguments);
  }
  void write(const std::string& name, const std::string& text) const {
    std::ofstream(folder_.file(name)) << text;
  }

  TemporaryFolder folder_;
};

}  // namespace velanor::app
