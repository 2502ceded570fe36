// The store that a sub-command works on, as its options name it.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "demo/demo.h"
#include "velanor/database.h"
#include "velanor/sqlite_database.h"

namespace CLI {
class App;
}

namespace velanor::app {

struct StoreOptions {
  std::string url;    // --store; "" when it is not given
  bool demo = false;  // --demo
};

// An empty store in memory, as a URL.
inline constexpr std::string_view kMemoryStore = "memory:";

// The options --store and --demo, of which at most one may be given.
void add_store_options(CLI::App& command, StoreOptions& options);

enum class IfMissing { kFail, kCreate };

// Whether a database file is named, there or not.
bool is_file(const StoreOptions& options);

// "memory:", "sqlite:PATH", a plain path, or the postgresql:// URL of a server; an empty store in memory when
// nothing is named. Throws store::DbError with a French sentence when the store cannot be opened.
std::unique_ptr<store::Database> open_store(const StoreOptions& options,
                                            IfMissing if_missing = IfMissing::kFail);

// The same for a command that is of no use on an empty store: one that is not named is an error of
// usage.
std::unique_ptr<store::Database> open_named_store(const StoreOptions& options,
                                                  IfMissing if_missing = IfMissing::kFail);

// A database file that must be there already, for a command that looks at the file itself. One without
// a byte, which would else pass for a new one, is a sqlite::DamagedError.
std::unique_ptr<store::SqliteDatabase> open_to_examine(std::string_view url);

// The path that a URL or a plain path names. Throws store::DbError for a server, and for a kind that is not
// known.
std::string path_of(std::string_view url);

// Brings the demonstration data into a store.
class StoreSink : public demo::Sink {
 public:
  using Put = std::function<void(std::string_view file, std::string_view id, const store::DbRecord&)>;
  explicit StoreSink(Put put) : put_(std::move(put)) {}
  void put(std::string_view file, std::string_view id, const store::DbRecord& record) override {
    put_(file, id, record);
  }

 private:
  Put put_;
};

}  // namespace velanor::app
