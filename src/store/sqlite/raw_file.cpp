#include "store/sqlite/raw_file.h"

#include <sqlite3.h>

#include <filesystem>

namespace velanor::store::sqlite {

void RawFile::Close::operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }

RawFile::RawFile(const std::string& path, For purpose) {
  std::error_code none;
  if (!std::filesystem::is_regular_file(path, none)) return;
  const bool writes = purpose == For::kWriting;
  sqlite3* handle = nullptr;
  const int code =
      sqlite3_open_v2(path.c_str(), &handle,
                      SQLITE_OPEN_NOMUTEX | (writes ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY), nullptr);
  handle_.reset(handle);
  if (code != SQLITE_OK || (writes && sqlite3_db_readonly(handle, "main") != 0)) return;
  sqlite3_file* file = nullptr;
  sqlite3_file_control(handle, "main", SQLITE_FCNTL_FILE_POINTER, &file);
  if (file != nullptr && file->pMethods != nullptr) file_ = file;
}

bool RawFile::read_start(std::span<char> bytes) {
  return is_open() &&
         file_->pMethods->xRead(file_, bytes.data(), static_cast<int>(bytes.size()), 0) == SQLITE_OK;
}

// Every connection to a database that keeps a log has the first lock as long as it lives.
bool RawFile::lock_others_out() {
  return is_open() && file_->pMethods->xLock(file_, SQLITE_LOCK_SHARED) == SQLITE_OK &&
         file_->pMethods->xLock(file_, SQLITE_LOCK_EXCLUSIVE) == SQLITE_OK;
}

}  // namespace velanor::store::sqlite
