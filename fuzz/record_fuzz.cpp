#include "record_target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  velanor::store::fuzz::run_record_operations(data, size);
  return 0;
}
