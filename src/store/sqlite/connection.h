// A connection to one SQLite database and its statements. Every failure is a DbError.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace velanor::store::sqlite {

class Connection;

// A statement, used again and again: bind, step, and reset through Run. It is prepared when it is first used.
class Statement {
 public:
  // The connection must outlive it.
  Statement(Connection& connection, std::string_view sql) : connection_(&connection), sql_(sql) {}

  // Parameters count from 1. Texts and blobs are not copied: they must outlive the run.
  void bind(int parameter, std::int64_t number);
  void bind_text(int parameter, std::string_view text);
  void bind_blob(int parameter, std::string_view bytes);

  // Whether there is a row. Columns count from 0; a view lives until the next step or reset.
  bool step();
  std::int64_t number(int column) const;
  std::string_view bytes(int column) const;
  bool is_null(int column) const;
  void reset();

 private:
  sqlite3_stmt* prepared();
  void check(int code);

  struct Finalize {
    void operator()(sqlite3_stmt* statement) const;
  };
  Connection* connection_;
  std::string sql_;
  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

// One run of a statement, which is reset when it ends, however it ends: a statement left in the
// middle would hold its view of the database.
class Run {
 public:
  explicit Run(Statement& statement) : statement_(statement) {}
  ~Run() { statement_.reset(); }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;
  Statement* operator->() { return &statement_; }
  const Statement& operator*() const { return statement_; }

 private:
  Statement& statement_;
};

enum class Missing { kFail, kCreate };

// A file that this user may not write is read: beside those who have it open, or, when nobody has, without
// leaving a trace. Companions made by a reader would keep those out who may write.
enum class Access { kWrite, kReadAlong, kReadAlone };

// Creates an empty file that its owner alone can read. False when there is a file already.
bool create_private(const std::string& path);

class Connection {
 public:
  // Opens the file; one that is created can be read by its owner alone. Looks at nothing in it.
  // While another program writes, calls wait up to `patience` milliseconds.
  Connection(std::string path, Missing missing, int patience);

  const std::string& path() const { return path_; }
  Access access() const { return access_; }
  int patience() const { return patience_; }
  // Read alone, and no longer alone or not the same: what it says from here on may be wrong.
  bool outdated() const;
  // Whether the path is no longer the file, or its log, that was opened: what is written would be lost.
  bool moved() const;
  sqlite3* handle() const { return handle_.get(); }

  // Runs statements that return nothing.
  void run(const char* sql);
  // The first column of the first row; 0 or "" without rows.
  std::int64_t number(std::string_view sql);
  std::string text(std::string_view sql);
  // Rows that the last write changed.
  int changes() const;
  // Whether a transaction is open.
  bool in_transaction() const;

  [[noreturn]] void fail(int code);
  void check(int code) {
    if (code != 0) fail(code);
  }

 private:
  struct Close {
    void operator()(sqlite3* handle) const;
  };
  // What tells one state of a file from another.
  using Stamp = std::array<std::int64_t, 5>;
  static Stamp stamp_of(const std::string& path);
  static bool same_file(const Stamp& a, const Stamp& b) { return a[0] == b[0] && a[1] == b[1]; }

  std::string path_;
  int patience_;
  Access access_;
  Stamp stamp_;
  // The log's, once it has been seen.
  mutable Stamp log_{};
  std::unique_ptr<sqlite3, Close> handle_;
};

// Makes what is written until `commit` one change; without it everything is undone. Inside
// another transaction it belongs to that one.
class Transaction {
 public:
  explicit Transaction(Connection& connection);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  void commit();

 private:
  // nullptr: committed, or part of an outer one.
  Connection* connection_;
};

}  // namespace velanor::store::sqlite
