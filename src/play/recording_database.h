// A database that remembers the selection statements that went through it.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "store/database.h"

namespace velanor::play {

// Passes every call on to another database, which must outlive it. A statement is remembered even
// when the selection fails.
class RecordingDatabase : public store::Database {
 public:
  explicit RecordingDatabase(store::Database& database) : database_(database) {}

  std::unique_ptr<store::DbFile> OpenFile(std::string_view name) override { return database_.OpenFile(name); }
  store::DbResult Select(std::string_view request, std::string_view option = {}) override {
    statements_.emplace_back(store::DbRecord::from_encoded(request)(1));
    return database_.Select(request, option);
  }

  const std::vector<std::string>& statements() const { return statements_; }
  // Forgets the first `count` of them.
  void forget_statements(std::size_t count) {
    statements_.erase(statements_.begin(), statements_.begin() + static_cast<std::ptrdiff_t>(count));
  }

 private:
  store::Database& database_;
  std::vector<std::string> statements_;
};

}  // namespace velanor::play
