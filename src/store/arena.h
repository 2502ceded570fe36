// Many byte strings packed into few blocks of memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace velanor::store {

// Each string is reached through a slot that its owner keeps at a fixed address, for the arena
// moves strings: a block that holds more than an eighth of waste is emptied into the current one
// and given back. So memory stays near what is stored, whatever was rewritten.
class Arena {
 public:
  struct Slot {
    std::uint32_t block = 0, offset = 0, size = 0;
    bool stored = false;
  };

  Arena() = default;
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;

  // Stores the bytes in place of those that the slot had. They must not lie in the arena.
  void store(Slot& slot, std::string_view bytes);
  void release(Slot& slot);
  // Lives until the next `store` or `release`.
  std::string_view bytes(const Slot& slot) const {
    return {blocks_[slot.block].bytes.get() + slot.offset, slot.size};
  }
  std::size_t allocated() const { return allocated_; }

 private:
  // Stands before the bytes of each string; without an owner they are waste.
  struct Header {
    Slot* owner;
    std::uint32_t capacity;
  };
  struct Block {
    std::unique_ptr<char[]> bytes;
    std::size_t size = 0, used = 0, live = 0;
  };
  static constexpr std::size_t kHeader = sizeof(Slot*) + sizeof(std::uint32_t);

  // `at` is where the bytes of the string start.
  static Header header(const char* at);
  static void set_header(char* at, const Header& header);
  char* address(const Slot& slot) const { return blocks_[slot.block].bytes.get() + slot.offset; }

  void append(Slot& slot, std::string_view bytes);
  std::uint32_t block_with_room(std::size_t needed);
  std::uint32_t new_block(std::size_t size);
  void abandon(const Slot& slot);
  void tidy();
  void tidy(std::uint32_t block);

  std::vector<Block> blocks_;
  // Blocks given back, whose numbers can be used again.
  std::vector<std::uint32_t> unused_;
  // Blocks that may hold too much waste.
  std::vector<std::uint32_t> suspects_;
  // The block that is being filled; not tidied before it is full.
  std::uint32_t current_ = 0;
  std::size_t allocated_ = 0;
};

}  // namespace velanor::store
