// The saved inputs of a target, for the tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace velanor::store::fuzz {

using Target = void (*)(const std::uint8_t* data, std::size_t size);

// Runs a target on every file of a folder. How many there were.
inline int replay(const std::filesystem::path& folder, Target target) {
  int inputs = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    std::ifstream in(entry.path(), std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
    target(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    ++inputs;
  }
  return inputs;
}

}  // namespace velanor::store::fuzz
