#include "store/sqlite/unfinished_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <random>
#include <system_error>
#include <utility>

#include "velanor/database.h"

namespace velanor::store::sqlite {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kEnding = ".partiel";
constexpr std::size_t kRandomLength = 12;
constexpr std::string_view kDigits = "0123456789abcdef";

[[noreturn]] void fail(const std::string& path) {
  const bool full = errno == ENOSPC || errno == EDQUOT;
  throw DbError(kStoreFailure, "Le fichier « " + path + " » n'a pas pu être écrit" +
                                   (full ? " : le disque est plein. Libérez de la place, puis recommencez."
                                         : ". Vérifiez que son dossier existe, la place sur le disque et "
                                           "votre droit d'écrire dans ce dossier."));
}

std::string folder_of(const std::string& path) {
  const fs::path folder = fs::path(path).parent_path();
  return folder.empty() ? "." : folder.string();
}

std::string random_name() {
  std::random_device random;
  std::string name;
  while (name.size() < kRandomLength) name += kDigits[random() % kDigits.size()];
  return name;
}

void remove_with_companions(const std::string& path) {
  std::error_code ignored;
  for (const char* companion : {"", "-journal", "-wal", "-shm"}) fs::remove(path + companion, ignored);
}

void sync(const std::string& path, int flags) {
  const int file = ::open(path.c_str(), flags | O_RDONLY | O_CLOEXEC);
  if (file < 0) fail(path);
  const int done = ::fsync(file);
  const int error = errno;
  ::close(file);
  errno = error;
  // Some file systems have no names to sync.
  if (done != 0 && !(error == EINVAL && (flags & O_DIRECTORY))) fail(path);
}

}  // namespace

void sync_to_disk(const std::string& path) { sync(path, O_NOFOLLOW); }

void sync_folder_of(const std::string& path) { sync(folder_of(path), O_DIRECTORY); }

std::optional<std::string> UnfinishedFile::path_meant_by(std::string_view path) {
  const std::size_t added = 1 + kRandomLength + kEnding.size();
  if (path.size() <= added || !path.ends_with(kEnding)) return std::nullopt;
  const std::size_t end = path.size() - added;
  const std::string_view random = path.substr(end + 1, kRandomLength);
  if (path[end] != '.' || random.find_first_not_of(kDigits) != random.npos) return std::nullopt;
  return std::string(path.substr(0, end));
}

// A link is followed nowhere.
void UnfinishedFile::remove_if_left_behind(const std::string& path) {
  const int file = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  if (file < 0) return;
  struct stat status {};
  const bool ours = ::fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == ::geteuid();
  if (ours && ::flock(file, LOCK_EX | LOCK_NB) == 0) remove_with_companions(path);
  ::close(file);
}

void UnfinishedFile::remove_left_behind() const {
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(folder_of(path_), ignored)) {
    const std::string path = (fs::path(folder_of(path_)) / entry.path().filename()).string();
    const auto meant = path_meant_by(path);
    if (meant && fs::path(*meant).filename() == fs::path(path_).filename()) remove_if_left_behind(path);
  }
}

UnfinishedFile::UnfinishedFile(std::string path) : path_(std::move(path)) {
  remove_left_behind();
  unfinished_ = path_ + "." + random_name() + std::string(kEnding);
  held_ = ::open(unfinished_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (held_ < 0) fail(path_);
  ::flock(held_, LOCK_EX | LOCK_NB);
}

UnfinishedFile::~UnfinishedFile() {
  remove();
  ::close(held_);
}

void UnfinishedFile::complete() {
  sync_to_disk(unfinished_);
  if (::rename(unfinished_.c_str(), path_.c_str()) != 0) fail(path_);
  sync_folder_of(path_);
}

// A second name, where the file system has such, never takes the place of a file that has come up meanwhile.
bool UnfinishedFile::complete_if_free() {
  sync_to_disk(unfinished_);
  if (::link(unfinished_.c_str(), path_.c_str()) != 0) {
    struct stat status {};
    if (errno == EEXIST || ::lstat(path_.c_str(), &status) == 0) return false;
    if (::rename(unfinished_.c_str(), path_.c_str()) != 0) fail(path_);
  }
  remove();
  sync_folder_of(path_);
  return true;
}

void UnfinishedFile::remove() const { remove_with_companions(unfinished_); }

}  // namespace velanor::store::sqlite
