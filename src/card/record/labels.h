// What the codes of a card are called.
#pragma once

#include <string>
#include <string_view>

#include "card/record/record_layout.h"
#include "card/record/reference_layout.h"
#include "control/session/procedure.h"

namespace velanor::card {

// The value position of a text in a column, from 1; 0 when it is not there.
int find_value(const store::DbRecord& table, int column, std::string_view text);
// "code label", as the lists of natures and diplomas read.
std::string table_entry(const store::DbRecord& table, int value);

// Asks the reference files and the cached tables at each call. The session outlives it. A failing store
// throws store::DbError.
class Labels {
 public:
  explicit Labels(const control::Procedure& procedure) : procedure_(procedure) {}

  // "" for ""; the code itself where its file has it no more.
  std::string grid(std::string_view id) const { return label_or_itself(control::File::kGrids, id); }
  std::string activity(std::string_view id) const { return label_or_itself(control::File::kActivities, id); }
  // "code label"; the code itself where its table has it no more.
  std::string nature(std::string_view code) const { return entry(procedure_.variable().naturecontrat, code); }
  std::string diploma(std::string_view code) const { return entry(procedure_.variable().diplomes, code); }
  // "" where the table has it no more.
  std::string reason(std::string_view code) const;
  // The code of an end reason by its label; "" when the table does not offer it.
  std::string offered_reason(std::string_view label) const;
  // "" for an item that has left its file.
  std::string item(std::string_view code) const;
  // Whether the base of an item counts as hours worked.
  bool is_hours_item(std::string_view code) const;

 private:
  std::string label_or_itself(control::File file, std::string_view code) const;
  static std::string entry(const store::DbRecord& table, std::string_view code);

  const control::Procedure& procedure_;
};

// Whether an end reason of "FINCONTRAT" may be chosen.
bool is_offered(const store::DbRecord& reasons, int value);

}  // namespace velanor::card
