// Bytes that are put aside and read again.
#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace velanor::exchange {

// A few are kept in memory, many in a temporary file that has no name, that nobody else can read, and that
// goes with this. Failures are store::DbError.
class Spool {
 public:
  void write(std::string_view bytes);
  // From here on it is read, from its beginning.
  void rewind();
  // The next bytes, `size` of them or all that are left.
  std::size_t read(char* to, std::size_t size);

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  void move_to_file();

  std::string memory_;
  std::size_t read_ = 0;
  std::unique_ptr<std::FILE, Close> file_;
};

// Texts of any bytes, taken in the order in which they were added.
class SpooledTexts {
 public:
  void add(std::string_view text);
  // From here on they are taken, from the first.
  void rewind();
  // False behind the last.
  bool take(std::string& text);

 private:
  void read(char* to, std::size_t size);

  Spool spool_;
  std::size_t texts_ = 0, left_ = 0;
};

}  // namespace velanor::exchange
