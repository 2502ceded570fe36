// Walks the marks of an encoded record, 64 bytes at a time.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "velanor/record.h"

namespace velanor::store {

// 64 bytes, of which it tells by one bit each whether they are marks from one upwards.
class MarkBlock {
 public:
  static constexpr std::size_t kSize = 64;

#if defined(__SSE2__)
  explicit MarkBlock(const char* bytes)
      : parts_{part(bytes), part(bytes + 16), part(bytes + 32), part(bytes + 48)} {}
  std::uint64_t from(char lowest) const {
    const __m128i least = _mm_set1_epi8(lowest);
    return bits(parts_[0], least) | bits(parts_[1], least) << 16 | bits(parts_[2], least) << 32 |
           bits(parts_[3], least) << 48;
  }

 private:
  static __m128i part(const char* bytes) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)); }
  static std::uint64_t bits(__m128i bytes, __m128i least) {
    return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_max_epu8(bytes, least), bytes)));
  }
  __m128i parts_[4];
#else
  explicit MarkBlock(const char* bytes) : bytes_(bytes) {}
  std::uint64_t from(char lowest) const {
    const auto least = static_cast<unsigned char>(lowest);
    std::uint64_t found = 0;
    for (std::size_t i = 0; i < kSize; ++i)
      found |= static_cast<std::uint64_t>(static_cast<unsigned char>(bytes_[i]) >= least) << i;
    return found;
  }

 private:
  const char* bytes_;
#endif
};

// Yields the positions of all bytes from the mark `lowest` upwards, in order. The bytes must
// outlive it.
class MarkScanner {
 public:
  static constexpr std::size_t kEnd = static_cast<std::size_t>(-1);

  MarkScanner(std::string_view bytes, std::size_t from, char lowest)
      : bytes_(bytes), next_block_(from), lowest_(lowest) {}

  // Position of the next mark, kEnd after the last one.
  std::size_t next() {
    while (found_ == 0) {
      if (next_block_ >= bytes_.size()) return kEnd;
      load();
    }
    const int bit = std::countr_zero(found_);
    found_ &= found_ - 1;
    return block_ + static_cast<std::size_t>(bit);
  }

 private:
  static constexpr std::size_t kBlock = MarkBlock::kSize;

  void load() {
    block_ = next_block_;
    next_block_ += kBlock;
    if (next_block_ <= bytes_.size()) {
      found_ = marks_of(bytes_.data() + block_);
      return;
    }
    // The last, short block: never read past the end.
    char rest[kBlock] = {};
    std::memcpy(rest, bytes_.data() + block_, bytes_.size() - block_);
    found_ = marks_of(rest);
  }

  std::uint64_t marks_of(const char* block) const { return MarkBlock(block).from(lowest_); }

  std::string_view bytes_;
  std::size_t block_ = 0;
  std::size_t next_block_;
  std::uint64_t found_ = 0;
  char lowest_;
};

// Marks of an encoded record: all, those that open a value or an attribute, those that open an attribute.
struct MarkCounts {
  std::uint32_t all = 0, values = 0, attributes = 0;
};

// Below 2 GiB of bytes.
inline MarkCounts count_each_mark(std::string_view bytes) {
  MarkCounts counts;
  for (const char byte : bytes) {
    const auto unsigned_byte = static_cast<unsigned char>(byte);
    counts.all += unsigned_byte >= static_cast<unsigned char>(kSubvalueMark);
    counts.values += unsigned_byte >= static_cast<unsigned char>(kValueMark);
    counts.attributes += unsigned_byte >= static_cast<unsigned char>(kAttributeMark);
  }
  return counts;
}

inline std::size_t count_marks(std::string_view bytes) {
  std::size_t marks = 0, at = 0;
#if defined(__SSE2__)
  const __m128i lowest = _mm_set1_epi8(kSubvalueMark), none = _mm_setzero_si128();
  const auto is_mark = [&](const char* sixteen) {
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(sixteen));
    return _mm_cmpeq_epi8(_mm_max_epu8(block, lowest), block);
  };
  const auto count = [&](__m128i found) {
    // A mark is -1 in its place.
    const __m128i sums = _mm_sad_epu8(_mm_sub_epi8(none, found), none);
    marks += static_cast<std::size_t>(_mm_cvtsi128_si32(_mm_add_epi32(sums, _mm_srli_si128(sums, 8))));
  };
  for (; at + 64 <= bytes.size(); at += 64) {
    const char* const block = bytes.data() + at;
    count(_mm_add_epi8(_mm_add_epi8(is_mark(block), is_mark(block + 16)),
                       _mm_add_epi8(is_mark(block + 32), is_mark(block + 48))));
  }
  for (; at + 16 <= bytes.size(); at += 16) count(is_mark(bytes.data() + at));
#endif
  for (; at < bytes.size(); ++at)
    marks += static_cast<unsigned char>(bytes[at]) >= static_cast<unsigned char>(kSubvalueMark);
  return marks;
}

// The part of that number, from 1, between marks from `lowest` upwards; "" past the end.
inline std::string_view part_text(std::string_view bytes, char lowest, int number) {
  MarkScanner marks(bytes, 0, lowest);
  std::size_t begin = 0;
  for (; number > 1; --number) {
    const std::size_t mark = marks.next();
    if (mark == MarkScanner::kEnd) return {};
    begin = mark + 1;
  }
  const std::size_t end = marks.next();
  return bytes.substr(begin, end == MarkScanner::kEnd ? end : end - begin);
}

// An attribute of an encoded record, without indexing it.
inline std::string_view attribute_text(std::string_view encoded, int attribute) {
  return part_text(encoded, kAttributeMark, attribute);
}

}  // namespace velanor::store
