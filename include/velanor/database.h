// The database as the component sees it: files of records, and selections over them.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velanor/error.h"
#include "velanor/history.h"
#include "velanor/query.h"
#include "velanor/record.h"

namespace velanor::control {
class Procedure;
struct Variable;
}  // namespace velanor::control

namespace velanor::store {

class DbFile;

// Some characters of an id: the first of them, from 1, and how many; 0: all that follow.
struct IdPart {
  std::size_t first = 1, count = 0;
};

// What a write or a deletion expects to find under its id. Something else is a kConflict, and nothing is
// written: no clerk's record takes the place of another's unseen. A record is expected by what it holds, so
// a store needs no mark of its own for it: one that was changed and changed back is the same.
class Expected {
 public:
  static Expected anything() { return Expected(Kind::kAnything); }
  static Expected absent() { return Expected(Kind::kAbsent); }
  static Expected record(const DbRecord& record) { return Expected(Kind::kRecord, record.encoded()); }

  bool wants_anything() const { return kind_ == Kind::kAnything; }
  bool wants_absence() const { return kind_ == Kind::kAbsent; }
  // What the expected record holds, for a store that compares elsewhere; "" for the other kinds.
  const std::string& content() const { return content_; }
  // Whether what is stored (nothing: no record) is as expected.
  bool holds_for(const std::optional<DbRecord>& stored) const;

 private:
  enum class Kind { kAnything, kAbsent, kRecord };
  explicit Expected(Kind kind, std::string content = {}) : kind_(kind), content_(std::move(content)) {}
  Kind kind_;
  std::string content_;
};

// A record bound to a file and an id: filled, then written by DBWrite. It starts empty.
// The file must outlive it.
class FileRecord : public DbRecord {
 public:
  FileRecord(DbFile& file, std::string id) : file_(&file), id_(std::move(id)) {}
  const std::string& id() const { return id_; }
  // Replaces the whole content by another record's.
  void assign(const DbRecord& other) { DbRecord::operator=(other); }
  // Writes the record under its id; durable where the store is, once this returns.
  void DBWrite(const Expected& expected = Expected::anything());

 private:
  DbFile* file_;
  std::string id_;
};

// An open file. Failures are DbError; a missing record is one only for Read.
class DbFile {
 public:
  virtual ~DbFile() = default;
  virtual std::optional<DbRecord> find(std::string_view id) = 0;
  virtual void write(std::string_view id, const DbRecord& record, const Expected& expected) = 0;
  void write(std::string_view id, const DbRecord& record) { write(id, record, Expected::anything()); }
  virtual void remove(std::string_view id, const Expected& expected) = 0;
  // Removing a record that does not exist is not an error.
  void DeleteRecord(std::string_view id) { remove(id, Expected::anything()); }

  // Throws DbError kMissingRecord when there is no such record.
  DbRecord Read(std::string_view id);
  FileRecord Record(std::string_view id) { return FileRecord(*this, std::string(id)); }
};

// What the host hands in as TheDatabase. Used from one thread. Files that it opened must not
// outlive it. One that cannot make changes or views of several calls says so with a DbError.
class Database {
 public:
  virtual ~Database() = default;
  virtual std::unique_ptr<DbFile> OpenFile(std::string_view name) = 0;
  // Runs a request in its encoded form (see DbQuery). `option` is always "".
  virtual DbResult Select(std::string_view request, std::string_view option = {}) = 0;

  // Carries out everything that `writes` writes through this database as one change: all of it, or nothing
  // when it throws. Within another change it belongs to that one.
  virtual void in_one_change(const std::function<void()>& writes);
  // Runs reads that see the database as it stands now, whatever others write meanwhile.
  virtual void in_one_view(const std::function<void()>& reads);

  // Nothing can be written: every write fails. What is open is open for reading.
  virtual bool read_only() const { return false; }

  // The files that hold records, by name; none where a database does not know them.
  virtual std::vector<std::string> files() { return {}; }
  // The versions of its records; null where none are kept.
  virtual History* history() { return nullptr; }
  // From now on statements may call a part of the ids of a file by this name. The component names those
  // that it uses when it is started.
  virtual void name_id_part(std::string_view file, std::string_view name, const IdPart& part) = 0;

 private:
  friend class control::Procedure;
  // The components on this database find each other here.
  std::weak_ptr<control::Variable> shared_;
};

}  // namespace velanor::store
