// Writing records and their versions.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "store/sqlite/connection.h"
#include "store/sqlite/row_sum.h"

namespace velanor::store::sqlite {

// Works within a transaction of the caller's. What a write replaces becomes a row of the history.
class RecordWriter {
 public:
  // The connection must outlive it and be open for writing.
  explicit RecordWriter(Connection& connection);

  // What stands under an id. Damage is no error here: a damaged record can still be replaced.
  struct Current {
    std::string content;
    std::int64_t version;
    bool sound;
  };
  std::optional<Current> current(std::int64_t file, std::string_view id);

  // Who writes, and when.
  struct Hand {
    std::string_view author;
    std::int64_t time;
  };
  // `current` is what stands there now.
  void put(std::int64_t file, std::string_view id, std::string_view content,
           const std::optional<Current>& current, const Hand& hand);
  void erase(std::int64_t file, std::string_view id, const Current& current, const Hand& hand);
  // A version as another store kept it: replaced at `until`, else the last one.
  void lay_down(const StoredVersion& row, std::optional<std::int64_t> until);
  void add_file(std::string_view name);

 private:
  std::int64_t last_version(std::int64_t file, std::string_view id, const std::optional<Current>& current);
  void keep(std::int64_t file, std::string_view id, const Current& current, std::int64_t until);
  void end_deletion(std::int64_t file, std::string_view id, std::int64_t until);

  Statement current_, insert_, update_, erase_, keep_, bury_, lay_down_, last_, end_deletion_, add_file_;
};

}  // namespace velanor::store::sqlite
