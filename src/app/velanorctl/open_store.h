// The store that a sub-command works on, as its options name it.
#pragma once

#include <memory>
#include <string>

#include "store/database.h"

namespace CLI {
class App;
}

namespace velanor::app {

struct StoreOptions {
  std::string url;    // --store; "" when it is not given
  bool demo = false;  // --demo
};

// The options --store and --demo, of which at most one may be given.
void add_store_options(CLI::App& command, StoreOptions& options);

// An empty store in memory when nothing is named. Throws store::DbError with a French sentence when
// the store cannot be opened.
std::unique_ptr<store::Database> open_store(const StoreOptions& options);

}  // namespace velanor::app
