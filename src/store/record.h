// A multivalue record: attributes > values > subvalues, each numbered from 1.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velanor::store {

// The marks of the encoded form. No UTF-8 text can contain them.
inline constexpr char kAttributeMark = '\xFE';
inline constexpr char kValueMark = '\xFD';
inline constexpr char kSubvalueMark = '\xFC';

// As a value or subvalue number of a read: the whole element above. As the value number of a
// write: a new value (or subvalue) at the end.
inline constexpr int kWhole = -1;
inline constexpr int kAppend = -1;

// A value type: the encoded string and an index of its elements. Reading never fails and never
// parses: an element that is not there reads as "". A view that was read lives until the record
// is next written or destroyed.
//
// Texts written through `set`, `insert` and `append` are one element each: mark bytes, NUL and
// invalid UTF-8 in them are replaced by U+FFFD (see clean_text), so no text can change the
// record's structure. Only `copy_attribute` and the whole-record writes carry structure.
class DbRecord {
 public:
  DbRecord() = default;
  // The record of an encoded string. Marks are structure; other bytes that are not UTF-8 and
  // NULs are replaced.
  static DbRecord from_encoded(std::string_view encoded);

  // The whole record in its encoded form.
  const std::string& encoded() const { return bytes_; }
  bool empty() const { return bytes_.empty(); }

  // Element (attribute), (attribute, value) or (attribute, value, subvalue). Numbers below 1
  // other than kWhole read as "".
  std::string_view operator()(int attribute, int value = kWhole, int subvalue = kWhole) const;
  // The same, under its other name; a subvalue of kWhole is the whole value.
  std::string_view Extract(int attribute, int value, int subvalue) const {
    return (*this)(attribute, value, subvalue);
  }

  // Replaces one element; a record too short is extended with empty elements. A value of
  // kAppend adds a new value at the end of the attribute (the first one of an empty attribute),
  // a subvalue of kAppend likewise. Numbers below 1 otherwise throw std::out_of_range.
  void set(int attribute, std::string_view text);
  void set(int attribute, int value, std::string_view text);
  void set(int attribute, int value, int subvalue, std::string_view text);
  // Replaces attribute `attribute` by the attribute `from_attribute` of another record, with
  // its values and subvalues.
  void copy_attribute(int attribute, const DbRecord& from, int from_attribute);

  // A new value before value `value` of the attribute (or a new subvalue before `subvalue`);
  // past the end it is appended right behind the last one.
  void Insert(int attribute, int value, std::string_view text);
  void Insert(int attribute, int value, int subvalue, std::string_view text);
  // Removes the element; later ones of its level move down. What is not there is passed over.
  void Delete(int attribute, int value = kWhole, int subvalue = kWhole);

  // Values of the attribute (value kWhole), or subvalues of that value. An empty one counts 0.
  int Count(int attribute, int value = kWhole) const;
  // Attributes of the record (0 when it is empty); values of one attribute.
  int DCount() const;
  int DCount(int attribute) const { return Count(attribute); }

  friend bool operator==(const DbRecord& a, const DbRecord& b) { return a.bytes_ == b.bytes_; }
};

// Text as it may enter a record: every mark byte, NUL and byte that is not part of valid UTF-8
// becomes U+FFFD. Valid text comes back as it is.
std::string clean_text(std::string_view text);

}  // namespace velanor::store
