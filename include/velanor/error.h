// The one error of the record store. It ends the operation in progress and reaches the host.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace velanor::store {

// Number of the error for a record that does not exist (the only one that callers test for).
inline constexpr std::uint32_t kMissingRecord = 0x8004000B;
// Number of every other failure: its sentence says what happened and what to do.
inline constexpr std::uint32_t kStoreFailure = 0x80040001;
// Number of a selection statement that is not of the language.
inline constexpr std::uint32_t kBadStatement = 0x80040002;

// Number of a write that found under its id something else than it expected; nothing was written.
inline constexpr std::uint32_t kConflict = 0x80040003;
// Number of what a database of its kind cannot do at all.
inline constexpr std::uint32_t kNotOffered = 0x80040004;

class DbError : public std::runtime_error {
 public:
  DbError(std::uint32_t number, const std::string& sentence)
      : std::runtime_error(sentence), number_(number) {}
  std::uint32_t number() const { return number_; }

 private:
  std::uint32_t number_;
};

}  // namespace velanor::store
