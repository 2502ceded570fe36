// The command lines of the programs in French: help, version, and what is wrong with a call.
#pragma once

#include <string>

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace velanor::app {

// For errors of usage; 2 says that a scenario is not of the language.
inline constexpr int kUsageStatus = 64;

// To be called before sub-commands are added, which take it over. Adds --help and --version.
void speak_french(CLI::App& program);

// What ended the parsing: prints help or version, or says what is wrong. The status to end with.
int end_of_parsing(const CLI::App& program, const CLI::ParseError& end);

}  // namespace velanor::app
