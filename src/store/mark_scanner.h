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
  static constexpr std::size_t kBlock = 64;

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

#if defined(__SSE2__)
  std::uint64_t marks_of(const char* block) const {
    const __m128i lowest = _mm_set1_epi8(lowest_);
    std::uint64_t found = 0;
    for (int part = 0; part < 4; ++part) {
      const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block + 16 * part));
      const __m128i is_mark = _mm_cmpeq_epi8(_mm_max_epu8(bytes, lowest), bytes);
      found |= static_cast<std::uint64_t>(_mm_movemask_epi8(is_mark)) << (16 * part);
    }
    return found;
  }
#else
  std::uint64_t marks_of(const char* block) const {
    const auto lowest = static_cast<unsigned char>(lowest_);
    std::uint64_t found = 0;
    for (std::size_t i = 0; i < kBlock; ++i) {
      found |= static_cast<std::uint64_t>(static_cast<unsigned char>(block[i]) >= lowest) << i;
    }
    return found;
  }
#endif

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
  // In each of sixteen places, up to what a byte holds.
  const __m128i lowest = _mm_set1_epi8(kSubvalueMark), none = _mm_setzero_si128();
  while (at + sizeof lowest <= bytes.size()) {
    __m128i found = none;
    for (int block = 0; block < 255 && at + sizeof lowest <= bytes.size(); ++block, at += sizeof lowest) {
      const __m128i block_bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes.data() + at));
      found = _mm_sub_epi8(found, _mm_cmpeq_epi8(_mm_max_epu8(block_bytes, lowest), block_bytes));
    }
    const __m128i sums = _mm_sad_epu8(found, none);
    marks += static_cast<std::size_t>(_mm_cvtsi128_si32(sums)) +
             static_cast<std::size_t>(_mm_cvtsi128_si32(_mm_srli_si128(sums, 8)));
  }
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
