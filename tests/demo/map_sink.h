// A sink that keeps everything, for looking at it.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "demo/demo.h"
#include "demo/table.h"

namespace velanor::demo {

using File = std::map<std::string, store::DbRecord, std::less<>>;

class MapSink : public Sink {
 public:
  void put(std::string_view file, std::string_view id, const store::DbRecord& record) override {
    const bool is_new = files[std::string(file)].emplace(id, record).second;
    EXPECT_TRUE(is_new) << file << " " << id << " was put twice";
  }
  std::map<std::string, File, std::less<>> files;
};

inline int number(std::string_view stored) { return number_of(stored); }

// Values of an attribute up to its first empty one.
inline std::vector<std::string> values(const store::DbRecord& record, int attribute) {
  std::vector<std::string> all;
  for (int i = 1; !record(attribute, i).empty(); ++i) all.emplace_back(record(attribute, i));
  return all;
}

}  // namespace velanor::demo
