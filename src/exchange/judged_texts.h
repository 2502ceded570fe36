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
//
// Figures are judged by how they are shown, which goes by their digits: one without zeros in front tells of
// all others that have as many.
class JudgedTexts {
 public:
  enum class Kind { kAny, kFigures };
  explicit JudgedTexts(Kind kind = Kind::kAny) : kind_(kind) {}

  bool has(std::string_view text) const {
    if (is_plain_figure(text)) return ((digits_ >> text.size()) & 1) != 0;
    const Key key(text);
    if (!key.fits || slots_.empty()) return false;
    const Bytes& known = slots_[key.slot()];
    return known[0] == key.bytes[0] && known[1] == key.bytes[1];
  }
  void add(std::string_view text) {
    if (is_plain_figure(text)) {
      digits_ |= 1U << text.size();
      return;
    }
    const Key key(text);
    if (!key.fits) return;
    if (slots_.empty()) slots_.resize(kSlots);
    slots_[key.slot()] = key.bytes;
  }

 private:
  static constexpr std::size_t kSlots = 1024;
  using Bytes = std::array<std::uint64_t, 2>;

  bool is_plain_figure(std::string_view text) const {
    constexpr std::size_t kMostDigits = 15;
    if (kind_ != Kind::kFigures || text.empty() || text.size() > kMostDigits || text.front() == '0')
      return false;
    for (const char digit : text) {
      if (digit < '0' || digit > '9') return false;
    }
    return true;
  }

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
  Kind kind_;
  std::uint32_t digits_ = 0;  // a bit for each number of them
  std::vector<Bytes> slots_;
};

}  // namespace velanor::exchange
