// The in-memory store: for tests, demonstrations and as the reference that other stores are compared with.
// It is gone with the object.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velanor/backend.h"

namespace velanor::store {

class MemoryBackend;

// Any file can be opened; one that was never written is empty. Besides what every database does, records can
// be put and looked at without opening files. On one thread, as every database.
class MemoryDatabase : public StoreDatabase {
 public:
  MemoryDatabase();

  void put(std::string_view file, std::string_view id, const DbRecord& record);
  void remove(std::string_view file, std::string_view id);
  std::optional<DbRecord> find(std::string_view file, std::string_view id);
  // The files that hold records, by name.
  std::vector<std::string> files() override;
  // Every record of a file, in ascending order of ids. `fn` does not call the database.
  void for_each(std::string_view file, const std::function<void(std::string_view id, const DbRecord&)>& fn);

 private:
  explicit MemoryDatabase(std::unique_ptr<MemoryBackend> backend);

  MemoryBackend* backend_;
};

}  // namespace velanor::store
