#include "velanor/record.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "store/clean.h"
#include "store/mark_lists.h"
#include "store/mark_scanner.h"

namespace velanor::store {
namespace {

// Offsets are 32 bits and counts are ints.
constexpr std::size_t kMaxBytes = std::numeric_limits<std::int32_t>::max() - 1;

void check_number(int number) {
  if (number < 1 || number > kMaxNumber) {
    throw std::out_of_range("element number " + std::to_string(number) + " cannot be written");
  }
}

constexpr int kPastEnd = std::numeric_limits<int>::max();

// The place of an insertion; past the end is a place too, however far.
int place(int number) {
  if (number == kAppend) return kPastEnd;
  if (number < 1) check_number(number);
  return number;
}

template <class Index>
MarkLists lists(const Index& index) {
  return {index.leaf_starts(), index.value_leaves(), index.attribute_values()};
}

std::string run_of(char mark, int count) {
  return std::string(static_cast<std::size_t>(std::max(count, 0)), mark);
}

}  // namespace

DbRecord::Index::Index(const Index& other) {
  if (other.leaves == 0) return;
  make_room(other.leaves);
  copy(other);
}

void DbRecord::Index::swap(Index& other) noexcept {
  std::swap(leaves, other.leaves);
  std::swap(values, other.values);
  std::swap(attributes, other.attributes);
  std::swap(entries_, other.entries_);
  std::swap(room_, other.room_);
}

void DbRecord::Index::make_room(std::size_t wanted) {
  // An entry more closes each list, and one is written before it is known to be needed.
  if (wanted + 2 <= room_) return;
  Index larger;
  larger.room_ = std::max(wanted + 2, 2 * room_);
  larger.entries_ = std::make_unique_for_overwrite<std::uint32_t[]>(3 * larger.room_);
  if (leaves > 0) larger.copy(*this);
  swap(larger);
}

void DbRecord::Index::copy(const Index& other) {
  leaves = other.leaves;
  values = other.values;
  attributes = other.attributes;
  if (leaves == 0) return;
  std::copy_n(other.leaf_starts(), leaves + 1, leaf_starts());
  std::copy_n(other.value_leaves(), values + 1, value_leaves());
  std::copy_n(other.attribute_values(), attributes + 1, attribute_values());
}

DbRecord& DbRecord::operator=(const DbRecord& other) {
  if (this == &other) return *this;
  bytes_.reserve(other.bytes_.size());
  if (other.index_.leaves > 0) index_.make_room(other.index_.leaves);
  bytes_ = other.bytes_;
  index_.copy(other.index_);
  return *this;
}

DbRecord DbRecord::from_encoded(std::string_view encoded) { return from_trusted(clean_encoded(encoded)); }

DbRecord DbRecord::from_trusted(std::string encoded) {
  if (encoded.size() > kMaxBytes) throw std::length_error("record too long");
  DbRecord record;
  record.index_.make_room(count_marks(encoded) + 1);
  record.bytes_ = std::move(encoded);
  record.index_all();
  return record;
}

void DbRecord::assign_encoded(std::string_view encoded) {
  if (is_clean_encoded(encoded)) return assign_trusted(encoded);
  assign_trusted(clean_encoded(encoded));
}

void DbRecord::assign_trusted(std::string_view encoded) {
  if (encoded.size() > kMaxBytes) throw std::length_error("record too long");
  index_.make_room(count_marks(encoded) + 1);
  bytes_ = encoded;
  index_all();
}

void DbRecord::set(int attribute, std::string_view text) {
  check_number(attribute);
  replace(attribute, kWhole, kWhole, clean_text(text));
}

void DbRecord::set(int attribute, int value, std::string_view text) {
  if (value == kAppend) return Insert(attribute, kAppend, text);
  check_number(attribute);
  check_number(value);
  replace(attribute, value, kWhole, clean_text(text));
}

void DbRecord::set(int attribute, int value, int subvalue, std::string_view text) {
  if (subvalue == kAppend) return Insert(attribute, value, kAppend, text);
  check_number(attribute);
  check_number(subvalue);
  if (value == kAppend) {
    return insert_value(attribute, kPastEnd, run_of(kSubvalueMark, subvalue - 1) + clean_text(text));
  }
  check_number(value);
  replace(attribute, value, subvalue, clean_text(text));
}

void DbRecord::copy_attribute(int attribute, const DbRecord& from, int from_attribute) {
  check_number(attribute);
  replace(attribute, kWhole, kWhole, std::string(from(from_attribute)));
}

void DbRecord::Insert(int attribute, int value, std::string_view text) {
  check_number(attribute);
  insert_value(attribute, place(value), clean_text(text));
}

void DbRecord::Insert(int attribute, int value, int subvalue, std::string_view text) {
  check_number(attribute);
  subvalue = place(subvalue);
  if (value == kAppend) return insert_value(attribute, kPastEnd, clean_text(text));
  check_number(value);
  const Leaves parent = leaves(attribute, value, kWhole);
  if (empty(parent)) return replace(attribute, value, 1, clean_text(text));
  insert_before(attribute, leaves(attribute, value, subvalue), parent, kSubvalueMark, clean_text(text));
}

void DbRecord::Delete(int attribute, int value, int subvalue) {
  const Leaves found = leaves(attribute, value, subvalue);
  if (!found.exist()) return;
  if (value == kWhole) subvalue = kWhole;
  const Leaves parent = subvalue != kWhole ? leaves(attribute, value, kWhole)
                        : value != kWhole  ? leaves(attribute, kWhole, kWhole)
                                           : Leaves{0, index_.leaves};
  // One of the two marks beside the element goes with it.
  const bool mark_before = found.first != parent.first;
  const bool mark_behind = !mark_before && found.last != parent.last;
  const int changed_from = value == kWhole ? attribute - 1 : attribute;
  splice(changed_from, begin(found) - (mark_before ? 1 : 0), end(found) + (mark_behind ? 1 : 0), {});
}

void DbRecord::replace(int attribute, int value, int subvalue, std::string_view clean) {
  const Leaves found = leaves(attribute, value, subvalue);
  if (found.exist()) return splice(attribute, begin(found), end(found), clean);
  // What is missing starts at the end of the last element that is there.
  std::string bytes;
  std::size_t at = bytes_.size();
  if (attribute > attributes()) {
    bytes = run_of(kAttributeMark, attribute - std::max(attributes(), 1)) + run_of(kValueMark, value - 1) +
            run_of(kSubvalueMark, subvalue - 1);
  } else if (value > values(attribute)) {
    at = end(leaves(attribute, kWhole, kWhole));
    bytes = run_of(kValueMark, value - values(attribute)) + run_of(kSubvalueMark, subvalue - 1);
  } else {
    at = end(leaves(attribute, value, kWhole));
    bytes = run_of(kSubvalueMark, subvalue - subvalues(attribute, value));
  }
  splice(attribute, at, at, bytes.append(clean));
}

void DbRecord::insert_value(int attribute, int value, std::string_view clean) {
  const Leaves parent = leaves(attribute, kWhole, kWhole);
  if (empty(parent)) return replace(attribute, kWhole, kWhole, clean);
  insert_before(attribute, leaves(attribute, value, kWhole), parent, kValueMark, clean);
}

void DbRecord::insert_before(int attribute, Leaves next, Leaves parent, char mark, std::string_view clean) {
  std::string bytes(clean);
  if (next.exist()) return splice(attribute, begin(next), begin(next), bytes += mark);
  splice(attribute, end(parent), end(parent), bytes.insert(0, 1, mark));
}

// Attributes between what is kept before them and what is kept behind them, with where the first begins and
// where the last ends.
struct DbRecord::Changed {
  Reached first, last;
  std::size_t begin = 0, end = 0;
};

DbRecord::Changed DbRecord::changed(int attribute, std::size_t end) const {
  const std::uint32_t* const values = index_.attribute_values();
  const std::uint32_t* const leaves = index_.value_leaves();
  const std::uint32_t* const starts = index_.leaf_starts();
  const auto reached = [&](int attributes_before) {
    const std::uint32_t value = values[attributes_before];
    return Reached{leaves[value], value, static_cast<std::uint32_t>(attributes_before)};
  };
  Changed changed;
  // A new attribute is found by looking at the last one again.
  int last = std::max(std::min(attribute, attributes()), 1);
  changed.first = reached(last - 1);
  while (last < attributes() && starts[reached(last).leaf] - std::size_t{1} < end) ++last;
  changed.last = reached(last);
  changed.begin = starts[changed.first.leaf];
  changed.end = starts[changed.last.leaf] - std::size_t{1};
  return changed;
}

// Nothing has changed where there is no memory for it.
void DbRecord::splice(int attribute, std::size_t begin, std::size_t end, std::string_view bytes) {
  const std::size_t before = bytes_.size(), size = before - (end - begin) + bytes.size();
  if (size > kMaxBytes) throw std::length_error("record too long");
  bytes_.reserve(size);
  index_.make_room(index_.leaves + count_marks(bytes) + 1);
  if (before == 0 || size == 0) {
    bytes_.replace(begin, end - begin, bytes);
    return index_all();
  }
  const Changed region = changed(attribute, end);
  bytes_.replace(begin, end - begin, bytes);
  index_again(region, before);
}

void DbRecord::index_all() {
  index_.clear();
  if (bytes_.empty()) return;
  const Reached all = list_elements(bytes_, 0, {}, lists(index_));
  index_.leaves = all.leaf;
  index_.values = all.value;
  index_.attributes = all.attribute;
}

void DbRecord::index_again(const Changed& region, std::size_t bytes_before) {
  // Unsigned, they go down as well as up.
  const auto moved = static_cast<std::uint32_t>(bytes_.size() - bytes_before);
  const std::size_t end = region.end + (bytes_.size() - bytes_before);
  const MarkCounts marks = count_each_mark(std::string_view(bytes_).substr(region.begin, end - region.begin));
  const Reached behind{region.first.leaf + marks.all + 1, region.first.value + marks.values + 1,
                       region.first.attribute + marks.attributes + 1};
  const auto shift = [](std::uint32_t* list, std::uint32_t from, std::uint32_t to, std::uint32_t last,
                        std::uint32_t difference) {
    const std::uint32_t count = last + 1 - from;
    if (from != to) std::memmove(list + to, list + from, count * sizeof *list);
    if (difference == 0) return;
    for (std::uint32_t i = 0; i < count; ++i) list[to + i] += difference;
  };
  shift(index_.leaf_starts(), region.last.leaf, behind.leaf, index_.leaves, moved);
  shift(index_.value_leaves(), region.last.value, behind.value, index_.values,
        behind.leaf - region.last.leaf);
  shift(index_.attribute_values(), region.last.attribute, behind.attribute, index_.attributes,
        behind.value - region.last.value);
  index_.leaves += behind.leaf - region.last.leaf;
  index_.values += behind.value - region.last.value;
  index_.attributes += behind.attribute - region.last.attribute;
  list_elements(std::string_view(bytes_.data(), end), region.begin, region.first, lists(index_));
}

}  // namespace velanor::store
