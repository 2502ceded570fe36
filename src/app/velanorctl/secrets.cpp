#include "app/velanorctl/secrets.h"

#include <algorithm>
#include <cstring>

#include "velanor/postgres_database.h"

namespace velanor::app {

std::string without_passwords(std::string text) {
  for (std::size_t start = 0; (start = text.find("postgres", start)) != text.npos;) {
    const std::size_t end = std::min(text.find_first_of(" \t\n\"'", start), text.size());
    const std::string url = text.substr(start, end - start);
    const std::string shown =
        store::PostgresDatabase::is_url(url) ? store::PostgresDatabase::without_password(url) : url;
    text.replace(start, url.size(), shown);
    start += std::max<std::size_t>(shown.size(), 1);
  }
  return text;
}

char** taken_arguments(int count, char** arguments) {
  static std::vector<std::string> taken;
  static std::vector<char*> pointers;
  taken.assign(arguments, arguments + count);
  pointers.clear();
  for (std::string& argument : taken) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  for (int i = 0; i < count; ++i) {
    const std::string shown = without_passwords(arguments[i]);
    const std::size_t room = std::strlen(arguments[i]);
    // Any character may be part of a password, but not of a longer text than it was.
    std::memset(arguments[i], 0, room);
    shown.copy(arguments[i], room);
  }
  return pointers.data();
}

}  // namespace velanor::app
