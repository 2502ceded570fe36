// A file under another name until it is complete.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace velanor::store::sqlite {

// The file is made beside the one it is to become, readable by its owner alone, under a name of its own that
// nobody could have put a link at. What is interrupted leaves nothing that looks like the file, and what
// stood there before stays until the new one is complete and on the disk. What a program that was killed has
// left of earlier attempts is removed. Failures are DbErrors.
class UnfinishedFile {
 public:
  explicit UnfinishedFile(std::string path);
  // The file, and the companions of a database file, go with this when it took no name.
  ~UnfinishedFile();
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;

  // Where the file is to be made; it is there, and empty.
  const std::string& path() const { return unfinished_; }
  // The file, closed by now, is brought to the disk and takes its name, from whatever stood there.
  void complete();
  // The same; false, and nothing done, where something stands there.
  bool complete_if_free();

  // The file that one under such a name was to become; nothing for any other name.
  static std::optional<std::string> path_meant_by(std::string_view path);
  // Removes one of this user's, with its companions, that nobody is making any more.
  static void remove_if_left_behind(const std::string& path);

 private:
  void remove_left_behind() const;
  void remove() const;

  std::string path_, unfinished_;
  // Held while the file is being made: one that nobody holds was left behind.
  int held_;
};

// Brings the file, or the names in a folder, to the disk. Throws DbError.
void sync_to_disk(const std::string& path);
void sync_folder_of(const std::string& path);

}  // namespace velanor::store::sqlite
