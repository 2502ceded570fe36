// The process as some user who owns nothing: root may write everywhere.
#pragma once

#include <unistd.h>

namespace velanor::test {

// As long as it lives; where the tests do not run as root nothing changes.
class AsNobody {
 public:
  AsNobody() { [[maybe_unused]] const int done = seteuid(kNobody); }
  ~AsNobody() { [[maybe_unused]] const int done = seteuid(getuid()); }
  AsNobody(const AsNobody&) = delete;
  AsNobody& operator=(const AsNobody&) = delete;

 private:
  static constexpr uid_t kNobody = 65534;
};

}  // namespace velanor::test
