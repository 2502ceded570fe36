#include "exchange/change_list.h"

#include <utility>

namespace velanor::exchange {
namespace {

constexpr std::string_view kNew = "new", kChanged = "changed";

}  // namespace

void ChangeList::add(const std::string& id, const std::optional<store::DbRecord>& before,
                     const store::DbRecord& record) {
  texts_.add(id);
  texts_.add(before ? kChanged : kNew);
  texts_.add(before ? before->encoded() : std::string_view());
  texts_.add(record.encoded());
}

std::optional<RecordChange> ChangeList::take() {
  RecordChange change;
  std::string kind, before, record;
  if (!texts_.take(change.id)) return std::nullopt;
  texts_.take(kind);
  texts_.take(before);
  texts_.take(record);
  if (kind == kChanged) change.before = store::DbRecord::from_trusted(std::move(before));
  change.record = store::DbRecord::from_trusted(std::move(record));
  return change;
}

}  // namespace velanor::exchange
