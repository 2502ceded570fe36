// A database that remembers the selection statements that went through it.
#pragma once

#include <string>
#include <vector>

#include "velanor/wrapped_database.h"

namespace velanor::play {

// A statement is remembered even when the selection fails.
class RecordingDatabase : public store::WrappedDatabase {
 public:
  using WrappedDatabase::WrappedDatabase;

  const std::vector<std::string>& statements() const { return statements_; }
  // Forgets the first `count` of them.
  void forget_statements(std::size_t count) {
    statements_.erase(statements_.begin(), statements_.begin() + static_cast<std::ptrdiff_t>(count));
  }

 protected:
  void before(const store::DatabaseCall& call) override {
    if (call.kind == store::DatabaseCall::Kind::kSelect)
      statements_.emplace_back(store::DbRecord::from_encoded(call.id)(1));
  }

 private:
  std::vector<std::string> statements_;
};

}  // namespace velanor::play
