#include "store/sqlite/row_keeper.h"

#include "store/checksum.h"
#include "store/sqlite/impatient_scope.h"

namespace velanor::store::sqlite {
namespace {

// The log goes to the disk as a whole, so what is written before a save cannot be missing behind it.
class WithoutSyncScope {
 public:
  explicit WithoutSyncScope(Connection& connection) : connection_(connection) {
    connection.run("PRAGMA synchronous = NORMAL");
  }
  ~WithoutSyncScope() {
    sqlite3_exec(connection_.handle(), "PRAGMA synchronous = FULL", nullptr, nullptr, nullptr);
  }
  WithoutSyncScope(const WithoutSyncScope&) = delete;
  WithoutSyncScope& operator=(const WithoutSyncScope&) = delete;

 private:
  Connection& connection_;
};

std::int64_t sum_of(std::string_view name, std::int64_t revision, std::string_view content) {
  return crc32c(content, crc32c(std::to_string(revision), crc32c(name)));
}

}  // namespace

std::optional<KeptRows> RowKeeper::rows(std::int64_t file, std::string_view name) {
  Statement statement(connection_, "SELECT revision, sum, content FROM kept WHERE file = ?1 AND name = ?2");
  statement.bind(1, file);
  statement.bind_blob(2, name);
  if (!statement.step()) return std::nullopt;
  const std::int64_t revision = statement.number(0);
  const std::string_view content = statement.bytes(2);
  if (statement.number(1) != sum_of(name, revision, content)) return std::nullopt;
  return KeptRows{static_cast<std::uint64_t>(revision), std::string(content)};
}

void RowKeeper::keep(std::int64_t file, std::string_view name, const KeptRows& rows) {
  // Without a log a write that is not brought to the disk could harm what stands there.
  if (connection_.text("PRAGMA journal_mode") != "wal") return;
  const ImpatientScope impatient(connection_);
  const WithoutSyncScope without_sync(connection_);
  const auto revision = static_cast<std::int64_t>(rows.revision);
  Transaction transaction(connection_);
  Statement put(
      connection_,
      "INSERT OR REPLACE INTO kept(file, name, revision, sum, content) VALUES (?1, ?2, ?3, ?4, ?5)");
  put.bind(1, file);
  put.bind_blob(2, name);
  put.bind(3, revision);
  put.bind(4, sum_of(name, revision, rows.bytes));
  put.bind_blob(5, rows.bytes);
  put.step();
  connection_.run(
      "DELETE FROM kept WHERE number NOT IN (SELECT number FROM kept ORDER BY number DESC LIMIT 24)");
  transaction.commit();
}

}  // namespace velanor::store::sqlite
