// A record as lists of lists of texts: slow and plain, to hold DbRecord against.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "velanor/record.h"

namespace velanor::store::fuzz {

using Value = std::vector<std::string>;
using Attribute = std::vector<Value>;

template <class T, class Encode>
std::string joined(const std::vector<T>& parts, char mark, Encode encode) {
  std::string text;
  for (std::size_t i = 0; i < parts.size(); ++i)
    text += (i == 0 ? "" : std::string(1, mark)) + encode(parts[i]);
  return text;
}
inline std::string encode(const Value& value) {
  return joined(value, kSubvalueMark, [](const std::string& text) { return text; });
}
inline std::string encode(const Attribute& attribute) {
  return joined(attribute, kValueMark, [](const Value& value) { return encode(value); });
}

// The element `number` of a list that is extended with `empty` ones to hold it.
template <class T>
T& at(std::vector<T>& list, int number, const T& empty) {
  if (list.size() < static_cast<std::size_t>(number)) list.resize(static_cast<std::size_t>(number), empty);
  return list[static_cast<std::size_t>(number) - 1];
}

template <class T>
void insert(std::vector<T>& list, int number, const T& element) {
  const bool past = number == kAppend || static_cast<std::size_t>(number) > list.size();
  list.insert(past ? list.end() : list.begin() + number - 1, element);
}

template <class T>
void erase(std::vector<T>& list, int number) {
  if (number >= 1 && static_cast<std::size_t>(number) <= list.size()) list.erase(list.begin() + number - 1);
}

class RecordModel {
 public:
  std::string encoded() const {
    return joined(attributes, kAttributeMark, [](const Attribute& a) { return encode(a); });
  }

  void set(int a, const std::string& text) { attribute(a) = {{text}}; }
  void set(int a, int v, const std::string& text) {
    if (v == kAppend) return insert_value(a, kAppend, {text});
    at(attribute(a), v, Value{""}) = {text};
  }
  void set(int a, int v, int s, const std::string& text) {
    if (s == kAppend) return insert_subvalue(a, v, kAppend, text);
    if (v == kAppend) {
      Value value(static_cast<std::size_t>(s), "");
      value.back() = text;
      return insert_value(a, kAppend, value);
    }
    at(at(attribute(a), v, Value{""}), s, std::string()) = text;
  }
  void insert_value(int a, int v, const Value& value) {
    if (encode(attribute(a)).empty()) {
      attribute(a) = {value};
    } else {
      insert(attribute(a), v, value);
    }
  }
  void insert_subvalue(int a, int v, int s, const std::string& text) {
    if (v == kAppend) return insert_value(a, kAppend, {text});
    Value& value = at(attribute(a), v, Value{""});
    if (encode(value).empty()) {
      value = {text};
    } else {
      insert(value, s, text);
    }
  }
  void remove(int a, int v, int s) {
    if (a < 1 || a > static_cast<int>(attributes.size())) return;
    if (v == kWhole) return erase(attributes, a);
    Attribute& values = attribute(a);
    if (s == kWhole) {
      erase(values, v);
      if (values.empty()) values = {{""}};
    } else if (v >= 1 && v <= static_cast<int>(values.size())) {
      Value& value = values[static_cast<std::size_t>(v) - 1];
      erase(value, s);
      if (value.empty()) value = {""};
    }
  }
  // A record whose one attribute is empty is a record without attributes.
  void normalise() {
    if (encoded().empty()) attributes.clear();
  }

  std::vector<Attribute> attributes;

 private:
  Attribute& attribute(int a) { return at(attributes, a, Attribute{{""}}); }
};

}  // namespace velanor::store::fuzz
