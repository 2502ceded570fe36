#include "app/velanorctl/known_files.h"

#include <algorithm>
#include <vector>

#include "control/session.h"

namespace velanor::app {
namespace {

const std::vector<std::string_view>& names() {
  static const auto kNames = [] {
    std::vector<std::string_view> all(control::kFileNames.begin(), control::kFileNames.end());
    // Those that are not kept open.
    for (const char* name : {"ETABLISSEMENT", "BUDGETHISTORCUMUL", "BUDGETDETAILCALCUL"})
      all.emplace_back(name);
    return all;
  }();
  return kNames;
}

}  // namespace

bool is_known_file(std::string_view name) {
  return std::find(names().begin(), names().end(), name) != names().end();
}

std::string known_files() {
  std::string list;
  for (const std::string_view name : names()) list.append(list.empty() ? "" : ", ").append(name);
  return list;
}

}  // namespace velanor::app
