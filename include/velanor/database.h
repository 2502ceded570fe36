// The database as the component sees it: files of records, and selections over them. A host takes one of
// those that are there (sqlite_database.h, memory_database.h), writes a backend under their engine
// (backend.h), or derives from Database itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velanor/history.h"
#include "velanor/news.h"
#include "velanor/query.h"
#include "velanor/record.h"

namespace velanor::control {
class Procedure;
struct Variable;
}  // namespace velanor::control

namespace velanor::store {

class DbFile;

// Numbers of errors: a record that does not exist, where one had to be read;
inline constexpr std::uint32_t kMissingRecord = 0x8004000B;
// a selection statement that is not of the language;
inline constexpr std::uint32_t kBadStatement = 0x80040002;
// a write or a deletion that found under its id something else than it expected, and did nothing;
inline constexpr std::uint32_t kConflict = 0x80040003;
// what this kind of database cannot do at all: changes and views of several calls;
inline constexpr std::uint32_t kNotOffered = 0x80040004;
// every other failure.
inline constexpr std::uint32_t kStoreFailure = 0x80040001;

// The one error of a store. It ends the operation in progress and reaches the host. Its sentence is in
// French, for the user: what happened, and what to do.
class DbError : public std::runtime_error {
 public:
  DbError(std::uint32_t number, const std::string& sentence)
      : std::runtime_error(sentence), number_(number) {}
  std::uint32_t number() const { return number_; }

 private:
  std::uint32_t number_;
};

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

// A record bound to a file and an id: filled, then written by DBWrite. It starts empty, whatever is stored
// there. The file must outlive it; copies are bound alike.
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

// An open file. It belongs to who opened it, who destroys it before its database. Failures are DbError; a
// missing record is one only for Read, whose number callers test for.
class DbFile {
 public:
  virtual ~DbFile() = default;
  // Nothing where there is no such record.
  virtual std::optional<DbRecord> find(std::string_view id) = 0;
  // Takes the place of what stands there, if that is as expected; durable where the store is, once it
  // returns. The id is a text that is not empty.
  virtual void write(std::string_view id, const DbRecord& record, const Expected& expected) = 0;
  void write(std::string_view id, const DbRecord& record) { write(id, record, Expected::anything()); }
  virtual void remove(std::string_view id, const Expected& expected) = 0;
  // Removing a record that does not exist is not an error.
  void DeleteRecord(std::string_view id) { remove(id, Expected::anything()); }
  // The same for each of these; where one fails the others are tried, and its failure is thrown then.
  virtual void remove_each(const std::vector<std::string>& ids);

  // Throws DbError kMissingRecord when there is no such record.
  DbRecord Read(std::string_view id);
  FileRecord Record(std::string_view id) { return FileRecord(*this, std::string(id)); }
};

// What the host hands in as TheDatabase. It and its files are used from one thread, that of the components
// on it, by them and as the host likes. It must outlive the components and the files: they are closed when
// the last component on it has been left or destroyed. Every call may fail with a DbError.
class Database {
 public:
  Database() = default;
  virtual ~Database() = default;
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  // Never null; the same name may be opened many times. A file without records is as good as any; one that
  // the database cannot have at all is an error.
  virtual std::unique_ptr<DbFile> OpenFile(std::string_view name) = 0;
  // Runs a request in its encoded form (see DbQuery). `option` is always "". Sees every write before it.
  virtual DbResult Select(std::string_view request, std::string_view option = {}) = 0;

  // These two are for work on many records, such as an import, or the deletion of a card with what was
  // computed of it, which the component does call by call where the database has no changes. They throw a
  // DbError (kNotOffered) where they are not overridden. What the function throws goes on to the caller.
  // Carries out everything that `writes` writes through this database as one change: all of it, or nothing
  // when it throws. What it reads sees what it wrote. Within another change it belongs to that one, and
  // its failure must be let through.
  virtual void in_one_change(const std::function<void()>& writes);
  // Runs reads that see the database as it stands now, whatever others write meanwhile. It writes nothing.
  virtual void in_one_view(const std::function<void()>& reads);

  // Nothing can be written: every write fails. What is open is open for reading. Asked when a component is
  // started.
  virtual bool read_only() const { return false; }

  // The files that hold records, by name; none where a database does not know them.
  virtual std::vector<std::string> files() { return {}; }
  // The versions of its records; null where none are kept.
  virtual History* history() { return nullptr; }
  // A new reader of what others write; null where the database does not hear of it.
  virtual std::unique_ptr<News> news() { return nullptr; }
  // From now on statements may call a part of the ids of a file by this name. The component names those
  // that it uses when it is started.
  virtual void name_id_part(std::string_view file, std::string_view name, const IdPart& part) = 0;

 private:
  friend class control::Procedure;
  // The components on this database find each other here.
  std::weak_ptr<control::Variable> shared_;
};

}  // namespace velanor::store
