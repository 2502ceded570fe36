// A folder that is there for one test.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace velanor {

class TemporaryFolder {
 public:
  // kMemory, where the system has such a place: for what nothing depends on but that there are files, by
  // the thousand.
  enum class On { kDisk, kMemory };
  explicit TemporaryFolder(On on = On::kDisk) {
    const bool memory = on == On::kMemory && access("/dev/shm/", W_OK) == 0;
    std::string name = (memory ? "/dev/shm/" : testing::TempDir()) + "velanor-XXXXXX";
    path_ = mkdtemp(name.data());
  }
  ~TemporaryFolder() { std::filesystem::remove_all(path_); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::string file(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

}  // namespace velanor
