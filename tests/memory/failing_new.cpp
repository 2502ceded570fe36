#include "memory/failing_new.h"

#include <cstdlib>
#include <new>
#include <string_view>

#include "text/failure.h"
#include "velanor/database.h"

namespace {

// Of the thread under test alone.
thread_local long until_failure = 0;  // 0: memory is plenty
thread_local bool failing = false;    // for good
thread_local bool has_failed = false;
thread_local bool for_good = false;

bool fails() {
  if (failing) return true;
  if (until_failure == 0 || --until_failure > 0) return false;
  has_failed = true;
  failing = for_good;
  return true;
}

void* allocate(std::size_t size) {
  void* const memory = fails() ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

// Memory is plenty again when this goes.
struct Short {
  Short(long n, bool good) { until_failure = n, for_good = good, has_failed = false; }
  ~Short() { until_failure = 0, failing = false; }
};

}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace velanor::test {

bool short_of_memory(long n, Shortage shortage, const std::function<void()>& act) {
  try {
    const Short here(n, shortage == Shortage::kForGood);
    act();
  } catch (const std::bad_alloc&) {
    if (!has_failed) throw;
  } catch (const store::DbError& error) {
    if (!has_failed || std::string_view(error.what()) != text::kNoMemory) throw;
  }
  return has_failed;
}

}  // namespace velanor::test
