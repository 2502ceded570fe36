// Many byte strings packed into few blocks of memory.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace velanor::store {

// A string stands at a place until it is moved: holes that rewritten and removed strings leave are filled
// again by the best fit, and where more than an eighth is holes all the same, the sparsest blocks are emptied
// and given back. That is done string by string (`move_one`), so that no call of the owner's takes long.
class Arena {
 public:
  // Never 0.
  using Place = std::uint32_t;
  struct Moved {
    std::uint32_t owner;
    Place place;
  };
  static constexpr std::uint32_t kMaxOwner = (1u << 30) - 2;

  Arena() : blocks_(1) {}
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;

  // Room for a string; `owner` is told when it is moved. Throws std::bad_alloc, also where a place cannot
  // be numbered: beyond 64 GiB.
  Place allocate(std::uint32_t owner, std::size_t size);
  // Whether there is room at the place for the string to have another size. Its first bytes stay.
  bool resize(Place place, std::size_t size);
  void release(Place place);
  // The next step of tidying: moves one string to another place. Nothing where there is nothing to win, or no
  // memory to begin with.
  std::optional<Moved> move_one();

  // Live until the next call that changes anything.
  char* bytes(Place place) { return reinterpret_cast<char*>(&unit(place)) + kHeader; }
  const char* bytes(Place place) const { return reinterpret_cast<const char*>(&unit(place)) + kHeader; }
  std::size_t size(Place place) const { return unit(place).words[1]; }
  std::size_t allocated() const { return units_ * sizeof(Unit); }

 private:
  // Strings and holes are whole numbers of units, side by side in their block.
  // A string:  flags and owner, size, then its bytes.
  // A hole:    flags and number of units, the holes before and behind it in its bin; its last unit ends
  //            with the number of units, where the string behind it finds it.
  struct alignas(16) Unit {
    std::array<std::uint32_t, 4> words;
  };
  static constexpr std::size_t kHeader = 2 * sizeof(std::uint32_t);
  struct Block {
    std::unique_ptr<Unit[]> units;
    std::size_t size = 0, live = 0;
  };
  static constexpr std::uint32_t kIsHole = 1u << 31, kBehindHole = 1u << 30, kNumber = kBehindHole - 1;
  static constexpr unsigned kUnitBits = 17;
  static constexpr std::size_t kLargestBlock = (std::size_t{1} << kUnitBits) - 4, kSmallestBlock = 252;
  // A bin for each number of units up to this; above, four for each power of two.
  static constexpr std::size_t kExactBins = 256, kBins = kExactBins + 4 * (kUnitBits - 8);

  static std::size_t units_for(std::size_t size) {
    return (size + kHeader + sizeof(Unit) - 1) / sizeof(Unit);
  }
  static std::size_t bin_of(std::size_t units);
  static std::uint32_t block_of(Place place) { return place >> kUnitBits; }
  Unit& unit(Place place) { return blocks_[block_of(place)].units[place & ((1u << kUnitBits) - 1)]; }
  const Unit& unit(Place place) const {
    return blocks_[block_of(place)].units[place & ((1u << kUnitBits) - 1)];
  }
  std::size_t units_at(Place place) const;
  bool is_hole(Place place) const { return (unit(place).words[0] & kIsHole) != 0; }
  // Stands alone in its block, whose units behind the first have no places.
  bool is_alone(Place place) const { return blocks_[block_of(place)].size > kLargestBlock; }

  Place new_block(std::size_t units);
  // A hole of as many units or more, outside the block that is being emptied; it stays in its bin. 0: none.
  Place fitting_hole(std::size_t units) const;
  Place fitting_hole_of(std::size_t bin, std::size_t units) const;
  void make_hole(Place place, std::size_t units);
  void link(Place place, std::size_t units);
  void unlink(Place place);
  // Makes a string of the first units of a hole.
  void occupy(Place place, std::uint32_t owner, std::size_t size);
  void give_back(std::uint32_t block);

  bool has_too_many_holes() const { return holes_ > units_ / 8 + kSmallestBlock; }
  bool is_worth_emptying(std::uint32_t block) const;
  bool begin_emptying();

  std::vector<Block> blocks_;  // none has the number 0
  std::vector<std::uint32_t> unused_numbers_;
  std::array<Place, kBins> bins_{};
  std::array<std::uint64_t, (kBins + 63) / 64> filled_bins_{};
  std::size_t units_ = 0, holes_ = 0;
  // The block that is being emptied: what lies before the place is in no bin any more. 0: none.
  Place emptied_to_ = 0;
  std::uint32_t newest_block_ = 0;
};

}  // namespace velanor::store
