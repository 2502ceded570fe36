// A multivalue record: attributes > values > subvalues, each numbered from 1.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velanor::store {

// The marks of the encoded form. No UTF-8 text can contain them.
inline constexpr char kAttributeMark = '\xFE';
inline constexpr char kValueMark = '\xFD';
inline constexpr char kSubvalueMark = '\xFC';

// As a value or subvalue number, -1 means two things: in a read the whole element above, in a write a new
// one at the end. By these names neither can be taken for the other.
struct Whole {
  constexpr operator int() const { return -1; }
};
struct Append {
  constexpr operator int() const { return -1; }
};
inline constexpr Whole kWhole;
inline constexpr Append kAppend;

// The highest number that a write may name; beyond it lies a mistake, not a record.
inline constexpr int kMaxNumber = 1'000'000;

// A value: the encoded string and an index of its elements. Copies share nothing, and as with a string
// each thread may use its own; one that was moved from is to be assigned anew. Reading never fails and
// never parses: an element that is not there reads as "". A view that was read lives until the record is
// next written, moved or destroyed; it may itself be what is written.
//
// Texts written through `set` and `Insert` are one element each: mark bytes, NUL and invalid UTF-8 in them
// are replaced by U+FFFD (see clean_text), so no text can change the record's structure. Only
// `copy_attribute` and what makes or assigns a whole record carry structure. A record of 2 GiB throws
// std::length_error.
class DbRecord {
 public:
  DbRecord() = default;
  // The record of an encoded string. Marks are structure; other bytes that are not UTF-8 and
  // NULs are replaced.
  static DbRecord from_encoded(std::string_view encoded);
  // The same for a string that `encoded` once gave, whose bytes need no look. Any other must not come here.
  static DbRecord from_trusted(std::string encoded);

  // The whole record in its encoded form.
  const std::string& encoded() const { return bytes_; }
  bool empty() const { return bytes_.empty(); }

  // Element (attribute), (attribute, value) or (attribute, value, subvalue), with the marks of what stands
  // in it. Numbers below 1 other than kWhole read as "".
  std::string_view operator()(int attribute, int value = kWhole, int subvalue = kWhole) const;
  std::string_view operator()(int attribute, Append, int subvalue = kWhole) const = delete;
  // The same, under its other name; a subvalue of kWhole is the whole value.
  std::string_view Extract(int attribute, int value, int subvalue) const {
    return (*this)(attribute, value, subvalue);
  }

  // Replaces one element; a record too short is extended with empty elements. A value of
  // kAppend adds a new value at the end of the attribute (the first one of an empty attribute),
  // a subvalue of kAppend likewise. Numbers otherwise below 1, or above kMaxNumber, throw
  // std::out_of_range.
  void set(int attribute, std::string_view text);
  void set(int attribute, int value, std::string_view text);
  void set(int attribute, int value, int subvalue, std::string_view text);
  void set(int attribute, Whole, std::string_view text) = delete;
  void set(int attribute, int value, Whole, std::string_view text) = delete;
  // Replaces attribute `attribute` by the attribute `from_attribute` of another record, with
  // its values and subvalues.
  void copy_attribute(int attribute, const DbRecord& from, int from_attribute);

  // A new value before value `value` of the attribute (or a new subvalue before `subvalue`);
  // past the end, or with kAppend, it is appended right behind the last one. Numbers as in `set`.
  void Insert(int attribute, int value, std::string_view text);
  void Insert(int attribute, int value, int subvalue, std::string_view text);
  // Removes the element; later ones of its level move down. What is not there is passed over.
  void Delete(int attribute, int value = kWhole, int subvalue = kWhole);

  // Values of the attribute (value kWhole), or subvalues of that value. An empty one counts 0.
  int Count(int attribute, int value = kWhole) const;
  // Attributes of the record (0 when it is empty); values of one attribute.
  int DCount() const;
  int DCount(int attribute) const { return Count(attribute); }

  // By their encoded forms: an empty element at the end makes a difference.
  friend bool operator==(const DbRecord& a, const DbRecord& b) { return a.bytes_ == b.bytes_; }

 private:
  // Leaves are the texts between two marks of any kind; an element is a run of them, `first` to
  // before `last`. An element that is not there is an empty run.
  struct Leaves {
    std::uint32_t first = 0, last = 0;
    bool exist() const { return first != last; }
  };
  Leaves leaves(int attribute, int value, int subvalue) const;
  std::size_t begin(Leaves run) const { return leaf_starts_[run.first]; }
  std::size_t end(Leaves run) const { return leaf_starts_[run.last] - 1; }
  bool empty(Leaves run) const { return !run.exist() || begin(run) == end(run); }
  // Elements in the structure, where an empty attribute holds one empty value.
  int attributes() const;
  int values(int attribute) const;
  int subvalues(int attribute, int value) const;

  void replace(int attribute, int value, int subvalue, std::string_view clean);
  void insert_value(int attribute, int value, std::string_view clean);
  // Before `next`, or at the end of `parent` when there is no next.
  void insert_before(int attribute, Leaves next, Leaves parent, char mark, std::string_view clean);
  // Replaces the bytes `begin` to before `end`, which lie in or behind the attribute.
  void splice(int attribute, std::size_t begin, std::size_t end, std::string_view bytes);
  // Indexes the attribute and all behind it; what stands before it has not changed.
  void index_from(int attribute);

  std::string bytes_;
  // Where each leaf starts in the bytes, with which leaf each value starts, with which value each
  // attribute starts; each list closed by one entry more. All are empty for an empty record.
  std::vector<std::uint32_t> leaf_starts_;
  std::vector<std::uint32_t> value_leaves_;
  std::vector<std::uint32_t> attribute_values_;
};

// Text as it may enter a record: every mark byte, NUL and byte that is not part of valid UTF-8
// becomes U+FFFD. Valid text comes back as it is.
std::string clean_text(std::string_view text);

}  // namespace velanor::store
