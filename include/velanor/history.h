// The versions that a store keeps of its records.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velanor/record.h"

namespace velanor::store {

// A record as somebody left it.
struct Version {
  std::uint64_t number = 0;  // of the record, from 1; those of one id never repeat, also after a deletion
  std::string author;        // see History::set_author; "": written before its store kept versions
  std::int64_t time = 0;     // seconds since 1970, UTC; 0: written before its store kept versions
  std::optional<DbRecord> record;  // nothing: it was deleted
  bool sound = true;               // false: what is kept of it is damaged, and `record` is nothing
};

// Belongs to its database, whose thread it shares. Every failure is a DbError. An earlier version is brought
// back by writing it: that is a version too. A write that changes nothing is none.
class History {
 public:
  virtual ~History() = default;
  // Who writes from now on: the name of the system's user until a host hands in another.
  virtual void set_author(std::string_view name) = 0;
  // The same as it was set, or as it is kept where nobody has; "" where a store does not know.
  virtual std::string author() { return {}; }
  // The oldest first, the last one as it is stored now; empty for a record that never was.
  virtual std::vector<Version> versions(std::string_view file, std::string_view id) = 0;
  // The files that hold a record or have a version of one, by name.
  virtual std::vector<std::string> files() { return {}; }
  // Ids that end so whose record was deleted and is not there; the latest deletion first.
  virtual std::vector<std::string> deleted(std::string_view file, std::string_view id_suffix) = 0;
  // Forgets the versions that were replaced before that time; what is stored now stays, and so does that
  // something is deleted. How many went.
  virtual std::size_t purge(std::int64_t before) = 0;
  // Lays down the versions of a record that never was, as another store kept them, the last one as what is
  // stored now. False, and nothing done, where a store cannot.
  virtual bool restore(std::string_view file, std::string_view id, const std::vector<Version>& versions);
};

}  // namespace velanor::store
