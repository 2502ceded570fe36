// A database that takes note of what becomes of the cards in it.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "velanor/wrapped_database.h"

namespace velanor::app {

class WatchedDatabase : public store::WrappedDatabase {
 public:
  struct CardChange {
    enum class Kind { kWritten, kDeleted } kind;
    std::string id;    // of the record
    std::string name;  // of the employee; "" for a card deleted
  };

  using WrappedDatabase::WrappedDatabase;

  // What is undone is no change.
  void in_one_change(const std::function<void()>& writes) override;

  // The last change since this was asked before.
  std::optional<CardChange> take_change() { return std::exchange(change_, std::nullopt); }

 protected:
  void after(const store::DatabaseCall& call) override;

 private:
  std::optional<CardChange> change_;
};

}  // namespace velanor::app
