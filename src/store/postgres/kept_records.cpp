#include "store/postgres/kept_records.h"

namespace velanor::store::postgres {

const std::optional<DbRecord>* KeptRecords::find(std::string_view file, std::string_view id) const {
  const auto kept = files_.find(file);
  if (kept == files_.end()) return nullptr;
  const auto record = kept->second.records.find(id);
  if (record != kept->second.records.end()) return &record->second;
  return kept->second.complete ? &kAbsent : nullptr;
}

bool KeptRecords::is_large(std::string_view file) const {
  const auto kept = files_.find(file);
  return kept != files_.end() && kept->second.large;
}

void KeptRecords::keep(std::string_view file, std::string_view id, const std::optional<DbRecord>& record) {
  files_[std::string(file)].records.insert_or_assign(std::string(id), record);
}

void KeptRecords::drop(std::string_view file) {
  const auto kept = files_.find(file);
  if (kept != files_.end()) files_.erase(kept);
}

}  // namespace velanor::store::postgres
