// Memory that runs out: the n-th allocation from now on fails, once or from there on.
#pragma once

#include <functional>

namespace velanor::test {

enum class Shortage { kOnce, kForGood };

// Runs `act` with its n-th allocation failing (from 1). Whether that many were made; what `act` throws is
// thrown, but for the failure itself, which is taken for its end.
bool short_of_memory(long n, Shortage shortage, const std::function<void()>& act);

}  // namespace velanor::test
