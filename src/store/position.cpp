#include "store/position.h"

namespace velanor::store {
namespace {

int or_whole(int number) { return number == 0 ? kWhole : number; }

void print(const DbRecord& record, const Position& at, std::ostream& out) {
  const std::string_view text = element(record, at);
  if (!text.empty()) out << position_text(at) << " = " << text << "\n";
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

std::string position_text(const Position& position) {
  std::string text = std::to_string(position.attribute);
  for (const int level : {position.value, position.subvalue}) {
    if (level != 0) text += "," + std::to_string(level);
  }
  return text;
}

std::string_view element(const DbRecord& record, const Position& position) {
  return record(position.attribute, or_whole(position.value), or_whole(position.subvalue));
}

void set_element(DbRecord& record, const Position& position, std::string_view text) {
  if (position.value == 0) {
    record.set(position.attribute, text);
  } else if (position.subvalue == 0) {
    record.set(position.attribute, position.value, text);
  } else {
    record.set(position.attribute, position.value, position.subvalue, text);
  }
}

void print_elements(const DbRecord& record, std::ostream& out) {
  for (int attribute = 1; attribute <= record.DCount(); ++attribute) print_attribute(record, attribute, out);
}

}  // namespace velanor::store
