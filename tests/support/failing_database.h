// A database whose n-th call fails, to show that a failure reaches the host and loses nothing.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "store/database.h"

namespace velanor::store {

inline constexpr const char* kPlannedFailure = "Le disque est plein. Libérez de la place, puis recommencez.";

// Counts the calls of OpenFile, Select and, on the files opened through it, find (also as Read),
// write (also as DBWrite) and DeleteRecord. The planned call throws DbError kStoreFailure before
// it does anything; those around it go to the inner database, which must outlive this.
class FailingDatabase : public Database {
 public:
  explicit FailingDatabase(Database& inner) : inner_(&inner) {}

  // Lets the n-th call from now on fail (1 is the next one); 0 lets none.
  void fail_at(int n) { failing_call_ = n == 0 ? 0 : calls_ + n; }
  int calls() const { return calls_; }
  // Calls that have failed so far, also those whose error nobody let through.
  int failures() const { return failures_; }

  std::unique_ptr<DbFile> OpenFile(std::string_view name) override {
    count();
    return std::make_unique<File>(*this, inner_->OpenFile(name));
  }
  DbResult Select(std::string_view request, std::string_view option = {}) override {
    count();
    return inner_->Select(request, option);
  }

 private:
  class File : public DbFile {
   public:
    File(FailingDatabase& owner, std::unique_ptr<DbFile> inner) : owner_(&owner), inner_(std::move(inner)) {}
    std::optional<DbRecord> find(std::string_view id) override { return owner_->count(), inner_->find(id); }
    void write(std::string_view id, const DbRecord& record) override {
      owner_->count();
      inner_->write(id, record);
    }
    void DeleteRecord(std::string_view id) override {
      owner_->count();
      inner_->DeleteRecord(id);
    }

   private:
    FailingDatabase* owner_;
    std::unique_ptr<DbFile> inner_;
  };

  void count() {
    if (++calls_ != failing_call_) return;
    ++failures_;
    throw DbError(kStoreFailure, kPlannedFailure);
  }

  Database* inner_;
  int calls_ = 0;
  int failing_call_ = 0;
  int failures_ = 0;
};

}  // namespace velanor::store
