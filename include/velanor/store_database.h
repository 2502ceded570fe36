// The database over any backend: opens files, and runs selections the same way everywhere.
#pragma once

#include <memory>
#include <string_view>

#include "store/result_cache.h"
#include "store/select/dictionary.h"
#include "velanor/backend.h"
#include "velanor/database.h"

namespace velanor::store {

class StoreDatabase : public Database {
 public:
  explicit StoreDatabase(std::unique_ptr<Backend> backend,
                         select::Dictionary dictionary = select::default_dictionary());

  std::unique_ptr<DbFile> OpenFile(std::string_view name) override;
  // A request that was run before answers at once while its file has not changed.
  DbResult Select(std::string_view request, std::string_view option = {}) override;
  void in_one_change(const std::function<void()>& writes) override { backend_->in_one_change(writes); }
  void in_one_view(const std::function<void()>& reads) override { backend_->in_one_view(reads); }

 protected:
  Backend& backend() { return *backend_; }

 private:
  DbResult run(const DbRecord& query);

  std::unique_ptr<Backend> backend_;
  select::Dictionary dictionary_;
  ResultCache cache_;
};

// Writes through here: an id must not be empty and must be clean text (DbError kStoreFailure), and what
// stands there as expected (kConflict).
void put_checked(Backend& backend, std::string_view file, std::string_view id, const DbRecord& record,
                 Expected expected = Expected::anything());

}  // namespace velanor::store
