#include "store/select/dictionary.h"

namespace velanor::store::select {

void Dictionary::define(std::string_view file, std::string_view name, const Designator& designator) {
  for (Entry& entry : entries_) {
    if (entry.file == file && entry.name == name) return void(entry.designator = designator);
  }
  entries_.push_back({std::string(file), std::string(name), designator});
}

const Designator* Dictionary::find(std::string_view file, std::string_view name) const {
  for (const Entry& entry : entries_) {
    if (entry.file == file && entry.name == name) return &entry.designator;
  }
  return nullptr;
}

}  // namespace velanor::store::select
