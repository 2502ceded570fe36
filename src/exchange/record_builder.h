// Makes a record of its elements at once.
#pragma once

#include <string>
#include <string_view>

#include "store/position.h"

namespace velanor::exchange {

// The record is what setting the elements one by one would make of an empty one.
class RecordBuilder {
 public:
  // Positions ascend, and none stands in another. Texts are not empty.
  void add(const store::Position& position, std::string_view text);
  // What was added; then it begins anew.
  store::DbRecord take();

 private:
  std::string bytes_;
  int attribute_ = 1, value_ = 1, subvalue_ = 1;
};

}  // namespace velanor::exchange
