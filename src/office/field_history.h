// What one field of a card read before, and until when.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "velanor/database.h"

namespace velanor::office {

struct FieldWas {
  std::string value;   // as on the screen; "" where there was nothing
  std::string until;   // "12/03/2026", local time
  std::string author;  // of the change
  // "était 75,83 jusqu'au 12/03/2026 (marie)"
  std::string text() const;
};

// A field of a card: of a line by the stored date of effect of its amendment, or the code of its activity (""
// for a single field).
struct CardField {
  int attribute = 0;
  std::string line;
};

// The latest change first; none where the field has always read as it is stored now. A line is the same in
// each version that has one of its date or code. Throws store::DbError, also for a database that keeps no
// versions.
std::vector<FieldWas> field_history(store::Database& database, std::string_view id, const CardField& field);

}  // namespace velanor::office
