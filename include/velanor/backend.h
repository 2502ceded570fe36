// What a place that keeps records must offer; everything above it is written once.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "velanor/database.h"
#include "velanor/record.h"

namespace velanor::store {

// What is known of the ids that a scan looks for.
struct Narrowing {
  enum class Kind { kNone, kId, kIdPrefix, kIdSuffix };
  Kind kind = Kind::kNone;
  std::string text;
};

// A record as it lies in a store: its id and its encoded form.
struct Row {
  std::string_view id;
  std::string_view encoded;
};

enum class Content { kIdsOnly, kRecords };

// Files of records by name. A file that was never written is empty, or an error where the backend
// knows which files there are. Every failure is a DbError (kStoreFailure) whose sentence says what
// to do; ids and records handed in are clean, those handed out must be.
class Backend {
 public:
  using Visit = std::function<void(const Row&)>;

  virtual ~Backend() = default;
  // Throws where the file cannot be used.
  virtual void open(std::string_view file) = 0;
  virtual std::optional<DbRecord> find(std::string_view file, std::string_view id) = 0;
  // Durable, where the backend is, once it returns. False, and nothing written, where the record was
  // not as expected; no other writer comes between the look and the write.
  virtual bool put(std::string_view file, std::string_view id, const DbRecord& record,
                   const Expected& expected) = 0;
  // The same for removing a record; one that is not there is not an error.
  virtual bool erase(std::string_view file, std::string_view id, const Expected& expected) = 0;
  // Visits every record that the narrowing admits, once each, in any order; ascending ids make the
  // sorting cheapest. It may visit others: a narrowing only saves work. A row lives until its
  // visit returns; its record may be left empty when only ids are asked for. The visit does not
  // call the backend.
  virtual void scan(std::string_view file, const Narrowing& narrowing, Content content,
                    const Visit& visit) = 0;
  // A scan, unless the file still stands at the revision `seen`. Returns the revision of what was visited,
  // or an earlier one. Where every call is a journey, both are to be one.
  virtual std::uint64_t scan_if_changed(std::string_view file, std::optional<std::uint64_t> seen,
                                        const Narrowing& narrowing, Content content, const Visit& visit);
  // Differs from every earlier answer for the file if the file has changed since, by whichever
  // process.
  virtual std::uint64_t revision(std::string_view file) = 0;
  // See Database.
  virtual void in_one_change(const std::function<void()>& writes) = 0;
  virtual void in_one_view(const std::function<void()>& reads) = 0;
};

}  // namespace velanor::store
