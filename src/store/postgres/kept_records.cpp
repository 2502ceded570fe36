#include "store/postgres/kept_records.h"

#include <algorithm>
#include <iterator>

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

bool KeptRecords::is_known(std::string_view file) const {
  const auto kept = files_.find(file);
  return kept != files_.end() && (kept->second.complete || kept->second.large);
}

std::optional<std::uint64_t> KeptRecords::revision(std::string_view file) const {
  const auto kept = files_.find(file);
  return kept == files_.end() ? std::nullopt : kept->second.revision;
}

void KeptRecords::visit(std::string_view file, const std::function<void(const Row&)>& visit) const {
  const auto kept = files_.find(file);
  if (kept == files_.end()) return;
  for (const auto& [id, record] : kept->second.records) {
    if (record) visit({id, record->encoded()});
  }
}

std::vector<std::string> KeptRecords::missing() const {
  std::vector<std::string> files;
  std::copy_if(wanted_.begin(), wanted_.end(), std::back_inserter(files),
               [&](const std::string& file) { return !is_known(file); });
  return files;
}

void KeptRecords::keep(std::string_view file, std::string_view id, const std::optional<DbRecord>& record) {
  files_[std::string(file)].records.insert_or_assign(std::string(id), record);
}

void KeptRecords::drop(std::string_view file) {
  const auto kept = files_.find(file);
  if (kept != files_.end()) files_.erase(kept);
}

}  // namespace velanor::store::postgres
