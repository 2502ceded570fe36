// The text of a table, piece by piece, so that a long one is never in memory as a whole.
#pragma once

#include <cstddef>
#include <functional>
#include <istream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "exchange/spool.h"

namespace velanor::exchange {

// Bytes that are read more than once: from the stream, which must outlive it, where that can go back, else
// from what it gave the first time.
class TableSource {
 public:
  explicit TableSource(std::istream& in);
  void rewind();
  // Throws store::DbError where it cannot be read. Less than asked for: there is no more.
  std::size_t read(char* to, std::size_t size);

 private:
  std::istream& in_;
  std::istream::pos_type begin_;
  std::optional<Spool> kept_;
};

// The source in UTF-8, without a byte order mark. It is read once to know its encoding: UTF-8, or else
// Windows-1252.
class TableText {
 public:
  explicit TableText(std::shared_ptr<TableSource> source);
  // What stands in the way of reading it at all, and on which line; then it has no text.
  const std::string& fault() const { return fault_; }
  int fault_line() const { return fault_line_; }
  bool was_windows_1252() const { return was_windows_1252_; }
  // Appends the next piece; false at the end.
  bool next(std::string& text);

 private:
  using Look = std::function<bool(std::string_view piece)>;
  void each_piece(const Look& look);
  bool makes_sense_as_windows_1252();

  std::shared_ptr<TableSource> source_;
  std::string fault_;
  int fault_line_ = 0;
  bool was_windows_1252_ = false, begins_ = true;
};

}  // namespace velanor::exchange
