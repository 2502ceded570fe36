// A small generator of random numbers that gives the same numbers on every machine, which the
// distributions of the standard library do not promise.
#pragma once

#include <cstddef>
#include <cstdint>

namespace velanor::demo {

class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}

  // One well-mixed number out of several.
  static std::uint64_t mixed(std::uint64_t a, std::uint64_t b) { return Random(a ^ Random(b).next()).next(); }

  std::uint64_t next() {
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
  }
  // 0 to count - 1; count must not be 0.
  std::size_t below(std::size_t count) { return static_cast<std::size_t>((next() >> 11) % count); }
  // low to high, both included; low where the bounds are the wrong way round.
  int between(int low, int high) {
    return high <= low ? low : low + static_cast<int>(below(static_cast<std::size_t>(high - low) + 1));
  }
  bool chance(int percent) { return static_cast<int>(below(100)) < percent; }
  template <typename Items>
  const auto& pick(const Items& items) {
    return items[below(items.size())];
  }

 private:
  std::uint64_t state_;
};

}  // namespace velanor::demo
