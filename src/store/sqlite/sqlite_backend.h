// The backend of the SQLite store.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/sqlite/connection.h"
#include "velanor/backend.h"

namespace velanor::store::sqlite {

// Any file can be opened; one that was never written is empty. Every call sees what other
// programs have written before it.
class SqliteBackend : public Backend {
 public:
  SqliteBackend(std::string path, Missing missing, int patience);

  void open(std::string_view file) override;
  std::optional<DbRecord> find(std::string_view file, std::string_view id) override;
  bool put(std::string_view file, std::string_view id, const DbRecord& record,
           const Expected& expected) override;
  bool erase(std::string_view file, std::string_view id, const Expected& expected) override;
  void scan(std::string_view file, const Narrowing& narrowing, Content content, const Visit& visit) override;
  std::uint64_t revision(std::string_view file) override;

  // The files that hold records, by name.
  std::vector<std::string> files();
  // Makes the writes of `writes` one change, undone if it throws.
  void in_one_change(const std::function<void()>& writes) override;
  void in_one_view(const std::function<void()>& reads) override;
  Connection& connection() { return shelf()->connection; }

 private:
  // A connection that is ready before its statements are prepared.
  struct Shelf {
    Shelf(const std::string& path, Missing missing, int patience);
    Connection connection;
    Statement find, put, create, erase, ids, records, tails, number, add_file, revision;
  };
  // A file that is read alone is opened anew when somebody has come to write it.
  const std::shared_ptr<Shelf>& shelf();

  // Nothing for a file that was never written.
  std::optional<std::int64_t> number(std::string_view file);
  std::int64_t number_for_writing(std::string_view file);
  bool put(std::string_view file, std::string_view id, const DbRecord& record, bool only_new);
  void erase(std::string_view file, std::string_view id);
  void scan_ids(Content content, std::int64_t file, std::string_view prefix, const Visit& visit);
  void scan_tails(std::int64_t file, std::string_view suffix, const Visit& visit);

  std::string path_;
  int patience_;
  std::shared_ptr<Shelf> shelf_;  // a scan keeps the one it began on
  std::map<std::string, std::int64_t, std::less<>> numbers_;
  // Changes undone here: what was read inside them must not pass for what comes after.
  std::uint64_t undone_ = 0;
};

}  // namespace velanor::store::sqlite
