// The embedded store: all files of records in one SQLite database file.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "velanor/backend.h"

namespace velanor::store {

namespace sqlite {
class SqliteBackend;
}

// A file stands where another was to be made; it is left as it is.
class NameTaken : public DbError {
 public:
  using DbError::DbError;
};

// What is written is on the disk once the call returns; a failure leaves the file as it was. Any file of
// records can be opened; one that was never written is empty. Several programs, and several of these, each on
// a thread of its own, may use one database file; each sees at once what the others write. Every failure is a
// DbError (kStoreFailure) whose sentence says what to do.
class SqliteDatabase : public StoreDatabase {
 public:
  enum class Missing { kFail, kCreate };
  struct Options {
    // Whether a file that is not there is created (mode 0600) or an error.
    Missing missing = Missing::kFail;
    // How long a write waits for other programs, in milliseconds.
    int patience = 5000;
    // Seconds since 1970, UTC; the system's where nothing is given.
    std::function<std::int64_t()> clock = {};
  };

  // A file of another kind, or written by a later version, is refused and left as it is; an older
  // one is brought up to date. A file that may not be written, or stands in a folder that may not, is
  // opened for reading; every write then fails.
  explicit SqliteDatabase(const std::string& path) : SqliteDatabase(path, Options()) {}
  SqliteDatabase(const std::string& path, const Options& options);
  ~SqliteDatabase() override;

  // Whether it is open for reading alone.
  bool read_only() const override;
  // What whoever opens it should know of its file, a sentence: others of this machine can read it. "":
  // nothing.
  std::string remark() const;
  History* history() override { return history_.get(); }

  // Of in_one_change: many records in one are also fast. Others wait with their writes meanwhile, and see
  // nothing before its end. Of in_one_view: nobody waits for it; to write inside one is an error.

  // Writes a record without opening its file.
  void put(std::string_view file, std::string_view id, const DbRecord& record);
  // The files that hold records, by name.
  std::vector<std::string> files() override;
  // Makes a new database file (mode 0600) that appears, complete and on the disk, when `fill` has returned
  // true, and else not at all. A file that exists is a NameTaken.
  static void build(const std::string& path, const std::function<bool(SqliteDatabase&)>& fill);
  // Puts a copy of a backup, found sound, in the place of a database file that nobody has open. Returns where
  // that one then stands; "" where there was none.
  static std::string restore(const std::string& backup, const std::string& path);
  // Copies the database, as it stands now, to a new file (mode 0600) that appears when it is complete,
  // has been found sound and is on the disk; others may write meanwhile. A file that exists is a NameTaken.
  // `progress` hears what part is copied, from 0 to 1; what it throws
  // ends the copy, of which nothing stays.
  void back_up(const std::string& path, const std::function<void(double)>& progress = {});
  // Hands over the path of such a copy, which stands beside the base and goes when `use` has returned.
  void with_copy(const std::function<void(const std::string& copy)>& use,
                 const std::function<void(double)>& progress = {});
  // What is damaged in the file itself, in SQLite's words; nothing for a sound file.
  std::vector<std::string> damages();
  // Where what is derived from the records (indexes, triggers, ids kept backwards) does not agree with them,
  // and what in the file is not this program's.
  std::vector<std::string> disagreements();
  // Makes that anew as one change; a DbError, and nothing changed, where the file is not sound afterwards.
  void repair();
  // Versions whose checksum does not hold. To read such a record is an error, to write it is not.
  struct DamagedRecord {
    std::string file, id;
    bool in_history;       // what is stored now is sound
    std::string sentence;  // names the latest version that is sound
  };
  std::vector<DamagedRecord> damaged_records();

  // Whether the file says of itself that it is such a database; nothing else of it is looked at.
  static bool is_at(const std::string& path);

 private:
  explicit SqliteDatabase(std::unique_ptr<sqlite::SqliteBackend> backend);

  sqlite::SqliteBackend* backend_;
  std::unique_ptr<History> history_;
};

}  // namespace velanor::store
