// Names of attributes, declared per file.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "store/select/tree.h"

namespace velanor::store::select {

struct DictionaryEntry {
  std::string file;
  std::string name;
  Designator designator;
};

class Dictionary {
 public:
  Dictionary() = default;
  explicit Dictionary(std::vector<DictionaryEntry> entries) : entries_(std::move(entries)) {}

  // nullptr for a name that the file does not have.
  const Designator* find(std::string_view file, std::string_view name) const;

 private:
  std::vector<DictionaryEntry> entries_;
};

// The names of the personnel file: the entity and the year, both parts of the id.
Dictionary default_dictionary();

}  // namespace velanor::store::select
