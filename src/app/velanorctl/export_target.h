// Where a table may be written.
#pragma once

#include <string>

namespace velanor::app {

// A table takes the place of an older one, and of nothing else: throws store::DbError where a link, a base,
// or what is no ordinary file stands there.
void refuse_export_target(const std::string& path);

}  // namespace velanor::app
