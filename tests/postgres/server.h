// A PostgreSQL server of the tests' own: from Debian's package, in a folder that goes with it, on a socket in
// that folder.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "sqlite/temporary_folder.h"
#include "velanor/postgres_database.h"

namespace velanor::store {

class Server {
 public:
  // Where the package's programs are; "" without the package.
  static std::string programs();
  // The one of this test program, started by the first who asks.
  static Server& instance();
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  // A base of its own that is set up and holds nothing, or what another holds that nobody is connected to.
  std::string new_base(const std::string& like = "prepared");
  // Its URL for a clerk, or for another of the server's users: "postgres", who may do everything, "reader",
  // "guarded", a clerk whose password is "s3cret word/@".
  std::string url(const std::string& base, const std::string& user = "clerk") const;
  std::string url_by(const std::string& folder, const std::string& base) const;
  // SQL as that user, whose failure is returned; "" when there was none.
  std::string run(const std::string& base, const std::string& sql,
                  const std::string& user = "postgres") const;
  // The first field of the answer.
  std::string ask(const std::string& base, const std::string& sql) const;

  const std::string& folder() const { return folder_name_; }
  std::string socket() const { return folder_name_ + "/.s.PGSQL.5432"; }
  // Whether it waits for the disk, as a real one does. It does not unless a test is about that.
  void set_durable(bool durable) const;
  // Kills it and all its processes as a power cut would.
  void kill();
  void start();

 private:
  Server();
  void ask_for_password(const std::string& user) const;
  // Runs a program of the package as a user who is not root.
  pid_t launch(const std::vector<std::string>& arguments) const;

  TemporaryFolder folder_;
  std::string folder_name_ = folder_.file("");
  pid_t process_ = 0;
  int bases_ = 0;
};

// A store without records, on a base of its own.
std::unique_ptr<PostgresDatabase> open_base(const std::string& base, PostgresDatabase::Options options = {});

std::string all_of(Database& database, std::string_view statement, std::string_view file,
                   std::string_view attributes = "0 1");
// The sentence of a failure; "" when there is none.
std::string failure(const std::function<void()>& act);
// "1 paul a^b": number, author and content of each version, "-" for a deletion.
std::string told(const std::vector<Version>& versions);

}  // namespace velanor::store
