// Some user who owns nothing: root may write everywhere.
#pragma once

#include <unistd.h>

namespace velanor::store {

class AsNobody {
 public:
  AsNobody() { [[maybe_unused]] const int done = seteuid(kNobody); }
  ~AsNobody() { [[maybe_unused]] const int done = seteuid(getuid()); }

 private:
  static constexpr uid_t kNobody = 65534;
};

}  // namespace velanor::store
