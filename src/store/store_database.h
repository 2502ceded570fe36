// The database over any backend: opens files, and runs selections the same way everywhere.
#pragma once

#include <memory>
#include <string_view>

#include "store/backend.h"
#include "store/database.h"
#include "store/result_cache.h"
#include "store/select/dictionary.h"

namespace velanor::store {

class StoreDatabase : public Database {
 public:
  explicit StoreDatabase(std::unique_ptr<Backend> backend,
                         select::Dictionary dictionary = select::default_dictionary());

  std::unique_ptr<DbFile> OpenFile(std::string_view name) override;
  // A request that was run before answers at once while its file has not changed.
  DbResult Select(std::string_view request, std::string_view option = {}) override;

 protected:
  Backend& backend() { return *backend_; }

 private:
  DbResult run(const DbRecord& query);

  std::unique_ptr<Backend> backend_;
  select::Dictionary dictionary_;
  ResultCache cache_;
};

// Writes through here: an id must not be empty and must be clean text (DbError kStoreFailure).
void put_checked(Backend& backend, std::string_view file, std::string_view id, const DbRecord& record);

}  // namespace velanor::store
