#include "store/arena.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <new>

namespace velanor::store {

std::size_t Arena::bin_of(std::size_t units) {
  if (units < kExactBins) return units;
  const auto power = static_cast<std::size_t>(std::bit_width(units)) - 1;
  return kExactBins + 4 * (power - 8) + (units >> (power - 2)) % 4;
}

std::size_t Arena::units_at(Place place) const {
  const Unit& first = unit(place);
  return (first.words[0] & kIsHole) != 0 ? first.words[0] & kNumber : units_for(first.words[1]);
}

Arena::Place Arena::allocate(std::uint32_t owner, std::size_t size) {
  if (size > UINT32_MAX - sizeof(Unit)) throw std::bad_alloc();
  const std::size_t units = units_for(size);
  Place place = fitting_hole(units);
  if (place == 0) {
    // Blocks grow with what is stored, so that a small file stays small.
    const bool has_block_of_its_own = units > kLargestBlock / 4;
    const std::size_t usual = std::clamp(units_ / 8, kSmallestBlock, kLargestBlock);
    place = new_block(has_block_of_its_own ? units : std::max(units, usual));
    if (!has_block_of_its_own) newest_block_ = block_of(place);
  }
  occupy(place, owner, size);
  return place;
}

bool Arena::resize(Place place, std::size_t size) {
  if (size > UINT32_MAX - sizeof(Unit)) return false;
  const std::size_t had = units_at(place), needed = units_for(size);
  if (needed != had) {
    if (is_alone(place)) return false;
    const auto end = static_cast<Place>(place + had);
    std::size_t room = had;
    if (is_hole(end)) room += units_at(end);
    if (needed > room) return false;
    if (room > had) unlink(end);
    Block& block = blocks_[block_of(place)];
    block.live += needed - had;
    holes_ -= needed - had;
    unit(static_cast<Place>(place + room)).words[0] &= ~kBehindHole;
    if (room > needed) make_hole(static_cast<Place>(place + needed), room - needed);
  }
  unit(place).words[1] = static_cast<std::uint32_t>(size);
  return true;
}

void Arena::release(Place place) {
  std::size_t units = units_at(place);
  Block& block = blocks_[block_of(place)];
  block.live -= units;
  holes_ += units;
  if (is_alone(place)) return give_back(block_of(place));
  if ((unit(place).words[0] & kBehindHole) != 0) {
    const std::size_t before = unit(place - 1).words[3];
    place -= static_cast<Place>(before);
    units += before;
    unlink(place);
  }
  const auto end = static_cast<Place>(place + units);
  if (is_hole(end)) {
    units += units_at(end);
    unlink(end);
  }
  make_hole(place, units);
}

Arena::Place Arena::new_block(std::size_t units) {
  constexpr std::size_t kMaxBlocks = std::size_t{1} << (32 - kUnitBits);
  // Before anything is made, room to note its number and, one day, to note that it is unused.
  if (unused_numbers_.empty()) {
    if (blocks_.size() == kMaxBlocks) throw std::bad_alloc();
    if (blocks_.size() == blocks_.capacity()) blocks_.reserve(2 * blocks_.size());
    unused_numbers_.reserve(blocks_.capacity());
  }
  // Behind the last unit of its strings stands one that is no hole.
  auto memory = std::make_unique_for_overwrite<Unit[]>(units + 1);
  memory[units].words = {kNumber, 0, 0, 0};
  if (unused_numbers_.empty()) {
    unused_numbers_.push_back(static_cast<std::uint32_t>(blocks_.size()));
    blocks_.emplace_back();
  }
  const std::uint32_t number = unused_numbers_.back();
  unused_numbers_.pop_back();
  blocks_[number] = {std::move(memory), units, 0};
  units_ += units;
  holes_ += units;
  const Place place = number << kUnitBits;
  if (units > kLargestBlock) {
    unit(place).words[0] = kIsHole | static_cast<std::uint32_t>(units);
  } else {
    make_hole(place, units);
  }
  return place;
}

Arena::Place Arena::fitting_hole(std::size_t units) const {
  if (units > kLargestBlock) return 0;
  const std::size_t first = bin_of(units);
  for (std::size_t word = first / 64; word < filled_bins_.size(); ++word) {
    std::uint64_t filled = filled_bins_[word];
    if (word == first / 64) filled &= ~std::uint64_t{0} << first % 64;
    for (; filled != 0; filled &= filled - 1) {
      const std::size_t bin = 64 * word + static_cast<std::size_t>(std::countr_zero(filled));
      if (const Place hole = fitting_hole_of(bin, units)) return hole;
    }
  }
  return 0;
}

Arena::Place Arena::fitting_hole_of(std::size_t bin, std::size_t units) const {
  const bool all_fit = units < kExactBins || bin > bin_of(units);
  Place hole = bins_[bin];
  for (int looks = 8; hole != 0 && looks > 0; --looks, hole = unit(hole).words[2]) {
    const bool is_usable = block_of(hole) != block_of(emptied_to_);
    if (is_usable && (all_fit || units_at(hole) >= units)) return hole;
  }
  return 0;
}

void Arena::make_hole(Place place, std::size_t units) {
  unit(place).words[0] = kIsHole | static_cast<std::uint32_t>(units);
  link(place, units);
  unit(static_cast<Place>(place + units - 1)).words[3] = static_cast<std::uint32_t>(units);
  unit(static_cast<Place>(place + units)).words[0] |= kBehindHole;
}

void Arena::link(Place place, std::size_t units) {
  const std::size_t bin = bin_of(units);
  const Place next = bins_[bin];
  unit(place).words[1] = 0;
  unit(place).words[2] = next;
  if (next != 0) unit(next).words[1] = place;
  bins_[bin] = place;
  filled_bins_[bin / 64] |= std::uint64_t{1} << bin % 64;
}

void Arena::unlink(Place place) {
  const Place before = unit(place).words[1], next = unit(place).words[2];
  if (next != 0) unit(next).words[1] = before;
  if (before != 0) {
    unit(before).words[2] = next;
    return;
  }
  const std::size_t bin = bin_of(units_at(place));
  bins_[bin] = next;
  if (next == 0) filled_bins_[bin / 64] &= ~(std::uint64_t{1} << bin % 64);
}

void Arena::occupy(Place place, std::uint32_t owner, std::size_t size) {
  const std::size_t had = units_at(place), needed = units_for(size);
  if (!is_alone(place)) {
    unlink(place);
    unit(static_cast<Place>(place + had)).words[0] &= ~kBehindHole;
    if (had > needed) make_hole(static_cast<Place>(place + needed), had - needed);
  }
  unit(place).words[0] = owner;
  unit(place).words[1] = static_cast<std::uint32_t>(size);
  blocks_[block_of(place)].live += needed;
  holes_ -= needed;
}

void Arena::give_back(std::uint32_t number) {
  units_ -= blocks_[number].size;
  holes_ -= blocks_[number].size;
  blocks_[number] = {};
  unused_numbers_.push_back(number);
}

std::optional<Arena::Moved> Arena::move_one() {
  while (emptied_to_ != 0 || begin_emptying()) {
    const std::uint32_t block = block_of(emptied_to_);
    const Place from = emptied_to_, end = static_cast<Place>((block << kUnitBits) + blocks_[block].size);
    if (from == end) {
      give_back(block);
      emptied_to_ = 0;
      continue;
    }
    const std::size_t units = units_at(from);
    if (is_hole(from)) {
      unlink(from);
      emptied_to_ += static_cast<Place>(units);
      unit(emptied_to_).words[0] &= ~kBehindHole;
      continue;
    }
    const std::uint32_t owner = unit(from).words[0] & kNumber;
    Place to;
    try {
      to = allocate(owner, size(from));
    } catch (const std::bad_alloc&) {
      return std::nullopt;
    }
    std::memcpy(bytes(to), bytes(from), size(from));
    blocks_[block].live -= units;
    holes_ += units;
    emptied_to_ += static_cast<Place>(units);
    return Moved{owner, to};
  }
  return std::nullopt;
}

// Strings move into holes or into the newest block, so that is left alone: but where it is empty, or is
// nearly all there is and far too large.
bool Arena::is_worth_emptying(std::uint32_t number) const {
  const Block& block = blocks_[number];
  if (!block.units || block.live > block.size - block.size / 8) return false;
  return number != newest_block_ || block.live == 0 ||
         (block.size > units_ / 2 && block.live < block.size / 16);
}

bool Arena::begin_emptying() {
  if (!has_too_many_holes()) return false;
  const auto filled = [this](std::uint32_t number) {
    return static_cast<double>(blocks_[number].live) / static_cast<double>(blocks_[number].size);
  };
  std::uint32_t sparsest = 0;
  for (std::uint32_t number = 1; number < blocks_.size(); ++number) {
    if (!is_worth_emptying(number)) continue;
    if (sparsest == 0 || filled(number) < filled(sparsest)) sparsest = number;
  }
  emptied_to_ = sparsest << kUnitBits;
  return sparsest != 0;
}

}  // namespace velanor::store
