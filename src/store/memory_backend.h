// The backend of the in-memory store: its files by name.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "store/memory_file.h"
#include "velanor/backend.h"

namespace velanor::store {

class MemoryBackend : public Backend {
 public:
  void open(std::string_view file) override;
  std::optional<DbRecord> find(std::string_view file, std::string_view id) override;
  bool put(std::string_view file, std::string_view id, const DbRecord& record,
           const Expected& expected) override;
  bool erase(std::string_view file, std::string_view id, const Expected& expected) override;
  void scan(std::string_view file, const Narrowing& narrowing, Content content, const Visit& visit) override;
  std::optional<std::uint64_t> changes_since(std::string_view file, std::uint64_t seen,
                                             const VisitChange& visit) override;
  std::uint64_t revision(std::string_view file) override;
  void in_one_change(const std::function<void()>& writes) override;
  // Nobody else writes meanwhile.
  void in_one_view(const std::function<void()>& reads) override { reads(); }

  // The files that hold records.
  std::vector<std::string> files() const;

 private:
  // nullptr for a file that was never written.
  MemoryFile* file(std::string_view name);

  // What a record was before the change under way touched it.
  struct Before {
    std::string file, id;
    std::optional<DbRecord> record;
  };
  void note(std::string_view file, std::string_view id);
  void undo();

  std::map<std::string, MemoryFile, std::less<>> files_;
  std::vector<Before> journal_;
  bool in_change_ = false;
};

}  // namespace velanor::store
