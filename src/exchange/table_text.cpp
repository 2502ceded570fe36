#include "exchange/table_text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#include "exchange/csv.h"
#include "exchange/windows_1252.h"
#include "store/utf8.h"
#include "velanor/database.h"

namespace velanor::exchange {
namespace {

constexpr std::size_t kPiece = std::size_t{1} << 17;

constexpr std::string_view kUnreadable =
    "le tableau n'est écrit ni en UTF-8 ni en Windows-1252 ; enregistrez-le au format « CSV UTF-8 », puis "
    "recommencez";

// Where the last character begins that the end may have cut; the end where there is none.
std::size_t last_whole(std::string_view text) {
  constexpr std::size_t kLongest = 4;
  for (std::size_t back = 1; back <= std::min(kLongest, text.size()); ++back) {
    const char byte = text[text.size() - back];
    if (!store::utf8::is_continuation(byte))
      return static_cast<unsigned char>(byte) < 0x80 ? text.size() : text.size() - back;
  }
  return text.size();
}

bool is_plain(const char* eight) {
  constexpr std::uint64_t kOnes = 0x0101010101010101, kHighBits = 0x8080808080808080;
  std::uint64_t bytes;
  std::memcpy(&bytes, eight, sizeof bytes);
  return ((bytes | (bytes - kOnes)) & kHighBits) == 0;
}

// Where the first byte stands that cannot enter a record.
std::size_t first_foreign(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    if (text.size() - at >= 8 && is_plain(&text[at])) {
      at += 8;
      continue;
    }
    const std::size_t length = store::utf8::sequence_length(text, at);
    if (length == 0) return at;
    at += length;
  }
  return text.size();
}

[[noreturn]] void fail() {
  throw store::DbError(
      store::kStoreFailure,
      "Le tableau ne peut pas être lu jusqu'au bout. Vérifiez son disque, puis recommencez.");
}

}  // namespace

TableSource::TableSource(std::istream& in) : in_(in), begin_(in.tellg()) {
  if (begin_ != std::istream::pos_type(-1)) return;
  in_.clear();
  Spool all;
  std::string piece(kPiece, '\0');
  for (std::size_t size = kPiece; size == kPiece;)
    all.write({piece.data(), size = read(piece.data(), kPiece)});
  kept_ = std::move(all);
  kept_->rewind();
}

void TableSource::rewind() {
  if (kept_) return kept_->rewind();
  in_.clear();
  in_.seekg(begin_);
  if (!in_) fail();
}

std::size_t TableSource::read(char* to, std::size_t size) {
  if (kept_) return kept_->read(to, size);
  in_.read(to, static_cast<std::streamsize>(size));
  if (in_.bad()) fail();
  return static_cast<std::size_t>(in_.gcount());
}

TableText::TableText(std::shared_ptr<TableSource> source) : source_(std::move(source)) {
  int line = 1;
  bool foreign = false;
  each_piece([&](std::string_view piece) {
    const std::size_t at = first_foreign(piece);
    line +=
        static_cast<int>(std::count(piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
    foreign = at < piece.size();
    return !foreign;
  });
  if (foreign) was_windows_1252_ = makes_sense_as_windows_1252();
  if (foreign && !was_windows_1252_) {
    fault_ = kUnreadable;
    fault_line_ = line;
  }
  source_->rewind();
}

// No piece but the last ends within a character.
void TableText::each_piece(const Look& look) {
  source_->rewind();
  std::string piece;
  for (bool more = true; more;) {
    const std::size_t carried = piece.size();
    piece.resize(carried + kPiece);
    const std::size_t read = source_->read(piece.data() + carried, kPiece);
    piece.resize(carried + read);
    more = read == kPiece;
    const std::size_t end = more ? last_whole(piece) : piece.size();
    if (!look({piece.data(), end})) return;
    piece.erase(0, end);
  }
}

bool TableText::makes_sense_as_windows_1252() {
  Windows1252Judge judge;
  each_piece([&](std::string_view piece) { return judge.look_at(piece); });
  return judge.makes_sense();
}

bool TableText::next(std::string& text) {
  if (!fault_.empty()) return false;
  const std::size_t before = text.size();
  text.resize(before + kPiece);
  const std::size_t read = source_->read(text.data() + before, kPiece);
  text.resize(before + read);
  if (was_windows_1252_) {
    const std::string bytes = text.substr(before);
    text.resize(before);
    append_windows_1252(text, bytes);
  } else if (std::exchange(begins_, false) &&
             std::string_view(text).substr(before).starts_with(kByteOrderMark)) {
    text.erase(before, kByteOrderMark.size());
  }
  return read > 0;
}

}  // namespace velanor::exchange
