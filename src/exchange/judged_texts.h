// Texts that were judged before.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace velanor::exchange {

// Remembers short texts that were found good, so that the codes and figures that stand on most cards are
// judged once. It has room for a thousand, and forgets the others.
class JudgedTexts {
 public:
  bool has(std::string_view text) const {
    const Key key(text);
    if (!key.fits || slots_.empty()) return false;
    const Bytes& known = slots_[key.slot()];
    return known[0] == key.bytes[0] && known[1] == key.bytes[1];
  }
  void add(std::string_view text) {
    const Key key(text);
    if (!key.fits) return;
    if (slots_.empty()) slots_.resize(kSlots);
    slots_[key.slot()] = key.bytes;
  }

 private:
  static constexpr std::size_t kSlots = 1024;
  using Bytes = std::array<std::uint64_t, 2>;

  // The text and its length, which no text shares with the empty slot.
  struct Key {
    explicit Key(std::string_view text) : fits(!text.empty() && text.size() < sizeof(Bytes)) {
      if (!fits) return;
      char all[sizeof(Bytes)] = {};
      std::memcpy(all, text.data(), text.size());
      all[sizeof all - 1] = static_cast<char>(text.size());
      std::memcpy(bytes.data(), all, sizeof all);
    }
    std::size_t slot() const {
      constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15;
      const std::uint64_t mixed = (bytes[0] ^ bytes[1] * kSpread) * kSpread;
      return static_cast<std::size_t>(mixed >> 54);
    }
    bool fits;
    Bytes bytes{};
  };
  std::vector<Bytes> slots_;
};

}  // namespace velanor::exchange
