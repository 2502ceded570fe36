// The history of the PostgreSQL store.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "store/postgres/postgres_backend.h"
#include "velanor/history.h"

namespace velanor::store::postgres {

// Who may not do so is refused by the server: only the owner's role purges and restores.
class PostgresHistory : public History {
 public:
  // The backend must outlive it.
  explicit PostgresHistory(PostgresBackend& backend) : backend_(backend) {}

  void set_author(std::string_view name) override { backend_.set_author(name); }
  std::string author() override { return backend_.author(); }
  std::vector<Version> versions(std::string_view file, std::string_view id) override;
  std::vector<std::string> files() override;
  std::vector<std::string> deleted(std::string_view file, std::string_view id_suffix) override;
  std::size_t purge(std::int64_t before) override;
  bool restore(std::string_view file, std::string_view id, const std::vector<Version>& versions) override;

 private:
  PostgresBackend& backend_;
};

}  // namespace velanor::store::postgres
