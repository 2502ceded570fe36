#include "entry_target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  velanor::store::fuzz::run_entry(data, size);
  return 0;
}
