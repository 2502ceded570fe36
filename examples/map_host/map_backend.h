// A store of the host's own, here a map, as a backend of the component's database.
#pragma once

#include <velanor/backend.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

// The host's own store: records by file and id.
using Records = std::map<std::string, velanor::store::DbRecord, std::less<>>;
using Files = std::map<std::string, Records, std::less<>>;

// Writes into the host's files, which outlive it. Nobody else writes them, or `revision` would have to tell.
class MapBackend : public velanor::store::Backend {
 public:
  explicit MapBackend(Files& files) : files_(files) {}

  // A file comes to be with its first record.
  void open(std::string_view) override {}

  std::optional<velanor::store::DbRecord> find(std::string_view file, std::string_view id) override {
    const Records& records = records_of(file);
    const auto found = records.find(id);
    return found == records.end() ? std::nullopt : std::optional(found->second);
  }

  bool put(std::string_view file, std::string_view id, const velanor::store::DbRecord& record,
           const velanor::store::Expected& expected) override {
    if (!expected.holds_for(find(file, id))) return false;
    ++revision_;
    files_[std::string(file)].insert_or_assign(std::string(id), record);
    return true;
  }

  bool erase(std::string_view file, std::string_view id, const velanor::store::Expected& expected) override {
    if (!expected.holds_for(find(file, id))) return false;
    ++revision_;
    files_[std::string(file)].erase(std::string(id));
    return true;
  }

  // The map knows where an id stands and where those with a prefix begin; for the rest all are shown.
  void scan(std::string_view file, const velanor::store::Narrowing& narrowing, velanor::store::Content,
            const Visit& visit) override {
    using Kind = velanor::store::Narrowing::Kind;
    const Records& records = records_of(file);
    const bool from_there = narrowing.kind == Kind::kId || narrowing.kind == Kind::kIdPrefix;
    auto at = from_there ? records.lower_bound(narrowing.text) : records.begin();
    for (; at != records.end(); ++at) {
      if (from_there && !at->first.starts_with(narrowing.text)) return;
      visit({at->first, at->second.encoded()});
    }
  }

  // One number for all files: it differs more often than it must.
  std::uint64_t revision(std::string_view) override { return revision_; }

  void in_one_change(const std::function<void()>& writes) override {
    Files before = files_;
    try {
      writes();
    } catch (...) {
      files_.swap(before);
      ++revision_;
      throw;
    }
  }

  // Nobody else writes meanwhile.
  void in_one_view(const std::function<void()>& reads) override { reads(); }

 private:
  const Records& records_of(std::string_view file) const {
    static const Records kNone;
    const auto found = files_.find(file);
    return found == files_.end() ? kNone : found->second;
  }

  Files& files_;
  std::uint64_t revision_ = 0;
};
