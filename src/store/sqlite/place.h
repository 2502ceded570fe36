// Where a database file may stand.
#pragma once

#include <string>

namespace velanor::store::sqlite {

// Throws DbError for a link, for what is no file, and for a share of the network, where programs on two
// machines would not see each other's locks. A path where nothing stands is none of these.
void refuse_unsafe_place(const std::string& path);

// Whether statfs names a file system by this number that other machines share.
bool is_network(unsigned long type);

}  // namespace velanor::store::sqlite
