// Database files as a whole: made, copied, put in another's place. Each appears complete, found sound and on
// the disk, or not at all.
#pragma once

#include <functional>
#include <string>

#include "store/sqlite/connection.h"

namespace velanor::store::sqlite {

// Copies what the connection sees now, others may write meanwhile. A path that is taken is a NameTaken, a
// source that is damaged a DamagedError.
void copy_to_new_file(Connection& from, const std::string& path, const std::function<void(double)>& progress);

// Hands over such a copy under a name of its own beside `path`, and removes it behind `use`.
void with_copy(Connection& from, const std::string& path, const std::function<void(const std::string&)>& use,
               const std::function<void(double)>& progress);

// Hands `fill` the name under which to make a new database; it becomes `path` when `fill` has closed it and
// says that it is to be kept.
void make_new_file(const std::string& path, const std::function<bool(const std::string& unfinished)>& fill);

// Brings all of the log into the file, which is then complete by itself once it is closed.
void settle(Connection& connection);

// See SqliteDatabase::restore.
std::string put_in_place(const std::string& backup, const std::string& path);

}  // namespace velanor::store::sqlite
