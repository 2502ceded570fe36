#include "velanor/postgres_database.h"

#include "store/checked_writes.h"
#include "store/postgres/postgres_history.h"
#include "store/postgres/schema.h"

namespace velanor::store {

using postgres::PostgresBackend;

PostgresDatabase::PostgresDatabase(const std::string& url, const Options& options)
    : PostgresDatabase(std::make_unique<PostgresBackend>(url, options)) {}

PostgresDatabase::PostgresDatabase(std::unique_ptr<PostgresBackend> backend)
    : StoreDatabase(std::move(backend)),
      backend_(static_cast<PostgresBackend*>(&StoreDatabase::backend())),
      history_(std::make_unique<postgres::PostgresHistory>(*backend_)) {}

PostgresDatabase::~PostgresDatabase() = default;

bool PostgresDatabase::read_only() const { return !backend_->may_write(); }

void PostgresDatabase::put(std::string_view file, std::string_view id, const DbRecord& record) {
  put_checked(*backend_, file, id, record);
}

std::vector<std::string> PostgresDatabase::files() { return backend_->files(); }

std::unique_ptr<News> PostgresDatabase::news() { return backend_->news(); }

std::uint64_t PostgresDatabase::round_trips() const { return backend_->round_trips(); }

std::string PostgresDatabase::setup_script() { return postgres::setup_script(); }

bool PostgresDatabase::is_url(std::string_view text) {
  return text.starts_with("postgresql://") || text.starts_with("postgres://");
}

// Between the user's name and the last "@" in front of the base, and among the options behind the "?".
std::string PostgresDatabase::without_password(std::string_view url) {
  std::string shown(url);
  const std::size_t start = shown.find("://") + 3;
  const std::size_t at = shown.rfind('@', shown.find_first_of("/?", shown.find('@', start)));
  const std::size_t colon = shown.find(':', start);
  if (at != shown.npos && at >= start && colon < at) shown.erase(colon, at - colon);
  for (const std::string_view option : {"password=", "sslpassword="}) {
    for (std::size_t found = shown.find('?'); (found = shown.find(option, found)) != shown.npos;) {
      const std::size_t value = found + option.size();
      shown.erase(value, std::min(shown.find('&', value), shown.size()) - value);
      found = value;
    }
  }
  return shown;
}

}  // namespace velanor::store
