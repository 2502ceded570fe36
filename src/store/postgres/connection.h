// A connection to one PostgreSQL server. Every failure is a DbError.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct pg_conn;
struct pg_result;

namespace velanor::store::postgres {

// A value handed to a statement, in the server's binary form. Bytes are not copied.
class Parameter {
 public:
  Parameter(std::string_view bytes) : bytes_(bytes), type_(kBytes) {}
  Parameter(const std::string& bytes) : Parameter(std::string_view(bytes)) {}
  Parameter(std::int64_t number);
  Parameter(std::optional<std::string_view> bytes)
      : bytes_(bytes.value_or("")), is_null_(!bytes), type_(kBytes) {}
  // A text of the server's, such as the name of a setting; never a record's.
  static Parameter text(std::string_view text);

  unsigned type() const { return type_; }
  const char* data() const;
  int size() const;

 private:
  static constexpr unsigned kBytes = 17, kNumber = 20, kText = 25;
  std::string_view bytes_;
  std::array<char, 8> number_{};
  bool is_null_ = false;
  unsigned type_;
};
using Parameters = std::vector<Parameter>;

// The rows of an answer. Rows and columns count from 0; views live as long as this.
class Result {
 public:
  explicit Result(pg_result* result) : result_(result) {}
  int rows() const;
  bool is_null(int row, int column) const;
  std::string_view bytes(int row, int column) const;
  // Of an integer or a truth value of any width.
  std::int64_t number(int row, int column) const;
  // What the server says that it has done, as "COMMIT".
  std::string_view tag() const;

 private:
  struct Clear {
    void operator()(pg_result* result) const;
  };
  std::unique_ptr<pg_result, Clear> result_;
};

class Connection {
 public:
  struct Limits {
    int connect_seconds, statement, patience;  // see PostgresDatabase::Options
  };
  // Connects and makes its session; looks at nothing in the base. Each message that it waits for is counted
  // in `round_trips`, which must outlive it.
  Connection(const std::string& url, const Limits& limits, std::uint64_t& round_trips);

  // How the base is called in sentences.
  const std::string& place() const { return place_; }
  int socket() const;
  // False once it is lost; it then stays so.
  bool alive() const { return alive_; }

  Result run(const char* sql, const Parameters& parameters = {});
  // Hands on each row as it comes, alone in its result. What `visit` throws is thrown when all have come.
  void stream(const char* sql, const Parameters& parameters, const std::function<void(const Result&)>& visit);

  // What others have notified, as far as it has come; waits for nothing.
  std::vector<std::string> take_notices();

 private:
  struct Finish {
    void operator()(pg_conn* connection) const;
  };
  using Deadline = std::optional<std::int64_t>;

  enum class Rows { kTogether, kOneByOne };
  void ask(const char* sql, const Parameters& parameters, Rows rows, const std::function<void(Result)>& take);
  void send(const char* sql, const Parameters& parameters, Rows rows);
  // The next part of the answer; null at its end.
  pg_result* next();
  void check(const pg_result* part);
  void wait(short events, Deadline deadline);
  Deadline deadline() const;
  [[noreturn]] void lose();

  Limits limits_;
  std::uint64_t& round_trips_;
  std::string place_;
  std::unique_ptr<pg_conn, Finish> connection_;
  bool alive_ = true;
};

}  // namespace velanor::store::postgres
