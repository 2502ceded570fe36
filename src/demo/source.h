// The texts that the demonstration data is made from, embedded into the library.
#pragma once

#include <span>
#include <string_view>

namespace velanor::demo {

struct Source {
  std::string_view name;  // path under data/, such as "reference/SECTEUR.csv"
  std::string_view text;
};

// All of them, by name in ascending order. They live as long as the program.
std::span<const Source> sources();
// The text of one; throws std::out_of_range for a name that is not there.
std::string_view source(std::string_view name);

}  // namespace velanor::demo
