// Counts the changes of the store, and shows each to a judge before it is made.
#pragma once

#include <functional>

#include "store/database.h"

namespace velanor::test {

class WatchedStore : public store::Database {
 public:
  // `record` is null for a removal.
  using Judge =
      std::function<void(std::string_view file, std::string_view id, const store::DbRecord* record)>;
  explicit WatchedStore(store::Database& inner) : inner_(inner) {}

  Judge judge;
  // Changes that reached the inner store.
  long changes() const { return changes_; }

  std::unique_ptr<store::DbFile> OpenFile(std::string_view name) override {
    return std::make_unique<File>(*this, name, inner_.OpenFile(name));
  }
  store::DbResult Select(std::string_view request, std::string_view option) override {
    return inner_.Select(request, option);
  }

 private:
  class File : public store::DbFile {
   public:
    File(WatchedStore& owner, std::string_view name, std::unique_ptr<store::DbFile> file)
        : owner_(owner), name_(name), file_(std::move(file)) {}
    std::optional<store::DbRecord> find(std::string_view id) override { return file_->find(id); }
    void write(std::string_view id, const store::DbRecord& record) override {
      if (owner_.judge) owner_.judge(name_, id, &record);
      file_->write(id, record);
      ++owner_.changes_;
    }
    void DeleteRecord(std::string_view id) override {
      if (owner_.judge) owner_.judge(name_, id, nullptr);
      file_->DeleteRecord(id);
      ++owner_.changes_;
    }

   private:
    WatchedStore& owner_;
    std::string name_;
    std::unique_ptr<store::DbFile> file_;
  };

  store::Database& inner_;
  long changes_ = 0;
};

}  // namespace velanor::test
