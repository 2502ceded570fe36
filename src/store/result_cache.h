// The latest results of selections, good as long as their file does not change.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <string>
#include <string_view>

#include "velanor/query.h"

namespace velanor::store {

class ResultCache {
 public:
  struct Entry {
    std::string request;
    std::uint64_t revision = 0;
    DbResult result;
  };

  // The entry of a request, whose revision the caller compares; nullptr when there is none. It
  // lives until the next `keep`.
  const Entry* find(std::string_view request);
  // Replaces what was kept for the request.
  void keep(Entry entry);

 private:
  void drop_oldest();

  // The latest first.
  std::list<Entry> entries_;
  std::size_t bytes_ = 0;
};

}  // namespace velanor::store
