// A file under another name until it is complete.
#pragma once

#include <string>

namespace velanor::app {

// What is interrupted leaves nothing that looks like the file, and what stood there before stays until
// the new one is complete. The file and the companions of a database file go with this when they were
// not completed.
class Unfinished {
 public:
  explicit Unfinished(std::string path);
  ~Unfinished();
  Unfinished(const Unfinished&) = delete;
  Unfinished& operator=(const Unfinished&) = delete;

  // Where the file is to be made.
  const std::string& path() const { return unfinished_; }
  // The file, closed by now, takes its name. Throws std::filesystem::filesystem_error.
  void complete();

 private:
  void remove() const;

  std::string path_, unfinished_;
};

}  // namespace velanor::app
