// The store on a PostgreSQL server, for several clerks on several machines.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "velanor/backend.h"

namespace velanor::store {

namespace postgres {
class PostgresBackend;
}

// What is written is on the server's disk once the call returns. Each call sees every change that was made
// before it, by whomever. Every failure is a DbError (kStoreFailure) whose sentence says what to do.
//
// A connection that is lost is made anew by the next call. One that is lost during a write leaves open
// whether it was done: that is asked of the server before the call returns, and the write is done if it was
// not. When the server cannot be asked the sentence says so; the same write, made again, is then done once.
// A change of several writes whose connection is lost is not done at all, and fails.
class PostgresDatabase : public StoreDatabase {
 public:
  struct Options {
    int connect_seconds = 5;
    // How long one statement may take, and how long a write waits for another's, in milliseconds.
    int statement = 30'000, patience = 5'000;
    // Files whose records seldom change: what was found in them is kept until the server tells of a change,
    // which it does with the next answer. All other records are read anew each time.
    std::vector<std::string> kept_files = {};
  };

  // A URL of libpq (postgresql://user@host/base?sslmode=verify-full). What it leaves out comes from where
  // libpq finds it: the environment, ~/.pgpass, a service. No message shows a password. A server that was not
  // set up, or was set up by a later version, is refused.
  explicit PostgresDatabase(const std::string& url) : PostgresDatabase(url, Options()) {}
  PostgresDatabase(const std::string& url, const Options& options);
  ~PostgresDatabase() override;

  // A replica, or a user who may only read. Such a one hears no news.
  bool read_only() const override;
  History* history() override { return history_.get(); }
  std::unique_ptr<News> news() override;
  // Changes of others are seen in one's own change as they come; others see one's own at its end. To write
  // inside a view is an error.

  // Writes a record without opening its file.
  void put(std::string_view file, std::string_view id, const DbRecord& record);
  std::vector<std::string> files() override;

  // Messages sent to the server and waited for so far: what a slow network makes slow.
  std::uint64_t round_trips() const;

  // The script, for psql, that makes the tables and the two roles or brings them up to date; run again it
  // changes nothing.
  static std::string setup_script();
  static bool is_url(std::string_view text);
  // Fit to be shown and kept.
  static std::string without_password(std::string_view url);

 private:
  explicit PostgresDatabase(std::unique_ptr<postgres::PostgresBackend> backend);

  postgres::PostgresBackend* backend_;
  std::unique_ptr<History> history_;
};

}  // namespace velanor::store
