#include "app/velanor/watched_database.h"

#include "card/record/element.h"

namespace velanor::app {

void WatchedDatabase::in_one_change(const std::function<void()>& writes) {
  const std::optional<CardChange> before = change_;
  try {
    WrappedDatabase::in_one_change(writes);
  } catch (...) {
    change_ = before;
    throw;
  }
}

void WatchedDatabase::after(const store::DatabaseCall& call) {
  if (call.file != "VELANORO") return;
  if (call.kind == store::DatabaseCall::Kind::kWrite)
    change_ = {CardChange::Kind::kWritten, std::string(call.id),
               std::string(element(*call.record, card::kName))};
  if (call.kind == store::DatabaseCall::Kind::kDelete)
    change_ = {CardChange::Kind::kDeleted, std::string(call.id), {}};
}

}  // namespace velanor::app
