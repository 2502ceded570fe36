// Records to be written, however many, without keeping them in memory.
#pragma once

#include <optional>
#include <string>

#include "exchange/spool.h"
#include "velanor/record.h"

namespace velanor::exchange {

struct RecordChange {
  std::string id;
  std::optional<store::DbRecord> before;  // nothing: it is new
  store::DbRecord record;
};

class ChangeList {
 public:
  void add(const std::string& id, const std::optional<store::DbRecord>& before,
           const store::DbRecord& record);
  // From here on they are taken, in their order.
  void rewind() { texts_.rewind(); }
  // The next; nothing behind the last.
  std::optional<RecordChange> take();

 private:
  SpooledTexts texts_;
};

}  // namespace velanor::exchange
