#include "play/store_commands.h"

#include <algorithm>
#include <optional>

namespace velanor::play {
namespace {

using store::DbRecord;

std::optional<DbRecord> find(store::Database& database, const Command& command) {
  return database.OpenFile(command.file)->find(command.id);
}

// The marks between values as a scenario's reader can see them.
std::string shown(std::string text) {
  std::replace(text.begin(), text.end(), store::kValueMark, '|');
  std::replace(text.begin(), text.end(), store::kSubvalueMark, '\\');
  return text;
}

}  // namespace

void put(store::Database& database, const Command& command) {
  const auto file = database.OpenFile(command.file);
  DbRecord record = file->find(command.id).value_or(DbRecord{});
  store::set_element(record, command.position, command.text);
  file->write(command.id, record);
}

void remove(store::Database& database, const Command& command) {
  database.OpenFile(command.file)->DeleteRecord(command.id);
}

void print_record(store::Database& database, const Command& command, std::ostream& out) {
  const auto record = find(database, command);
  if (!record) {
    out << "absent\n";
    return;
  }
  store::print_elements(*record, out);
}

std::string expect_record(store::Database& database, const Command& command) {
  const std::string what = "expected " + command.file + " " + command.id + " " +
                           store::position_text(command.position) + " \"" + command.text + "\", found ";
  const auto record = find(database, command);
  if (!record) return what + "no such record";
  const std::string found(store::element(*record, command.position));
  return found == command.text ? "" : what + "\"" + shown(found) + "\"";
}

std::string expect_absent(store::Database& database, const Command& command) {
  if (!find(database, command)) return {};
  return "expected no record " + command.id + " in " + command.file + ", found one";
}

}  // namespace velanor::play
