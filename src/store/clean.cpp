#include "store/clean.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "store/mark_scanner.h"
#include "store/utf8.h"
#include "velanor/record.h"

namespace velanor::store {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

enum class Marks { kAreStructure, kAreForeign };

#if defined(__SSE2__)

// One bit for each of 16 bytes that is neither ASCII nor a mark of the structure, or is NUL.
unsigned suspects(const char* block, Marks marks) {
  const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block));
  const __m128i from_mark = _mm_cmpeq_epi8(_mm_max_epu8(bytes, _mm_set1_epi8(kSubvalueMark)), bytes);
  const __m128i is_mark = _mm_andnot_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(-1)), from_mark);
  const __m128i allowed = marks == Marks::kAreStructure ? is_mark : _mm_setzero_si128();
  const __m128i is_nul = _mm_cmpeq_epi8(bytes, _mm_setzero_si128());
  return static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(_mm_andnot_si128(allowed, bytes), is_nul)));
}

// Length of the run of bytes from `at` that need no closer look.
std::size_t plain_run(std::string_view text, std::size_t at, Marks marks) {
  for (std::size_t run = 0;; run += 16) {
    // Behind the end stand NULs, which end every run.
    char rest[16] = {};
    const char* block = text.data() + at + run;
    if (text.size() - at - run < sizeof rest) {
      std::copy(block, text.data() + text.size(), rest);
      block = rest;
    }
    if (const unsigned found = suspects(block, marks)) {
      return run + static_cast<std::size_t>(std::countr_zero(found));
    }
  }
}

#else

bool is_mark(char byte) { return byte >= kSubvalueMark && byte <= kAttributeMark; }

std::size_t plain_run(std::string_view text, std::size_t at, Marks marks) {
  const auto is_suspect = [marks](char byte) {
    const bool allowed =
        static_cast<unsigned char>(byte) < 0x80 || (marks == Marks::kAreStructure && is_mark(byte));
    return byte == 0 || !allowed;
  };
  const auto begin = text.begin() + static_cast<std::ptrdiff_t>(at);
  return static_cast<std::size_t>(std::find_if(begin, text.end(), is_suspect) - begin);
}

#endif

// The first byte from `at` that is to be replaced; the size of the text where there is none.
std::size_t next_foreign(std::string_view text, std::size_t at, Marks marks) {
  while ((at += plain_run(text, at, marks)) < text.size()) {
    const std::size_t length = utf8::sequence_length(text, at);
    if (length == 0) break;
    at += length;
  }
  return at;
}

std::string clean(std::string_view text, Marks marks) {
  std::size_t foreign = next_foreign(text, 0, marks);
  if (foreign == text.size()) return std::string(text);
  std::string result;
  // What is clean is copied in one piece.
  std::size_t copied = 0;
  for (; foreign < text.size(); foreign = next_foreign(text, copied, marks)) {
    result.append(text, copied, foreign - copied).append(kReplacement);
    copied = foreign + 1;
  }
  return result.append(text, copied);
}

}  // namespace

std::string clean_text(std::string_view text) { return clean(text, Marks::kAreForeign); }

std::string clean_encoded(std::string_view encoded) { return clean(encoded, Marks::kAreStructure); }

bool is_clean_encoded(std::string_view encoded) {
  return next_foreign(encoded, 0, Marks::kAreStructure) == encoded.size();
}

}  // namespace velanor::store
