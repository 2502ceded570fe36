#include "velanor/record.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "store/clean.h"
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

std::size_t count_marks(std::string_view bytes) { return MarkScanner(bytes, 0, kSubvalueMark).count(); }

// As a list grows by itself, so that many small changes stay cheap.
void make_room(std::vector<std::uint32_t>& list, std::size_t size) {
  if (size > list.capacity()) list.reserve(std::max(size, 2 * list.capacity()));
}

std::string run_of(char mark, int count) {
  return std::string(static_cast<std::size_t>(std::max(count, 0)), mark);
}

}  // namespace

DbRecord DbRecord::from_encoded(std::string_view encoded) { return from_trusted(clean_encoded(encoded)); }

DbRecord DbRecord::from_trusted(std::string encoded) {
  if (encoded.size() > kMaxBytes) throw std::length_error("record too long");
  DbRecord record;
  record.bytes_ = std::move(encoded);
  record.index_from(1);
  return record;
}

DbRecord::Leaves DbRecord::leaves(int attribute, int value, int subvalue) const {
  if (attribute < 1 || attribute > attributes()) return {};
  const std::uint32_t* at_value = &attribute_values_[static_cast<std::size_t>(attribute) - 1];
  if (value == kWhole) return {value_leaves_[at_value[0]], value_leaves_[at_value[1]]};
  if (value < 1 || static_cast<std::uint32_t>(value) > at_value[1] - at_value[0]) return {};
  const std::uint32_t* at_leaf = &value_leaves_[at_value[0] + static_cast<std::uint32_t>(value) - 1];
  if (subvalue == kWhole) return {at_leaf[0], at_leaf[1]};
  if (subvalue < 1 || static_cast<std::uint32_t>(subvalue) > at_leaf[1] - at_leaf[0]) return {};
  const std::uint32_t leaf = at_leaf[0] + static_cast<std::uint32_t>(subvalue) - 1;
  return {leaf, leaf + 1};
}

std::string_view DbRecord::operator()(int attribute, int value, int subvalue) const {
  const Leaves found = leaves(attribute, value, subvalue);
  if (!found.exist()) return {};
  return std::string_view(bytes_).substr(begin(found), end(found) - begin(found));
}

int DbRecord::attributes() const {
  return attribute_values_.empty() ? 0 : static_cast<int>(attribute_values_.size() - 1);
}

int DbRecord::values(int attribute) const {
  if (attribute < 1 || attribute > attributes()) return 0;
  const auto at = static_cast<std::size_t>(attribute);
  return static_cast<int>(attribute_values_[at] - attribute_values_[at - 1]);
}

int DbRecord::subvalues(int attribute, int value) const {
  const Leaves found = leaves(attribute, value, kWhole);
  return static_cast<int>(found.last - found.first);
}

int DbRecord::DCount() const { return attributes(); }

int DbRecord::Count(int attribute, int value) const {
  if ((*this)(attribute, value).empty()) return 0;
  return value == kWhole ? values(attribute) : subvalues(attribute, value);
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
                                           : Leaves{0, static_cast<std::uint32_t>(leaf_starts_.size() - 1)};
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

// Nothing has changed where there is no memory for it.
void DbRecord::splice(int attribute, std::size_t begin, std::size_t end, std::string_view bytes) {
  const std::size_t size = bytes_.size() - (end - begin) + bytes.size();
  if (size > kMaxBytes) throw std::length_error("record too long");
  bytes_.reserve(size);
  const std::size_t marks = leaf_starts_.size() + count_marks(bytes) + 2;
  for (std::vector<std::uint32_t>* list : {&leaf_starts_, &value_leaves_, &attribute_values_})
    make_room(*list, list->size() + marks);
  bytes_.replace(begin, end - begin, bytes);
  index_from(attribute);
}

void DbRecord::index_from(int attribute) {
  if (bytes_.empty()) {
    leaf_starts_.clear();
    value_leaves_.clear();
    attribute_values_.clear();
    return;
  }
  // What is kept of each list; a new attribute is found by looking at the last one again.
  const auto kept = static_cast<std::size_t>(std::max(std::min(attribute, attributes()) - 1, 0));
  std::size_t value = kept == 0 ? 0 : attribute_values_[kept];
  std::size_t leaf = kept == 0 ? 0 : value_leaves_[value];
  const std::size_t from = kept == 0 ? 0 : leaf_starts_[leaf];
  const std::size_t marks = MarkScanner(bytes_, from, kSubvalueMark).count();
  leaf_starts_.resize(leaf + marks + 2);
  value_leaves_.resize(value + marks + 2);
  attribute_values_.resize(kept + marks + 2);
  std::size_t at_attribute = kept;
  // Written without branches: the next entry is written at every mark and stays where the mark
  // opens an element of that level.
  leaf_starts_[leaf] = static_cast<std::uint32_t>(from);
  value_leaves_[value] = static_cast<std::uint32_t>(leaf);
  attribute_values_[at_attribute] = static_cast<std::uint32_t>(value);
  MarkScanner scanner(bytes_, from, kSubvalueMark);
  for (std::size_t at = scanner.next(); at != MarkScanner::kEnd; at = scanner.next()) {
    const char mark = bytes_[at];
    leaf_starts_[++leaf] = static_cast<std::uint32_t>(at + 1);
    value_leaves_[value + 1] = static_cast<std::uint32_t>(leaf);
    value += mark != kSubvalueMark;
    attribute_values_[at_attribute + 1] = static_cast<std::uint32_t>(value);
    at_attribute += mark == kAttributeMark;
  }
  leaf_starts_[++leaf] = static_cast<std::uint32_t>(bytes_.size() + 1);
  value_leaves_[++value] = static_cast<std::uint32_t>(leaf);
  attribute_values_[++at_attribute] = static_cast<std::uint32_t>(value);
  leaf_starts_.resize(leaf + 1);
  value_leaves_.resize(value + 1);
  attribute_values_.resize(at_attribute + 1);
}

}  // namespace velanor::store
