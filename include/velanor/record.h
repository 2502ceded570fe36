// A multivalue record: attributes > values > subvalues, each numbered from 1.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

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
  DbRecord(const DbRecord&) = default;
  DbRecord(DbRecord&&) noexcept = default;
  // Nothing has changed where there is no memory for it.
  DbRecord& operator=(const DbRecord& other);
  DbRecord& operator=(DbRecord&&) noexcept = default;
  ~DbRecord() = default;
  // The record of an encoded string. Marks are structure; other bytes that are not UTF-8 and
  // NULs are replaced.
  static DbRecord from_encoded(std::string_view encoded);
  // The same for a string that `encoded` once gave, whose bytes need no look. Any other must not come here.
  static DbRecord from_trusted(std::string encoded);
  // The same for one record after the other in the memory of this one. Nothing has changed where they throw.
  void assign_encoded(std::string_view encoded);
  void assign_trusted(std::string_view encoded);

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
  int DCount() const { return attributes(); }
  int DCount(int attribute) const { return Count(attribute); }

  // By their encoded forms: an empty element at the end makes a difference.
  friend bool operator==(const DbRecord& a, const DbRecord& b) { return a.bytes_ == b.bytes_; }

 private:
  // Where each leaf starts in the bytes, with which leaf each value starts, with which value each attribute
  // starts; each list closed by one entry more. A leaf is a text between two marks of any kind. All three
  // stand in one piece of memory, with as much room for each; without elements they are not there.
  class Index {
   public:
    Index() = default;
    Index(const Index& other);
    Index(Index&& other) noexcept { swap(other); }
    Index& operator=(const Index&) = delete;
    Index& operator=(Index&& other) noexcept {
      Index taken(std::move(other));
      swap(taken);
      return *this;
    }
    ~Index() = default;

    std::uint32_t* leaf_starts() const { return entries_.get(); }
    std::uint32_t* value_leaves() const { return entries_.get() + room_; }
    std::uint32_t* attribute_values() const { return entries_.get() + 2 * room_; }
    // Elements of each level.
    std::uint32_t leaves = 0, values = 0, attributes = 0;

    // Room for so many leaves, twice as much as before where there is less. What there is stays.
    void make_room(std::size_t leaves);
    // Within the room that there is.
    void copy(const Index& other);
    void clear() { leaves = values = attributes = 0; }

   private:
    void swap(Index& other) noexcept;

    std::unique_ptr<std::uint32_t[]> entries_;
    std::size_t room_ = 0;
  };

  // An element is a run of leaves, `first` to before `last`. One that is not there is an empty run.
  struct Leaves {
    std::uint32_t first = 0, last = 0;
    bool exist() const { return first != last; }
    int size() const { return static_cast<int>(last - first); }
  };
  Leaves leaves(int attribute, int value, int subvalue) const;
  std::size_t begin(Leaves run) const { return index_.leaf_starts()[run.first]; }
  std::size_t end(Leaves run) const { return index_.leaf_starts()[run.last] - 1; }
  bool empty(Leaves run) const { return !run.exist() || begin(run) == end(run); }
  // Elements in the structure, where an empty attribute holds one empty value.
  int attributes() const { return static_cast<int>(index_.attributes); }
  int values(int attribute) const;
  int subvalues(int attribute, int value) const { return leaves(attribute, value, kWhole).size(); }

  void replace(int attribute, int value, int subvalue, std::string_view clean);
  void insert_value(int attribute, int value, std::string_view clean);
  // Before `next`, or at the end of `parent` when there is no next.
  void insert_before(int attribute, Leaves next, Leaves parent, char mark, std::string_view clean);
  // Replaces the bytes `begin` to before `end`, which lie in or behind the attribute.
  void splice(int attribute, std::size_t begin, std::size_t end, std::string_view bytes);
  // What of the index belongs to attributes that are looked at anew.
  struct Changed;
  Changed changed(int attribute, std::size_t end) const;
  void index_all();
  void index_again(const Changed& changed, std::size_t bytes_before);

  std::string bytes_;
  Index index_;
};

inline DbRecord::Leaves DbRecord::leaves(int attribute, int value, int subvalue) const {
  if (attribute < 1 || static_cast<std::uint32_t>(attribute) > index_.attributes) return {};
  const std::uint32_t* const at_value = index_.attribute_values() + (attribute - 1);
  const std::uint32_t* const value_leaves = index_.value_leaves();
  if (value == kWhole) return {value_leaves[at_value[0]], value_leaves[at_value[1]]};
  if (value < 1 || static_cast<std::uint32_t>(value) > at_value[1] - at_value[0]) return {};
  const std::uint32_t* const at_leaf = value_leaves + at_value[0] + (value - 1);
  if (subvalue == kWhole) return {at_leaf[0], at_leaf[1]};
  if (subvalue < 1 || static_cast<std::uint32_t>(subvalue) > at_leaf[1] - at_leaf[0]) return {};
  const std::uint32_t leaf = at_leaf[0] + static_cast<std::uint32_t>(subvalue) - 1;
  return {leaf, leaf + 1};
}

inline std::string_view DbRecord::operator()(int attribute, int value, int subvalue) const {
  const Leaves found = leaves(attribute, value, subvalue);
  if (!found.exist()) return {};
  return {bytes_.data() + begin(found), end(found) - begin(found)};
}

inline int DbRecord::values(int attribute) const {
  if (attribute < 1 || attribute > attributes()) return 0;
  const std::uint32_t* const at_value = index_.attribute_values() + (attribute - 1);
  return static_cast<int>(at_value[1] - at_value[0]);
}

inline int DbRecord::Count(int attribute, int value) const {
  const Leaves found = leaves(attribute, value, kWhole);
  if (empty(found)) return 0;
  return value == kWhole ? values(attribute) : found.size();
}

// Text as it may enter a record: every mark byte, NUL and byte that is not part of valid UTF-8
// becomes U+FFFD. Valid text comes back as it is.
std::string clean_text(std::string_view text);

}  // namespace velanor::store
