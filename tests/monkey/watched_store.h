// Counts the changes of the store, and shows each to a judge before it is made.
#pragma once

#include <functional>

#include "velanor/wrapped_database.h"

namespace velanor::test {

class WatchedStore : public store::WrappedDatabase {
 public:
  // `record` is null for a removal.
  using Judge =
      std::function<void(std::string_view file, std::string_view id, const store::DbRecord* record)>;
  using WrappedDatabase::WrappedDatabase;

  Judge judge;
  // Changes that reached the inner store.
  long changes() const { return changes_; }
  long cards_written() const { return cards_written_; }
  long cards_deleted() const { return cards_deleted_; }

 protected:
  static bool is_change(const store::DatabaseCall& call) {
    return call.kind == store::DatabaseCall::Kind::kWrite || call.kind == store::DatabaseCall::Kind::kDelete;
  }
  void before(const store::DatabaseCall& call) override {
    if (judge && is_change(call)) judge(call.file, call.id, call.record);
  }
  void after(const store::DatabaseCall& call) override {
    changes_ += is_change(call) ? 1 : 0;
    if (call.file != "VELANORO") return;
    cards_written_ += call.kind == store::DatabaseCall::Kind::kWrite ? 1 : 0;
    cards_deleted_ += call.kind == store::DatabaseCall::Kind::kDelete ? 1 : 0;
  }

 private:
  long changes_ = 0, cards_written_ = 0, cards_deleted_ = 0;
};

}  // namespace velanor::test
