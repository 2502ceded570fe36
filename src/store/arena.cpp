#include "store/arena.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace velanor::store {
namespace {

// A little below a power of two, which leaves room for the allocator's own bytes.
constexpr std::size_t kLargestBlock = (1u << 20) - 64;
constexpr std::size_t kSmallestBlock = 4096 - 64;
// A longer string gets a block of its own, lest it closes one that has room for many others.
constexpr std::size_t kLongString = kLargestBlock / 8;

}  // namespace

Arena::Header Arena::header(const char* at) {
  Header header;
  std::memcpy(&header.owner, at - kHeader, sizeof header.owner);
  std::memcpy(&header.capacity, at - sizeof header.capacity, sizeof header.capacity);
  return header;
}

void Arena::set_header(char* at, const Header& header) {
  std::memcpy(at - kHeader, &header.owner, sizeof header.owner);
  std::memcpy(at - sizeof header.capacity, &header.capacity, sizeof header.capacity);
}

void Arena::store(Slot& slot, std::string_view bytes) {
  if (!slot.stored) {
    append(slot, bytes);
  } else if (bytes.size() <= header(address(slot)).capacity) {
    std::copy(bytes.begin(), bytes.end(), address(slot));
    blocks_[slot.block].live += bytes.size() - slot.size;
    slot.size = static_cast<std::uint32_t>(bytes.size());
    suspects_.push_back(slot.block);
  } else {
    const Slot old = slot;
    append(slot, bytes);
    abandon(old);
  }
  tidy();
}

void Arena::release(Slot& slot) {
  if (!slot.stored) return;
  abandon(slot);
  slot.stored = false;
  tidy();
}

void Arena::append(Slot& slot, std::string_view bytes) {
  const std::size_t needed = kHeader + bytes.size();
  const std::uint32_t number = block_with_room(needed);
  Block& block = blocks_[number];
  slot = {number, static_cast<std::uint32_t>(block.used + kHeader), static_cast<std::uint32_t>(bytes.size()),
          true};
  set_header(address(slot), {&slot, slot.size});
  std::copy(bytes.begin(), bytes.end(), address(slot));
  block.used += needed;
  block.live += needed;
}

std::uint32_t Arena::block_with_room(std::size_t needed) {
  if (needed > kLongString) return new_block(needed);
  if (blocks_.empty() || blocks_[current_].size - blocks_[current_].used < needed) {
    if (!blocks_.empty()) suspects_.push_back(current_);
    // Blocks grow with what is stored, so that a small file stays small.
    current_ = new_block(std::max(needed, std::clamp(allocated_, kSmallestBlock, kLargestBlock)));
  }
  return current_;
}

std::uint32_t Arena::new_block(std::size_t size) {
  Block block{std::make_unique_for_overwrite<char[]>(size), size};
  if (unused_.empty()) {
    unused_.push_back(static_cast<std::uint32_t>(blocks_.size()));
    blocks_.emplace_back();
  }
  const std::uint32_t number = unused_.back();
  unused_.pop_back();
  blocks_[number] = std::move(block);
  allocated_ += size;
  return number;
}

void Arena::abandon(const Slot& slot) {
  char* at = address(slot);
  set_header(at, {nullptr, header(at).capacity});
  blocks_[slot.block].live -= kHeader + slot.size;
  suspects_.push_back(slot.block);
}

void Arena::tidy() {
  // Moving strings may fill the current block, which then becomes a suspect itself.
  while (!suspects_.empty()) {
    const std::uint32_t block = suspects_.back();
    suspects_.pop_back();
    tidy(block);
  }
}

void Arena::tidy(std::uint32_t number) {
  if (number == current_ || blocks_[number].used - blocks_[number].live <= blocks_[number].size / 8) return;
  char* const bytes = blocks_[number].bytes.get();
  for (std::size_t at = kHeader; at <= blocks_[number].used;) {
    const Header entry = header(bytes + at);
    if (entry.owner != nullptr) {
      append(*entry.owner, {bytes + at, entry.owner->size});
      set_header(bytes + at, {nullptr, entry.capacity});
    }
    at += entry.capacity + kHeader;
  }
  allocated_ -= blocks_[number].size;
  blocks_[number] = {};
  unused_.push_back(number);
}

}  // namespace velanor::store
