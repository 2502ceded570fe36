#include "postgres/server.h"

#include <fcntl.h>
#include <grp.h>
#include <libpq-fe.h>
#include <pwd.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include "store/notation.h"

namespace velanor::store {
namespace {

namespace fs = std::filesystem;

const passwd* user_of_the_server() {
  const passwd* user = getpwnam("postgres");
  return user != nullptr ? user : getpwnam("nobody");
}

// The processes whose parent that is.
std::vector<pid_t> children_of(pid_t parent) {
  std::vector<pid_t> children;
  for (const auto& entry : fs::directory_iterator("/proc")) {
    if (std::atoi(entry.path().filename().c_str()) == 0) continue;
    std::ifstream stat(entry.path() / "stat");
    std::string text;
    std::getline(stat, text);
    const auto name_end = text.rfind(')');
    if (name_end == text.npos || name_end + 4 > text.size()) continue;
    if (std::atoi(text.c_str() + name_end + 4) == parent) children.push_back(std::atoi(text.c_str()));
  }
  return children;
}

struct Finish {
  void operator()(PGconn* connection) const { PQfinish(connection); }
  void operator()(PGresult* result) const { PQclear(result); }
};

}  // namespace

std::string Server::programs() {
  std::string latest;
  std::error_code absent;
  for (const auto& entry : fs::directory_iterator("/usr/lib/postgresql", absent)) {
    const std::string bin = entry.path() / "bin";
    if (fs::exists(bin + "/initdb") && fs::exists(bin + "/postgres")) latest = std::max(latest, bin);
  }
  return latest;
}

Server& Server::instance() {
  static Server server;
  return server;
}

pid_t Server::launch(const std::vector<std::string>& arguments) const {
  std::vector<char*> words;
  for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  const std::string log = folder_name_ + "log";
  const passwd* user = geteuid() == 0 ? user_of_the_server() : nullptr;
  const pid_t process = fork();
  if (process != 0) return process;
  if (user != nullptr &&
      (setgroups(0, nullptr) != 0 || setgid(user->pw_gid) != 0 || setuid(user->pw_uid) != 0))
    _exit(126);
  const int out = ::open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
  dup2(out, STDOUT_FILENO);
  dup2(out, STDERR_FILENO);
  setenv("LC_ALL", "C.UTF-8", 1);
  execv(words[0], words.data());
  _exit(127);
}

Server::Server() {
  if (geteuid() == 0) {
    [[maybe_unused]] const int done = chown(folder_name_.c_str(), user_of_the_server()->pw_uid, 0);
  }
  fs::permissions(folder_name_, fs::perms::all);
  const pid_t making = launch({programs() + "/initdb", "-D", folder_name_ + "data", "-U", "postgres", "-A",
                               "trust", "-E", "UTF8", "--locale=C.UTF-8", "--no-sync", "--no-instructions"});
  int status = 0;
  waitpid(making, &status, 0);
  if (status != 0) throw std::runtime_error("initdb failed, see " + folder_name_ + "log");
  ask_for_password("guarded");
  start();
  set_durable(false);
  run("postgres", "CREATE DATABASE prepared");
  const std::string refused = run("prepared", PostgresDatabase::setup_script());
  if (!refused.empty()) throw std::runtime_error(refused);
  run("postgres", "CREATE ROLE clerk LOGIN IN ROLE velanor_clerk");
  run("postgres", "CREATE ROLE anne LOGIN IN ROLE velanor_clerk");
  run("postgres", "CREATE ROLE manager LOGIN IN ROLE velanor_owner, velanor_clerk");
  run("postgres", "CREATE ROLE guarded LOGIN PASSWORD 's3cret word/@' IN ROLE velanor_clerk");
  run("postgres", "CREATE ROLE reader LOGIN");
  run("postgres", "CREATE ROLE stranger LOGIN");
  run("prepared",
      "GRANT USAGE ON SCHEMA velanor TO reader; GRANT SELECT ON ALL TABLES IN SCHEMA velanor TO reader");
}

// All others are let in without.
void Server::ask_for_password(const std::string& user) const {
  const std::string path = folder_name_ + "data/pg_hba.conf";
  std::stringstream all;
  all << "local all " << user << " scram-sha-256\n" << std::ifstream(path).rdbuf();
  std::ofstream(path) << all.str();
}

Server::~Server() { kill(); }

// After a kill it would have every file written to the disk, which has lost nothing.
void Server::start() {
  using namespace std::chrono_literals;
  std::ofstream(folder_name_ + "data/postgresql.auto.conf") << "fsync = off\n";
  const auto end = std::chrono::steady_clock::now() + 30s;
  // What was killed leaves its shared memory for a moment.
  for (;;) {
    if (process_ == 0) {
      process_ = launch({programs() + "/postgres", "-D", folder_name_ + "data", "-k", folder_name_, "-c",
                         "listen_addresses=", "-c", "max_connections=60", "-c", "shared_buffers=32MB", "-c",
                         "max_wal_size=256MB", "-c", "autovacuum_naptime=5min"});
    }
    if (run("postgres", "SELECT 1").empty()) return;
    int status = 0;
    if (waitpid(process_, &status, WNOHANG) == process_) process_ = 0;
    if (std::chrono::steady_clock::now() > end)
      throw std::runtime_error("no server, see " + folder_name_ + "log");
    std::this_thread::sleep_for(20ms);
  }
}

void Server::set_durable(bool durable) const {
  run("postgres", durable ? "ALTER SYSTEM SET fsync = on" : "ALTER SYSTEM SET fsync = off");
  run("postgres", "SELECT pg_reload_conf()");
}

void Server::kill() {
  if (process_ == 0) return;
  ::kill(process_, SIGSTOP);  // it would start others
  for (const pid_t child : children_of(process_)) ::kill(child, SIGKILL);
  ::kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
  process_ = 0;
}

std::string Server::url_by(const std::string& folder, const std::string& base) const {
  return "postgresql://clerk@/" + base + "?host=" + folder;
}

std::string Server::url(const std::string& base, const std::string& user) const {
  return "postgresql://" + user + "@/" + base + "?host=" + folder_name_;
}

std::string Server::run(const std::string& base, const std::string& sql, const std::string& user) const {
  const std::unique_ptr<PGconn, Finish> connection(PQconnectdb(url(base, user).c_str()));
  const std::unique_ptr<PGresult, Finish> result(PQexec(connection.get(), sql.c_str()));
  return PQerrorMessage(connection.get());
}

std::string Server::ask(const std::string& base, const std::string& sql) const {
  const std::unique_ptr<PGconn, Finish> connection(PQconnectdb(url(base, "postgres").c_str()));
  const std::unique_ptr<PGresult, Finish> result(PQexec(connection.get(), sql.c_str()));
  if (PQresultStatus(result.get()) != PGRES_TUPLES_OK) return PQerrorMessage(connection.get());
  return PQntuples(result.get()) == 0 ? "" : PQgetvalue(result.get(), 0, 0);
}

std::string Server::new_base(const std::string& like) {
  const std::string name = "base_" + std::to_string(++bases_);
  const std::string refused = run("postgres", "CREATE DATABASE " + name + " TEMPLATE " + like);
  if (!refused.empty()) throw std::runtime_error(refused);
  return name;
}

std::unique_ptr<PostgresDatabase> open_base(const std::string& base, PostgresDatabase::Options options) {
  return std::make_unique<PostgresDatabase>(Server::instance().url(base), options);
}

std::string all_of(Database& database, std::string_view statement, std::string_view file,
                   std::string_view attributes) {
  const DbResult found = database.Select(DbQuery(statement, file, attributes).encoded());
  std::string text;
  for (int i = 1; i <= found.DCount(); ++i) text += shown(found(i)) + "\n";
  return text;
}

std::string failure(const std::function<void()>& act) {
  try {
    act();
  } catch (const DbError& error) {
    return error.what();
  }
  return {};
}

std::string told(const std::vector<Version>& versions) {
  std::string text;
  for (const Version& version : versions) {
    text += std::to_string(version.number) + " " + version.author + " ";
    text += (version.record ? shown(*version.record) : "-") + "\n";
  }
  return text;
}

}  // namespace velanor::store
