// The backend of the in-memory store: its files by name.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "store/backend.h"
#include "store/memory_file.h"

namespace velanor::store {

class MemoryBackend : public Backend {
 public:
  void open(std::string_view file) override;
  std::optional<DbRecord> find(std::string_view file, std::string_view id) override;
  void put(std::string_view file, std::string_view id, const DbRecord& record) override;
  void erase(std::string_view file, std::string_view id) override;
  void scan(std::string_view file, const Narrowing& narrowing, Content content, const Visit& visit) override;
  std::uint64_t revision(std::string_view file) override;

  // The files that hold records.
  std::vector<std::string> files() const;

 private:
  // nullptr for a file that was never written.
  MemoryFile* file(std::string_view name);

  std::map<std::string, MemoryFile, std::less<>> files_;
};

}  // namespace velanor::store
