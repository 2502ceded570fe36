// Counts what reaches the store.
#pragma once

#include "store/database.h"

namespace velanor::test {

class CountingDatabase : public store::Database {
 public:
  explicit CountingDatabase(store::Database& database) : database_(database) {}

  std::unique_ptr<store::DbFile> OpenFile(std::string_view name) override {
    return std::make_unique<File>(*this, database_.OpenFile(name));
  }
  store::DbResult Select(std::string_view request, std::string_view option) override {
    return database_.Select(request, option);
  }
  long changes() const { return changes_; }

 private:
  class File : public store::DbFile {
   public:
    File(CountingDatabase& owner, std::unique_ptr<store::DbFile> file)
        : owner_(owner), file_(std::move(file)) {}
    std::optional<store::DbRecord> find(std::string_view id) override { return file_->find(id); }
    void write(std::string_view id, const store::DbRecord& record) override {
      ++owner_.changes_;
      file_->write(id, record);
    }
    void DeleteRecord(std::string_view id) override {
      ++owner_.changes_;
      file_->DeleteRecord(id);
    }

   private:
    CountingDatabase& owner_;
    std::unique_ptr<store::DbFile> file_;
  };

  store::Database& database_;
  long changes_ = 0;
};

}  // namespace velanor::test
