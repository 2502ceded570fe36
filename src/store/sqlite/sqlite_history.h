// The history of the SQLite store.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "store/sqlite/sqlite_backend.h"
#include "velanor/history.h"

namespace velanor::store::sqlite {

class SqliteHistory : public History {
 public:
  // The backend must outlive it.
  explicit SqliteHistory(SqliteBackend& backend) : backend_(backend) {}

  void set_author(std::string_view name) override { backend_.set_author(name); }
  std::string author() override { return backend_.author(); }
  std::vector<Version> versions(std::string_view file, std::string_view id) override;
  std::vector<std::string> files() override;
  std::vector<std::string> deleted(std::string_view file, std::string_view id_suffix) override;
  std::size_t purge(std::int64_t before) override;
  bool restore(std::string_view file, std::string_view id, const std::vector<Version>& versions) override;

 private:
  SqliteBackend& backend_;
};

}  // namespace velanor::store::sqlite
