// The database as the component sees it: files of records, and selections over them.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "store/error.h"
#include "store/query.h"
#include "store/record.h"

namespace velanor::store {

class DbFile;

// A record bound to a file and an id: filled, then written by DBWrite. It starts empty.
// The file must outlive it.
class FileRecord : public DbRecord {
 public:
  FileRecord(DbFile& file, std::string id) : file_(&file), id_(std::move(id)) {}
  const std::string& id() const { return id_; }
  // Replaces the whole content by another record's.
  void assign(const DbRecord& other) { DbRecord::operator=(other); }
  // Writes the record under its id; durable where the store is, once this returns.
  void DBWrite();

 private:
  DbFile* file_;
  std::string id_;
};

// An open file. Failures are DbError; a missing record is one only for Read.
class DbFile {
 public:
  virtual ~DbFile() = default;
  virtual std::optional<DbRecord> find(std::string_view id) = 0;
  virtual void write(std::string_view id, const DbRecord& record) = 0;
  // Removing a record that does not exist is not an error.
  virtual void DeleteRecord(std::string_view id) = 0;

  // Throws DbError kMissingRecord when there is no such record.
  DbRecord Read(std::string_view id);
  FileRecord Record(std::string_view id) { return FileRecord(*this, std::string(id)); }
};

// What the host hands in as TheDatabase. Used from one thread. Files that it opened must not
// outlive it.
class Database {
 public:
  virtual ~Database() = default;
  virtual std::unique_ptr<DbFile> OpenFile(std::string_view name) = 0;
  // Runs a request in its encoded form (see DbQuery). `option` is always "".
  virtual DbResult Select(std::string_view request, std::string_view option = {}) = 0;

  // What its users hold in common, theirs to make and to drop; the database never looks at it.
  std::weak_ptr<void> shared;
};

}  // namespace velanor::store
