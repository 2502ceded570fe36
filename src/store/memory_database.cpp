#include "velanor/memory_database.h"

#include <algorithm>
#include <utility>

#include "store/checked_writes.h"
#include "store/memory_backend.h"

namespace velanor::store {

MemoryFile* MemoryBackend::file(std::string_view name) {
  const auto found = files_.find(name);
  return found == files_.end() ? nullptr : &found->second;
}

void MemoryBackend::open(std::string_view) {}

std::optional<DbRecord> MemoryBackend::find(std::string_view name, std::string_view id) {
  const MemoryFile* found = file(name);
  return found == nullptr ? std::nullopt : found->find(id);
}

bool MemoryBackend::put(std::string_view name, std::string_view id, const DbRecord& record,
                        const Expected& expected) {
  MemoryFile* known = file(name);
  if (known == nullptr) known = &files_[std::string(name)];
  if (!expected.wants_anything() && !expected.holds_for(known->find(id))) return false;
  note(name, id);
  known->put(id, record.encoded());
  return true;
}

bool MemoryBackend::erase(std::string_view name, std::string_view id, const Expected& expected) {
  if (!expected.wants_anything() && !expected.holds_for(find(name, id))) return false;
  MemoryFile* found = file(name);
  if (found == nullptr) return true;
  note(name, id);
  found->erase(id);
  return true;
}

void MemoryBackend::note(std::string_view name, std::string_view id) {
  if (in_change_) journal_.push_back({std::string(name), std::string(id), find(name, id)});
}

void MemoryBackend::in_one_change(const std::function<void()>& writes) {
  if (in_change_) return writes();
  in_change_ = true;
  try {
    writes();
  } catch (...) {
    undo();
    throw;
  }
  in_change_ = false;
  journal_.clear();
}

void MemoryBackend::undo() {
  in_change_ = false;
  // Nothing of it is left for the next change, whatever gives out here.
  std::vector<Before> journal = std::exchange(journal_, {});
  std::reverse(journal.begin(), journal.end());
  for (const Before& before : journal) {
    if (before.record) {
      put(before.file, before.id, *before.record, Expected::anything());
    } else {
      erase(before.file, before.id, Expected::anything());
    }
  }
}

void MemoryBackend::scan(std::string_view name, const Narrowing& narrowing, Content content,
                         const Visit& visit) {
  if (MemoryFile* found = file(name)) found->scan(narrowing, content, visit);
}

std::optional<std::uint64_t> MemoryBackend::changes_since(std::string_view name, std::uint64_t seen,
                                                          const VisitChange& visit) {
  if (const MemoryFile* found = file(name)) return found->changes_since(seen, visit);
  return seen == 0 ? std::optional<std::uint64_t>(0) : std::nullopt;
}

std::uint64_t MemoryBackend::revision(std::string_view name) {
  const MemoryFile* found = file(name);
  return found == nullptr ? 0 : found->revision();
}

std::vector<std::string> MemoryBackend::files() const {
  std::vector<std::string> names;
  for (const auto& [name, file] : files_) {
    if (file.size() > 0) names.push_back(name);
  }
  return names;
}

MemoryDatabase::MemoryDatabase() : MemoryDatabase(std::make_unique<MemoryBackend>()) {}

MemoryDatabase::MemoryDatabase(std::unique_ptr<MemoryBackend> backend)
    : StoreDatabase(std::move(backend)), backend_(static_cast<MemoryBackend*>(&StoreDatabase::backend())) {}

void MemoryDatabase::put(std::string_view file, std::string_view id, const DbRecord& record) {
  put_checked(*backend_, file, id, record);
}

void MemoryDatabase::remove(std::string_view file, std::string_view id) {
  backend_->erase(file, id, Expected::anything());
}

std::optional<DbRecord> MemoryDatabase::find(std::string_view file, std::string_view id) {
  return backend_->find(file, id);
}

std::vector<std::string> MemoryDatabase::files() { return backend_->files(); }

void MemoryDatabase::for_each(std::string_view file,
                              const std::function<void(std::string_view id, const DbRecord&)>& fn) {
  // What this backend visits stays until it is next written.
  std::vector<Row> rows;
  backend_->scan(file, {}, Content::kRecords, [&](const Row& row) { rows.push_back(row); });
  std::sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) { return a.id < b.id; });
  for (const Row& row : rows) fn(row.id, DbRecord::from_trusted(std::string(row.encoded)));
}

}  // namespace velanor::store
