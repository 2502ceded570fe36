// A database file as bytes.
#pragma once

#include <memory>
#include <span>
#include <string>

struct sqlite3;
struct sqlite3_file;

namespace velanor::store::sqlite {

// Read and locked by SQLite, though nothing of it is taken for a database: who closes a file loses all the
// locks that his program has on it, and only SQLite knows of its own.
class RawFile {
 public:
  enum class For { kReading, kWriting };
  // What is not a file, or may not be so used, is not open.
  RawFile(const std::string& path, For purpose);

  bool is_open() const { return file_ != nullptr; }
  // Fills it with the first bytes; false where there are fewer.
  bool read_start(std::span<char> bytes);
  // Whether nobody else has it open. Then nobody can open it before this has gone.
  bool lock_others_out();

 private:
  struct Close {
    void operator()(sqlite3* handle) const;
  };
  std::unique_ptr<sqlite3, Close> handle_;
  sqlite3_file* file_ = nullptr;
};

}  // namespace velanor::store::sqlite
