#include "store/mark_lists.h"

#include <algorithm>
#include <array>
#include <bit>

#include "store/mark_scanner.h"

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#endif

namespace velanor::store {
namespace {

void open_lists(std::size_t from, const Reached& behind, const MarkLists& lists) {
  lists.leaf_starts[behind.leaf] = static_cast<std::uint32_t>(from);
  lists.value_leaves[behind.value] = behind.leaf;
  lists.attribute_values[behind.attribute] = behind.value;
}

Reached close_lists(std::string_view bytes, Reached at, const MarkLists& lists) {
  lists.leaf_starts[++at.leaf] = static_cast<std::uint32_t>(bytes.size() + 1);
  lists.value_leaves[++at.value] = at.leaf;
  lists.attribute_values[++at.attribute] = at.value;
  return at;
}

// Lists what the marks of the bytes from `from` on open. Written without branches: the next entry is written
// at every mark and stays where the mark opens an element of that level.
Reached list_by_bits(std::string_view bytes, std::size_t from, Reached at, const MarkLists& lists) {
  std::uint32_t* starts = lists.leaf_starts + at.leaf + 1;
  std::uint32_t* leaves = lists.value_leaves + at.value + 1;
  std::uint32_t* values = lists.attribute_values + at.attribute + 1;
  auto [leaf, value, attribute] = at;
  const auto list_block = [&](const char* block, std::size_t block_at) {
    for (std::uint64_t marks = MarkBlock(block).from(kSubvalueMark); marks != 0; marks &= marks - 1) {
      const auto bit = static_cast<std::size_t>(std::countr_zero(marks));
      const char mark = block[bit];
      const bool opens_value = mark != kSubvalueMark, opens_attribute = mark == kAttributeMark;
      ++leaf;
      *starts++ = static_cast<std::uint32_t>(block_at + 1 + bit);
      *leaves = leaf;
      leaves += opens_value;
      value += opens_value;
      *values = value;
      values += opens_attribute;
      attribute += opens_attribute;
    }
  };
  std::size_t block_at = from;
  for (; block_at + MarkBlock::kSize <= bytes.size(); block_at += MarkBlock::kSize)
    list_block(bytes.data() + block_at, block_at);
  std::array<char, MarkBlock::kSize> rest{};
  std::copy(bytes.data() + block_at, bytes.data() + bytes.size(), rest.begin());
  list_block(rest.data(), block_at);
  return {leaf, value, attribute};
}

#if defined(__x86_64__) && defined(__GNUC__)
#define VELANOR_COMPRESSES __attribute__((target("avx512f,avx512bw,avx512vl,avx512vbmi2,bmi,bmi2,popcnt")))

// The numbers of the bits that are set, each added to `base`.
VELANOR_COMPRESSES inline void write_bits(std::uint64_t bits, std::uint32_t count, std::uint32_t base,
                                          std::uint32_t* to) {
  alignas(64) static constexpr std::array<char, 64> kNumbers = [] {
    std::array<char, 64> numbers{};
    for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = static_cast<char>(i);
    return numbers;
  }();
  __m512i numbers = _mm512_maskz_compress_epi8(bits, _mm512_load_si512(kNumbers.data()));
  const __m512i bases = _mm512_set1_epi32(static_cast<int>(base));
  for (;;) {
    const auto wanted = static_cast<__mmask16>(_bzhi_u32(0xFFFF, count));
    const __m512i sixteen =
        _mm512_maskz_cvtepu8_epi32(wanted, _mm512_maskz_extracti32x4_epi32(0xF, numbers, 0));
    _mm512_mask_storeu_epi32(to, wanted, _mm512_add_epi32(sixteen, bases));
    if (count <= 16) return;
    count -= 16;
    to += 16;
    numbers = _mm512_maskz_compress_epi8(~std::uint64_t{0xFFFF}, numbers);
  }
}

VELANOR_COMPRESSES Reached list_by_compressing(std::string_view bytes, std::size_t from, Reached at,
                                               const MarkLists& lists) {
  auto [leaf, value, attribute] = at;
  for (std::size_t block_at = from; block_at < bytes.size(); block_at += MarkBlock::kSize) {
    const std::size_t left = bytes.size() - block_at;
    const __mmask64 inside =
        _bzhi_u64(~std::uint64_t{0}, static_cast<unsigned>(std::min<std::size_t>(left, 64)));
    const __m512i block = _mm512_maskz_loadu_epi8(inside, bytes.data() + block_at);
    const std::uint64_t marks = _mm512_cmpge_epu8_mask(block, _mm512_set1_epi8(kSubvalueMark));
    const std::uint64_t open_values = _mm512_cmpge_epu8_mask(block, _mm512_set1_epi8(kValueMark));
    const std::uint64_t open_attributes = _mm512_cmpge_epu8_mask(block, _mm512_set1_epi8(kAttributeMark));
    const auto all = static_cast<std::uint32_t>(_mm_popcnt_u64(marks));
    const auto of_values = static_cast<std::uint32_t>(_mm_popcnt_u64(open_values));
    const auto of_attributes = static_cast<std::uint32_t>(_mm_popcnt_u64(open_attributes));
    write_bits(marks, all, static_cast<std::uint32_t>(block_at + 1), lists.leaf_starts + leaf + 1);
    // Of the leaves that open here, those that open a value; of the values, those that open an attribute.
    write_bits(_pext_u64(open_values, marks), of_values, leaf + 1, lists.value_leaves + value + 1);
    write_bits(_pext_u64(open_attributes, open_values), of_attributes, value + 1,
               lists.attribute_values + attribute + 1);
    leaf += all;
    value += of_values;
    attribute += of_attributes;
  }
  return {leaf, value, attribute};
}

// False until it is looked at, for who decodes before: then by bits.
const bool kCompresses = __builtin_cpu_supports("avx512vbmi2") && __builtin_cpu_supports("avx512bw") &&
                         __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("bmi2");
#else
constexpr bool kCompresses = false;
Reached list_by_compressing(std::string_view, std::size_t, Reached at, const MarkLists&) { return at; }
#endif

}  // namespace

Reached list_elements(std::string_view bytes, std::size_t from, Reached behind, const MarkLists& lists) {
  if (!kCompresses) return list_elements_one_by_one(bytes, from, behind, lists);
  open_lists(from, behind, lists);
  return close_lists(bytes, list_by_compressing(bytes, from, behind, lists), lists);
}

Reached list_elements_one_by_one(std::string_view bytes, std::size_t from, Reached behind,
                                 const MarkLists& lists) {
  open_lists(from, behind, lists);
  return close_lists(bytes, list_by_bits(bytes, from, behind, lists), lists);
}

}  // namespace velanor::store
