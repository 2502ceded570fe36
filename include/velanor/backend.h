// A place that keeps records, and the database over it: whoever writes a backend over a store of his own
// has the selection language, the files and the checks of writes for nothing.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velanor/database.h"
#include "velanor/record.h"

namespace velanor::store {

// What is known of the ids that a scan looks for.
struct Narrowing {
  enum class Kind { kNone, kId, kIdPrefix, kIdSuffix };
  Kind kind = Kind::kNone;
  std::string text;  // the id, or its beginning or end; "" admits every id, but for kId
};

// A record as it lies in a store: its id and its encoded form.
struct Row {
  std::string_view id;
  std::string_view encoded;
};

enum class Content { kIdsOnly, kRecords };

// A record that was written or removed: its id, and what stands under it now; nothing where it is gone.
struct ChangedRow {
  std::string_view id;
  std::optional<std::string_view> encoded;
};

// Rows that a selection has found, in a form of its own, and the revision of their file.
struct KeptRows {
  std::uint64_t revision = 0;
  std::string bytes;
};

// Files of records by name. A file that was never written is empty, or an error where the backend knows
// which files there are. Ids are compared byte by byte. Ids and records handed in are clean and hold for the
// call alone; those handed out must be clean (see DbRecord::from_encoded for bytes that others may have
// written). Every failure is a DbError (kStoreFailure) whose sentence says what to do, and leaves the store
// as it was before the call.
//
// Called by one StoreDatabase, which owns it, on the thread of that database. What is stored may be changed
// by others at any time, and every call sees it as it is then; only inside a change or a view it stands
// still but for what is written there.
class Backend {
 public:
  using Visit = std::function<void(const Row&)>;
  using VisitChange = std::function<void(const ChangedRow&)>;

  virtual ~Backend() = default;
  // Before the first use of a file, as often as it is opened. Throws where the file cannot be used.
  virtual void open(std::string_view file) = 0;
  virtual std::optional<DbRecord> find(std::string_view file, std::string_view id) = 0;
  // Writes the record in the place of what stands under the id, if that is as expected. Durable, where the
  // backend is, once it returns. False, and nothing written, where it was not as expected; no other writer
  // comes between the look and the write.
  virtual bool put(std::string_view file, std::string_view id, const DbRecord& record,
                   const Expected& expected) = 0;
  // The same for removing a record; one that is not there is not an error.
  virtual bool erase(std::string_view file, std::string_view id, const Expected& expected) = 0;
  // Removes what there is of these, within a change. Where every call is a journey, all are to be one.
  virtual void erase_each(std::string_view file, const std::vector<std::string>& ids);
  // Visits every record that the narrowing admits, once each, in any order; ascending ids make the sorting
  // cheapest. It may visit others: a narrowing only saves work. A row lives until its visit returns; its
  // record may be left empty when only ids are asked for. The visit does not call the backend; what it
  // throws ends the scan and goes on to the caller.
  virtual void scan(std::string_view file, const Narrowing& narrowing, Content content,
                    const Visit& visit) = 0;
  // A scan, unless the file still stands at the revision `seen`. Returns the revision of what was visited,
  // or an earlier one. Where every call is a journey, both are to be one.
  virtual std::uint64_t scan_if_changed(std::string_view file, std::optional<std::uint64_t> seen,
                                        const Narrowing& narrowing, Content content, const Visit& visit);
  // Visits what stands now under each id that was written or removed since the file stood at the revision
  // `seen`, once each, in any order, and returns the revision of what was visited. Nothing, and nothing
  // visited, where the backend does not know it any more, or a scan would be cheaper: then that is done.
  virtual std::optional<std::uint64_t> changes_since(std::string_view file, std::uint64_t seen,
                                                     const VisitChange& visit);
  // A backend that outlives the program may keep what a selection has found beside its records, for the next
  // program to start from: where it stands at a revision that `changes_since` still knows. Given is what was
  // given last under the name, or nothing. Keeping may be left undone at any time, above all where it would
  // make anybody wait.
  virtual std::optional<KeptRows> kept_rows(std::string_view file, std::string_view name);
  virtual void keep_rows(std::string_view file, std::string_view name, const KeptRows& rows);
  // Differs from every earlier answer for the file if the file has changed since, by whichever process: by
  // it a selection that was run before is known to be good still. Undoing a change is a change: what was
  // told inside it is never told again.
  virtual std::uint64_t revision(std::string_view file) = 0;
  // See Database. A change may stand within a change, a view within either; it then belongs to the outer one.
  virtual void in_one_change(const std::function<void()>& writes) = 0;
  virtual void in_one_view(const std::function<void()>& reads) = 0;
};

// The database over a backend: opens files, refuses ids that are no texts, and runs selections the same way
// everywhere, narrowed by what they say of ids and each record checked again.
class StoreDatabase : public Database {
 public:
  // The backend is not null.
  explicit StoreDatabase(std::unique_ptr<Backend> backend);
  ~StoreDatabase() override;

  std::unique_ptr<DbFile> OpenFile(std::string_view name) override;
  // A request that was run before answers at once: what has changed since is taken into its rows.
  DbResult Select(std::string_view request, std::string_view option = {}) override;
  void in_one_change(const std::function<void()>& writes) override;
  void in_one_view(const std::function<void()>& reads) override;
  void name_id_part(std::string_view file, std::string_view name, const IdPart& part) override;

 protected:
  // For what a database of its own kind offers besides.
  Backend& backend();

 private:
  struct Engine;
  std::unique_ptr<Engine> engine_;
};

}  // namespace velanor::store
