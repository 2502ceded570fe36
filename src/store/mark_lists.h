// Where the elements of an encoded record begin.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace velanor::store {

// Three lists that are filled side by side: where each leaf starts in the bytes, with which leaf each value
// starts, with which value each attribute starts. Numbers count from 0.
struct MarkLists {
  std::uint32_t* leaf_starts;
  std::uint32_t* value_leaves;
  std::uint32_t* attribute_values;
};

// Elements of each level.
struct Reached {
  std::uint32_t leaf = 0, value = 0, attribute = 0;
};

// Lists the elements of the bytes from `from` on, behind so many of each level, and closes each list by one
// entry more: where a next leaf, value and attribute would start. No list is written behind that entry.
// The bytes before `from` are not read, those behind the end neither.
Reached list_elements(std::string_view bytes, std::size_t from, Reached behind, const MarkLists& lists);
// The same on any processor.
Reached list_elements_one_by_one(std::string_view bytes, std::size_t from, Reached behind,
                                 const MarkLists& lists);

}  // namespace velanor::store
