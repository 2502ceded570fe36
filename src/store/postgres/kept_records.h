// Records of files that seldom change, as they were found, until the server tells of a change.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "velanor/backend.h"
#include "velanor/record.h"

namespace velanor::store::postgres {

class KeptRecords {
 public:
  // A file with more records is not taken as a whole, but record by record.
  static constexpr int kMostRecords = 2000;

  // Keeps records of these files only.
  explicit KeptRecords(const std::vector<std::string>& files) : wanted_(files.begin(), files.end()) {}

  bool keeps(std::string_view file) const { return wanted_.contains(file); }
  // Whether all of it was found, or too much of it.
  bool is_known(std::string_view file) const;
  // What is known of a record: null: nothing; an empty optional: that there is none. Lives until a change.
  const std::optional<DbRecord>* find(std::string_view file, std::string_view id) const;
  // Whether the file was found to have too many records.
  bool is_large(std::string_view file) const;

  // The server's revision of which it was found.
  std::optional<std::uint64_t> revision(std::string_view file) const;
  // Of what is complete, in ascending order of ids.
  void visit(std::string_view file, const std::function<void(const Row&)>& visit) const;

  void keep(std::string_view file, std::string_view id, const std::optional<DbRecord>& record);
  // What was kept of the file is all there is, or is part of too much.
  void set_complete(std::string_view file) { files_[std::string(file)].complete = true; }
  void set_large(std::string_view file) { files_[std::string(file)].large = true; }
  void set_revision(std::string_view file, std::uint64_t revision) {
    files_[std::string(file)].revision = revision;
  }
  // Those of the wanted files that are not known.
  std::vector<std::string> missing() const;
  void drop(std::string_view file);
  void clear() { files_.clear(); }

 private:
  struct File {
    std::map<std::string, std::optional<DbRecord>, std::less<>> records;
    bool complete = false, large = false;
    std::optional<std::uint64_t> revision;
  };
  static inline const std::optional<DbRecord> kAbsent;

  std::set<std::string, std::less<>> wanted_;
  std::map<std::string, File, std::less<>> files_;
};

}  // namespace velanor::store::postgres
