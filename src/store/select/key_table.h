// Numbers the distinct keys of a sort.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velanor::store::select {

// The first eight bytes of a key as a number of the same order; short ones as if NUL bytes followed.
std::uint64_t packed_prefix(std::string_view key);

class KeyTable {
 public:
  // The number of a key, from 0 in the order of their first use.
  std::uint32_t number_of(std::string_view key);
  // Lives until the next `number_of`.
  std::string_view key(std::uint32_t number) const;
  std::size_t size() const { return ends_.size(); }
  // Key numbers in ascending byte order of the keys.
  std::vector<std::uint32_t> sorted() const;

 private:
  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t number_plus_one = 0;
  };

  struct Entry {
    std::uint64_t prefix = 0;
    std::uint32_t number = 0;
  };
  // By what follows the first `depth` bytes, which are the same in all.
  void sort(std::span<Entry> entries, std::size_t depth) const;
  std::size_t free_slot(std::uint32_t hash) const;
  void grow();

  // Open addressing; a power of two, at most half full.
  std::vector<Slot> slots_ = std::vector<Slot>(64);
  std::string keys_;
  std::vector<std::size_t> ends_;
};

}  // namespace velanor::store::select
