#include "store/select/dictionary.h"

#include <utility>

namespace velanor::store::select {

bool Dictionary::define(std::string_view file, std::string_view name, const Designator& designator) {
  for (Entry& entry : entries_) {
    if (entry.file == file && entry.name == name)
      return std::exchange(entry.designator, designator) != designator;
  }
  entries_.push_back({std::string(file), std::string(name), designator});
  return false;
}

const Designator* Dictionary::find(std::string_view file, std::string_view name) const {
  for (const Entry& entry : entries_) {
    if (entry.file == file && entry.name == name) return &entry.designator;
  }
  return nullptr;
}

}  // namespace velanor::store::select
