#include "store/checksum.h"

#include <array>
#include <bit>
#include <cstring>

namespace velanor::store {
namespace {

constexpr std::size_t kStride = 8;
using Tables = std::array<std::array<std::uint32_t, 256>, kStride>;

// Table t holds what a byte becomes with t more bytes behind it, so that eight go in one step.
constexpr Tables make_tables() {
  constexpr std::uint32_t kPolynomial = 0x82F63B78;
  Tables tables{};
  for (std::uint32_t byte = 0; byte < 256; ++byte) {
    std::uint32_t crc = byte;
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (crc & 1 ? kPolynomial : 0);
    tables[0][byte] = crc;
  }
  for (std::size_t t = 1; t < kStride; ++t) {
    for (std::size_t byte = 0; byte < 256; ++byte) {
      const std::uint32_t crc = tables[t - 1][byte];
      tables[t][byte] = (crc >> 8) ^ tables[0][crc & 0xFF];
    }
  }
  return tables;
}

constexpr Tables kTables = make_tables();

std::uint32_t step(std::uint32_t crc, char byte) {
  return (crc >> 8) ^ kTables[0][(crc ^ static_cast<unsigned char>(byte)) & 0xFF];
}

std::uint32_t eight(std::uint32_t crc, const char* bytes) {
  std::uint64_t block;
  std::memcpy(&block, bytes, kStride);
  block ^= crc;
  std::uint32_t result = 0;
  for (std::size_t i = 0; i < kStride; ++i) result ^= kTables[kStride - 1 - i][(block >> (8 * i)) & 0xFF];
  return result;
}

#if defined(__x86_64__) && defined(__GNUC__)

__attribute__((target("sse4.2"))) std::uint32_t by_instruction(std::string_view bytes, std::uint32_t before) {
  std::uint64_t crc = ~before;
  for (; bytes.size() >= kStride; bytes.remove_prefix(kStride)) {
    std::uint64_t block;
    std::memcpy(&block, bytes.data(), kStride);
    crc = __builtin_ia32_crc32di(crc, block);
  }
  auto rest = static_cast<std::uint32_t>(crc);
  for (const char byte : bytes) rest = __builtin_ia32_crc32qi(rest, static_cast<unsigned char>(byte));
  return ~rest;
}

bool has_instruction() { return __builtin_cpu_supports("sse4.2") != 0; }

#else

std::uint32_t by_instruction(std::string_view bytes, std::uint32_t before) {
  return crc32c_by_tables(bytes, before);
}

bool has_instruction() { return false; }

#endif

}  // namespace

std::uint32_t crc32c_by_tables(std::string_view bytes, std::uint32_t before) {
  std::uint32_t crc = ~before;
  if constexpr (std::endian::native == std::endian::little) {
    for (; bytes.size() >= kStride; bytes.remove_prefix(kStride)) crc = eight(crc, bytes.data());
  }
  for (const char byte : bytes) crc = step(crc, byte);
  return ~crc;
}

std::uint32_t crc32c(std::string_view bytes, std::uint32_t before) {
  static const bool kHasInstruction = has_instruction();
  return kHasInstruction ? by_instruction(bytes, before) : crc32c_by_tables(bytes, before);
}

}  // namespace velanor::store
