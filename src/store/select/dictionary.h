// Names of attributes, declared per file.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "store/select/tree.h"

namespace velanor::store::select {

class Dictionary {
 public:
  // In place of what the name stood for; whether that was something else.
  bool define(std::string_view file, std::string_view name, const Designator& designator);
  // nullptr for a name that the file does not have.
  const Designator* find(std::string_view file, std::string_view name) const;

 private:
  struct Entry {
    std::string file, name;
    Designator designator;
  };
  std::vector<Entry> entries_;
};

}  // namespace velanor::store::select
