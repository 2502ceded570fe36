// A database in front of another: the base of those that watch, count, refuse or slow down, and of what a
// host does beside the component's reads and writes.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "velanor/database.h"

namespace velanor::store {

// One call on its way to the database behind. `file` is empty for a selection; `id` is the id of a record,
// the encoded request of a selection, and empty for opening a file; `record` is what is to be written, else
// null. All of it holds for the call alone.
struct DatabaseCall {
  enum class Kind { kOpen, kSelect, kFind, kWrite, kDelete };
  Kind kind;
  std::string_view file, id;
  const DbRecord* record = nullptr;
};

// Hands every call on to the other database, which must outlive it, and its changes and views as well. It
// must outlive the files that were opened through it. Components on it and components on the other share
// nothing but what is stored.
class WrappedDatabase : public Database {
 public:
  explicit WrappedDatabase(Database& inner) : inner_(inner) {}

  std::unique_ptr<DbFile> OpenFile(std::string_view name) override;
  DbResult Select(std::string_view request, std::string_view option = {}) override;
  void in_one_change(const std::function<void()>& writes) override { inner_.in_one_change(writes); }
  void in_one_view(const std::function<void()>& reads) override { inner_.in_one_view(reads); }
  bool read_only() const override { return inner_.read_only(); }
  std::vector<std::string> files() override { return inner_.files(); }
  History* history() override { return inner_.history(); }
  std::unique_ptr<News> news() override { return inner_.news(); }
  void name_id_part(std::string_view file, std::string_view name, const IdPart& part) override {
    inner_.name_id_part(file, name, part);
  }

 protected:
  // Hears of each call before it is made; what it throws is thrown in its place.
  virtual void before(const DatabaseCall&) {}
  // Hears of each call that was made without failing; what it throws is thrown for it, though it was made.
  virtual void after(const DatabaseCall&) {}

 private:
  class File;
  template <typename Make>
  auto pass(const DatabaseCall& call, Make make);

  Database& inner_;
};

}  // namespace velanor::store
