// Any bytes as a scenario: read to its end, each fault under its line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "check.h"
#include "play/scenario.h"

namespace velanor::store::fuzz {

inline void run_scenario(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  // Files are not the business of this.
  if (text.find("include") != std::string::npos) return;
  std::istringstream in(text);
  const play::Scenario scenario = play::read_scenario(in, "f", "/nowhere");
  for (const std::string& error : scenario.errors) FUZZ_CHECK(error.starts_with("f:"));
}

}  // namespace velanor::store::fuzz
