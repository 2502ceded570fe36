// A scenario as it was read: its commands in order, with those of the scenarios that it includes.
#pragma once

#include <filesystem>
#include <istream>
#include <string>
#include <vector>

#include "play/command.h"

namespace velanor::play {

struct Step {
  std::string place;   // FILE:LINE
  std::string source;  // the line, without blanks around it
  Command command;
  std::string broken = {};  // why an inclusion could not be made; fails the step
};

// A line that is not of the language is an error, and then nothing is to be played. An included
// file that cannot be read, or that would include itself without end, is a step that fails.
struct Scenario {
  std::vector<Step> steps;
  std::vector<std::string> errors;  // FILE:LINE: what is wrong
};

// Throws std::runtime_error when the file cannot be read.
Scenario read_scenario(const std::filesystem::path& file);
// From a stream that goes by `name`; inclusions are relative to `folder`.
Scenario read_scenario(std::istream& text, const std::string& name, const std::filesystem::path& folder);

}  // namespace velanor::play
