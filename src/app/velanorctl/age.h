// Encryption by the program age.
#pragma once

#include <string>

namespace velanor::app {

// Encrypts a file for who holds the key of the recipient, to a new file that appears when it is complete and
// on the disk. Throws store::DbError: the program is not there or refuses the recipient, the name is taken.
void encrypt_for(const std::string& recipient, const std::string& from, const std::string& to);

}  // namespace velanor::app
