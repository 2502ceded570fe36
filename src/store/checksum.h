// A checksum of stored bytes, which tells a record that was damaged from one that was written.
#pragma once

#include <cstdint>
#include <string_view>

namespace velanor::store {

// CRC-32C (Castagnoli), by the instruction of the processor where it has one. Given what an earlier call
// returned, it goes on behind those bytes.
std::uint32_t crc32c(std::string_view bytes, std::uint32_t before = 0);
// The same on any processor.
std::uint32_t crc32c_by_tables(std::string_view bytes, std::uint32_t before = 0);

}  // namespace velanor::store
