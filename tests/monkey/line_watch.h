// Sees to it that an act changes no other line than the one it is about.
#pragma once

#include <string>
#include <vector>

#include "monkey/act.h"

namespace velanor::test {

// The lines of amendments, activities and payroll items, as shown and as held in the record.
class LineWatch {
 public:
  explicit LineWatch(store::MemoryDatabase& base) : base_(base) {}

  // The first breach since the last call; empty when there was none. Each of the three can be left out.
  std::string amendments(Office& office, const Act& act);
  std::string activities(Office& office, const Act& act);
  std::string items(Office& office, const Act& act);
  // Takes over what stands there now; after the checks of every act.
  void remember(Office& office, const Act& act);

  // The grid that amendment i (from 0) must be saved with; "" where the user's choice decides.
  const std::vector<std::string>& kept_grids() const { return sight_.grids; }

 private:
  struct Amendment {
    std::vector<std::string> columns;
    std::string items;  // attributes 30 to 33
    friend bool operator==(const Amendment&, const Amendment&) = default;
  };
  using Texts = std::vector<std::string>;
  static constexpr int kNone = -2, kNew = -1;
  struct Sight {
    std::string card;
    std::vector<Amendment> amendments;
    std::vector<std::string> grids;
    Texts activities, items;
    bool form = false;
    int selected = -1;        // amendment
    int amendment = kNone;    // under edit
    int activity = kNone;     // under edit
    int item = kNone;         // under edit
    int form_amendment = -1;  // that the item form was opened for
  };

  Sight look(Office& office) const;
  bool same_card(const Sight& now) const { return !now.card.empty() && now.card == sight_.card; }
  std::string loaded_amendment(Office& office) const;
  std::string confirmed_amendment(const Sight& now) const;
  std::string visited_amendment(Office& office, const Sight& now, const Act& act) const;
  std::vector<std::string> carried_grids(const Sight& now, Office& office, const Act& act) const;
  bool offers(const std::string& grid, Office& office, const std::string& date) const;

  store::MemoryDatabase& base_;
  Sight sight_;
  bool grid_touched_ = false;  // by the user, in this entry
};

}  // namespace velanor::test
