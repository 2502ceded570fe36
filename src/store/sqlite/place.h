// Where a database file may stand.
#pragma once

#include <string>

namespace velanor::store::sqlite {

// Throws DbError for a link, for what is no file, and for a share of the network, where programs on two
// machines would not see each other's locks. A path where nothing stands is none of these.
void refuse_unsafe_place(const std::string& path);

// Whether statfs names a file system by this number that other machines share.
bool is_network(unsigned long type);

// Whether others than its owner can read a file, by its rights and those of its folder.
bool readable_by_others(const std::string& path);

}  // namespace velanor::store::sqlite
