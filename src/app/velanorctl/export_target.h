// Where a table, or a document, may be written.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <string_view>

namespace velanor::app {

// It takes the place of an older file, and of nothing else: throws store::DbError where a link, a base, or
// what is no ordinary file stands there. `what` is written, in the sentence of the refusal.
void refuse_export_target(const std::string& path, std::string_view what = "Le tableau");

// Writes a table there (mode 0600): all of it, or nothing. Throws store::DbError, and what `write` throws.
void write_export(const std::string& path, const std::function<void(std::ostream&)>& write);
// The same for who writes by a path: of a file that is there, and empty.
void write_export_file(const std::string& path, const std::function<void(const std::string& file)>& write);

}  // namespace velanor::app
