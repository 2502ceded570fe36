// Records of files that seldom change, as they were found, until the server tells of a change.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "velanor/record.h"

namespace velanor::store::postgres {

class KeptRecords {
 public:
  // A file with more records is not taken as a whole, but record by record.
  static constexpr int kMostRecords = 2000;

  // Keeps records of these files only.
  explicit KeptRecords(const std::vector<std::string>& files) : wanted_(files.begin(), files.end()) {}

  bool keeps(std::string_view file) const { return wanted_.contains(file); }
  // What is known of a record: null: nothing; an empty optional: that there is none. Lives until a change.
  const std::optional<DbRecord>* find(std::string_view file, std::string_view id) const;
  // Whether the file was found to have too many records.
  bool is_large(std::string_view file) const;

  void keep(std::string_view file, std::string_view id, const std::optional<DbRecord>& record);
  // What was kept of the file is all there is, or is part of too much.
  void set_complete(std::string_view file) { files_[std::string(file)].complete = true; }
  void set_large(std::string_view file) { files_[std::string(file)].large = true; }
  void drop(std::string_view file);
  void clear() { files_.clear(); }

 private:
  struct File {
    std::map<std::string, std::optional<DbRecord>, std::less<>> records;
    bool complete = false, large = false;
  };
  static inline const std::optional<DbRecord> kAbsent;

  std::set<std::string, std::less<>> wanted_;
  std::map<std::string, File, std::less<>> files_;
};

}  // namespace velanor::store::postgres
