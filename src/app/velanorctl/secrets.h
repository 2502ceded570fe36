// Passwords in the URLs of a command line: used, and shown to nobody.
#pragma once

#include <string>
#include <vector>

namespace velanor::app {

// A text with the URLs of servers that stand in it, without their passwords.
std::string without_passwords(std::string text);

// A copy of the arguments; in the place of the first, which everybody on the machine can read, no password is
// left. Ends with a null pointer and lives as long as the process.
char** taken_arguments(int count, char** arguments);

}  // namespace velanor::app
