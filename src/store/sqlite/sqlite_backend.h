// The backend of the SQLite store.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "store/sqlite/checkpointer.h"
#include "store/sqlite/connection.h"
#include "store/sqlite/failure.h"
#include "store/sqlite/record_writer.h"
#include "velanor/backend.h"

namespace velanor::store::sqlite {

// Any file can be opened; one that was never written is empty. Every call sees what other
// programs have written before it.
class SqliteBackend : public Backend {
 public:
  // Seconds since 1970, UTC.
  using Clock = std::function<std::int64_t()>;

  SqliteBackend(std::string path, Missing missing, int patience, Clock clock);

  void open(std::string_view file) override;
  std::optional<DbRecord> find(std::string_view file, std::string_view id) override;
  bool put(std::string_view file, std::string_view id, const DbRecord& record,
           const Expected& expected) override;
  bool erase(std::string_view file, std::string_view id, const Expected& expected) override;
  void scan(std::string_view file, const Narrowing& narrowing, Content content, const Visit& visit) override;
  std::optional<std::uint64_t> changes_since(std::string_view file, std::uint64_t seen,
                                             const VisitChange& visit) override;
  std::optional<KeptRows> kept_rows(std::string_view file, std::string_view name) override;
  void keep_rows(std::string_view file, std::string_view name, const KeptRows& rows) override;
  std::uint64_t revision(std::string_view file) override;

  // The files that hold records, by name.
  std::vector<std::string> files();
  // Makes the writes of `writes` one change, undone if it throws.
  void in_one_change(const std::function<void()>& writes) override;
  void in_one_view(const std::function<void()>& reads) override;
  // Waits for one that is under way; the next write begins them anew.
  void end_checkpoints();
  Connection& connection() { return shelf()->connection; }
  // Nothing for a file that was never written.
  std::optional<std::int64_t> number(std::string_view file);
  // What to tell of a record whose checksum does not hold: that, and which version is sound.
  DamagedRecord damaged(std::string_view file, std::string_view id);
  void set_author(std::string_view name) { author_ = clean_text(name); }
  // The user of the system, where nobody was named.
  const std::string& author();
  // See History::restore.
  void lay_down(std::string_view file, std::string_view id, const std::vector<Version>& versions);

 private:
  // A connection that is ready before its statements are prepared.
  struct Shelf {
    Shelf(const std::string& path, Missing missing, int patience);
    Connection connection;
    Statement find, ids, records, tails, number, revision;
    std::optional<Statement> changed;  // once it is asked
    // Once something is written.
    std::optional<RecordWriter> writer;
    std::unique_ptr<Checkpointer> checkpointer;
  };
  // A file that is read alone is opened anew when somebody has come to write it.
  const std::shared_ptr<Shelf>& shelf();

  // Carries out a write as a change, or as part of the one that is under way.
  void write(const std::function<void(RecordWriter&)>& act);
  void run_change(const std::function<void()>& writes);
  std::int64_t number_for_writing(RecordWriter& writer, std::string_view file);
  RecordWriter::Hand hand() { return {author(), clock_()}; }
  void have_checkpoints(Shelf& shelf) {
    if (!shelf.checkpointer) shelf.checkpointer = std::make_unique<Checkpointer>(shelf.connection);
  }
  // The ids that the revisions behind `seen` have written or removed, up to `now`; nothing where the file
  // does not know them any more.
  std::optional<std::set<std::string>> changed_ids(std::int64_t number, std::int64_t seen, std::int64_t now);
  // A file by its name, and by its number.
  struct File {
    std::string_view name;
    std::int64_t number;
  };
  void scan_ids(Content content, const File& file, std::string_view prefix, const Visit& visit);
  void scan_tails(const File& file, std::string_view suffix, const Visit& visit);
  // The content of a row that begins with kStoredColumns. Throws DamagedRecord.
  std::string_view sound_content(const Statement& row, const File& file, std::string_view id);
  bool holds(const Expected& expected, const std::optional<RecordWriter::Current>& current,
             std::string_view file, std::string_view id);

  std::string path_;
  int patience_;
  std::shared_ptr<Shelf> shelf_;  // a scan keeps the one it began on
  std::map<std::string, std::int64_t, std::less<>> numbers_;
  Clock clock_;
  std::optional<std::string> author_;
  // A change of several writes is under way; one of them has failed, and with it the change.
  bool in_change_ = false, broken_ = false;
  bool in_view_ = false;
  // Changes undone here: what was read inside them must not pass for what comes after.
  std::uint64_t undone_ = 0;
};

}  // namespace velanor::store::sqlite
