// What has changed in a record, told one line a change.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "velanor/record.h"

namespace velanor::office {

// "Taux horaire 2 : 12,345 → 12,400" in the words and as on the screen of a card, "2,1 : 001 → 002" by
// position in other files. What is not there is "".
struct Change {
  std::string name, before, after;
  // On one line, "(vide)" for what is not there.
  std::string text() const;
};

std::vector<Change> changes_between(std::string_view file, const store::DbRecord& before,
                                    const store::DbRecord& after);

}  // namespace velanor::office
