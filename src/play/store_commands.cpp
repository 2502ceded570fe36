#include "play/store_commands.h"

#include <algorithm>
#include <optional>

namespace velanor::play {
namespace {

using store::DbRecord;

std::optional<DbRecord> find(store::Database& database, const Command& command) {
  return database.OpenFile(command.file)->find(command.id);
}

void set(DbRecord& record, const Position& at, std::string_view text) {
  if (at.value == 0)
    record.set(at.attribute, text);
  else if (at.subvalue == 0)
    record.set(at.attribute, at.value, text);
  else
    record.set(at.attribute, at.value, at.subvalue, text);
}

int or_whole(int number) { return number == 0 ? store::kWhole : number; }

std::string element(const DbRecord& record, const Position& at) {
  return std::string(record(at.attribute, or_whole(at.value), or_whole(at.subvalue)));
}

std::string text_of(const Position& at) {
  std::string text = std::to_string(at.attribute);
  for (int level : {at.value, at.subvalue})
    if (level != 0) text += "," + std::to_string(level);
  return text;
}

// The marks between values as a scenario's reader can see them.
std::string shown(std::string text) {
  std::replace(text.begin(), text.end(), store::kValueMark, '|');
  std::replace(text.begin(), text.end(), store::kSubvalueMark, '\\');
  return text;
}

void print(const DbRecord& record, const Position& at, std::ostream& out) {
  const std::string text = element(record, at);
  if (!text.empty()) out << text_of(at) << " = " << text << "\n";
}

void print_value(const DbRecord& record, const Position& at, int value, std::ostream& out) {
  const int subvalues = record.Count(at.attribute, value);
  if (subvalues <= 1) return print(record, at, out);
  for (int s = 1; s <= subvalues; ++s) print(record, {at.attribute, value, s}, out);
}

void print_attribute(const DbRecord& record, int attribute, std::ostream& out) {
  const int values = record.Count(attribute);
  if (values <= 1) return print_value(record, {attribute}, 1, out);
  for (int v = 1; v <= values; ++v) print_value(record, {attribute, v}, v, out);
}

}  // namespace

void put(store::Database& database, const Command& command) {
  const auto file = database.OpenFile(command.file);
  DbRecord record = file->find(command.id).value_or(DbRecord{});
  set(record, command.position, command.text);
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
  for (int a = 1; a <= record->DCount(); ++a) print_attribute(*record, a, out);
}

std::string expect_record(store::Database& database, const Command& command) {
  const std::string what = "expected " + command.file + " " + command.id + " " + text_of(command.position) +
                           " \"" + command.text + "\", found ";
  const auto record = find(database, command);
  if (!record) return what + "no such record";
  const std::string found = element(*record, command.position);
  return found == command.text ? "" : what + "\"" + shown(found) + "\"";
}

std::string expect_absent(store::Database& database, const Command& command) {
  if (!find(database, command)) return {};
  return "expected no record " + command.id + " in " + command.file + ", found one";
}

}  // namespace velanor::play
