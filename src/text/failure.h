// What a failure says to the user.
#pragma once

#include <exception>
#include <new>
#include <string>

namespace velanor::text {

inline constexpr const char* kNoMemory =
    "Il n'y a plus assez de mémoire. Fermez d'autres programmes, puis recommencez.";

// The sentence of an error. Those of ours are French; the one of the library that a user meets without a
// fault of the program is told in French too.
inline std::string failure_sentence(const std::exception& error) {
  const bool no_memory = dynamic_cast<const std::bad_alloc*>(&error) != nullptr;
  return no_memory ? kNoMemory : error.what();
}

}  // namespace velanor::text
