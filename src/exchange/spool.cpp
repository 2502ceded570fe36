#include "exchange/spool.h"

#include <cstring>

#include "velanor/database.h"

namespace velanor::exchange {
namespace {

constexpr std::size_t kMostInMemory = std::size_t{1} << 20;

[[noreturn]] void fail() {
  throw store::DbError(store::kStoreFailure,
                       "Ce qui doit être mis de côté n'a pas pu l'être dans le dossier temporaire du "
                       "système. Libérez de la place sur son disque, puis recommencez.");
}

}  // namespace

void Spool::write(std::string_view bytes) {
  if (bytes.empty()) return;  // which may be nowhere
  if (!file_ && memory_.size() + bytes.size() > kMostInMemory) move_to_file();
  if (!file_) {
    memory_.append(bytes);
  } else if (std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size()) {
    fail();
  }
}

void Spool::move_to_file() {
  file_.reset(std::tmpfile());
  constexpr std::size_t kBuffer = std::size_t{1} << 16;
  if (file_) std::setvbuf(file_.get(), nullptr, _IOFBF, kBuffer);
  if (!file_ || std::fwrite(memory_.data(), 1, memory_.size(), file_.get()) != memory_.size()) fail();
  memory_ = std::string();
}

void Spool::rewind() {
  read_ = 0;
  if (file_ && std::fseek(file_.get(), 0, SEEK_SET) != 0) fail();
}

std::size_t Spool::read(char* to, std::size_t size) {
  if (!file_) {
    const std::size_t count = memory_.copy(to, size, read_);
    read_ += count;
    return count;
  }
  const std::size_t count = std::fread(to, 1, size, file_.get());
  if (count < size && std::ferror(file_.get()) != 0) fail();
  return count;
}

void SpooledTexts::add(std::string_view text) {
  const std::size_t size = text.size();
  char head[sizeof size] = {};
  std::memcpy(head, &size, sizeof size);
  spool_.write({head, sizeof head});
  spool_.write(text);
  ++texts_;
}

void SpooledTexts::rewind() {
  spool_.rewind();
  left_ = texts_;
}

bool SpooledTexts::take(std::string& text) {
  if (left_ == 0) return false;
  --left_;
  std::size_t size = 0;
  char head[sizeof size];
  read(head, sizeof head);
  std::memcpy(&size, head, sizeof size);
  text.resize(size);
  read(text.data(), size);
  return true;
}

void SpooledTexts::read(char* to, std::size_t size) {
  if (spool_.read(to, size) == size) return;
  throw store::DbError(store::kStoreFailure,
                       "Ce qui a été mis de côté dans le dossier temporaire du système n'est plus entier. "
                       "Recommencez.");
}

}  // namespace velanor::exchange
