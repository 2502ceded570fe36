#include "app/velanorctl/unfinished.h"

#include <filesystem>
#include <system_error>
#include <utility>

namespace velanor::app {

namespace fs = std::filesystem;

Unfinished::Unfinished(std::string path) : path_(std::move(path)), unfinished_(path_ + ".partiel") {
  remove();
}

Unfinished::~Unfinished() { remove(); }

void Unfinished::complete() { fs::rename(unfinished_, path_); }

void Unfinished::remove() const {
  std::error_code ignored;
  for (const char* companion : {"", "-wal", "-shm"}) fs::remove(unfinished_ + companion, ignored);
}

}  // namespace velanor::app
