// The database over any backend: opens files, and runs selections the same way everywhere.
#pragma once

#include <memory>
#include <string_view>

#include "velanor/backend.h"
#include "velanor/database.h"

namespace velanor::store {

class StoreDatabase : public Database {
 public:
  explicit StoreDatabase(std::unique_ptr<Backend> backend);
  ~StoreDatabase() override;

  std::unique_ptr<DbFile> OpenFile(std::string_view name) override;
  // A request that was run before answers at once while its file has not changed.
  DbResult Select(std::string_view request, std::string_view option = {}) override;
  void in_one_change(const std::function<void()>& writes) override;
  void in_one_view(const std::function<void()>& reads) override;
  void name_id_part(std::string_view file, std::string_view name, const IdPart& part) override;

 protected:
  Backend& backend();

 private:
  struct Engine;
  std::unique_ptr<Engine> engine_;
};

// Writes and deletions go through here: an id must not be empty and must be clean text (DbError
// kStoreFailure), and what stands there as expected (kConflict).
void put_checked(Backend& backend, std::string_view file, std::string_view id, const DbRecord& record,
                 const Expected& expected = Expected::anything());
void erase_checked(Backend& backend, std::string_view file, std::string_view id, const Expected& expected);

}  // namespace velanor::store
