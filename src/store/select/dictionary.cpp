#include "store/select/dictionary.h"

namespace velanor::store::select {

const Designator* Dictionary::find(std::string_view file, std::string_view name) const {
  for (const auto& entry : entries_) {
    if (entry.file == file && entry.name == name) return &entry.designator;
  }
  return nullptr;
}

Dictionary default_dictionary() {
  return Dictionary({
      {"VELANORO", "CodeAsso", {.attribute = 0, .first = 6, .count = 3}},
      {"VELANORO", "Annee", {.attribute = 0, .first = 9, .count = kToTheEnd}},
  });
}

}  // namespace velanor::store::select
