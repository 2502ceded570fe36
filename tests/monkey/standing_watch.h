// Sees to it that what the component says of the open card is what the screen and the store show.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "control/hearing.h"
#include "monkey/act.h"
#include "monkey/watched_store.h"

namespace velanor::test {

class StandingWatch {
 public:
  explicit StandingWatch(const WatchedStore& store) : store_(store) {}

  // A new component.
  void start_anew(Office& office);

  // The first breach since the last call; empty when there was none.
  std::string standing(Office& office, const Act& act);
  std::string modified(Office& office, const Act& act);
  std::string told(Office& office, const Act& act);
  // Takes over what stands there now; after the checks of every act.
  void remember(Office& office, const Act& act);

  // Everything on the card that the user could have changed.
  using Sight = std::vector<std::string>;
  static Sight card_of(Office& office);

 private:
  // Of each entry that is open what it holds: one may stand on another.
  using Entries = std::map<std::string, Sight>;
  static Entries entries_of(Office& office);

  const WatchedStore& store_;
  std::unique_ptr<Hearing> hearing_;
  long opened_ = 0, closed_ = 0, saved_ = 0, copied_ = 0, deleted_ = 0;
  long written_before_ = 0, deleted_before_ = 0;  // by components before this one
  std::string card_, last_told_ = "now none";
  Sight card_as_opened_;
  bool seen_opened_ = false;
  Entries entries_as_begun_;
  bool grid_touched_ = false;  // in this entry: of two grids with one label another may have been chosen
};

}  // namespace velanor::test
