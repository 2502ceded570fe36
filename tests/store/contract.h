// What every store must do, written once. A test program that compiles contract.cpp in runs it
// over its own stores with INSTANTIATE_TEST_SUITE_P(Name, StoreContract, Values(factory...)).
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "velanor/database.h"

namespace velanor::store {

struct StoreFactory {
  std::string name;
  // A store without records, each time another one.
  std::function<std::unique_ptr<Database>()> make;

  friend std::ostream& operator<<(std::ostream& out, const StoreFactory& factory) {
    return out << factory.name;
  }
};

class StoreContract : public testing::TestWithParam<StoreFactory> {
 protected:
  // The record in the notation of notation.h.
  void put(std::string_view file, std::string_view id, std::string_view record);
  // The rows found, in the same notation.
  std::vector<std::string> select(std::string_view statement, std::string_view file,
                                  std::string_view attributes = "0");

  std::unique_ptr<Database> database_ = GetParam().make();
};

}  // namespace velanor::store
