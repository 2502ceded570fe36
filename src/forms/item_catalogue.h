// The payroll items that may be entered by hand, and which figures each of them asks for.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "control/session/procedure.h"

namespace velanor::forms {

// Which boxes of the edit line an item opens.
struct ItemFigures {
  bool known = false;  // false: a type that leaves the boxes as they are
  bool base = false;
  bool rate = false;
  bool amount = false;
  bool hours = false;         // types 3, 4 and 5: a rate of nothing
  bool default_rate = false;  // a new line starts with the item's own rate
};

// Rows are numbered from 1, in the order of the labels; row 0 is none.
class ItemCatalogue {
 public:
  void load(const control::Procedure& procedure);
  void release() { rows_ = {}; }

  std::vector<std::string> labels() const;
  // Beside each label: its code, where another item bears the same.
  std::vector<std::string> notes() const;
  // The row of a code, 0 when it may not be entered by hand.
  int row(std::string_view code) const;
  std::string_view code(int row) const;
  std::string_view label(int row) const;
  ItemFigures figures(int row) const;
  // As plain number text: "12,5".
  std::string default_rate(int row) const;

 private:
  store::DbResult rows_;
};

}  // namespace velanor::forms
