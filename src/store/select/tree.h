// What a selection statement says, once parsed. There is no nesting: a statement is an "any of"
// of "all of" lists at both levels, so no statement can be too deep.
#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

namespace velanor::store::select {

inline constexpr std::size_t kToTheEnd = std::numeric_limits<std::size_t>::max();

// What a criterion looks at and a sort key orders by: an attribute (0 is the id), or some
// characters of it.
struct Designator {
  int attribute = 0;
  std::size_t first = 1;
  std::size_t count = kToTheEnd;

  bool is_whole() const { return first == 1 && count == kToTheEnd; }
  friend bool operator==(const Designator&, const Designator&) = default;
};

// One operator and its value.
struct Test {
  enum class Kind { kIs, kBeginsWith, kEndsWith, kContains, kAtLeast, kBelow };
  Kind kind = Kind::kIs;
  // The operators "#" and "<>": what the kind does not find.
  bool negated = false;
  std::string text;
};

template <class T>
using AllOf = std::vector<T>;
template <class T>
using AnyOf = std::vector<T>;

// "AVEC", a designator and the tests that follow it without another "AVEC".
struct Criterion {
  Designator designator;
  AnyOf<AllOf<Test>> tests;
};

enum class Direction { kAscending, kDescending };

struct SortKey {
  Designator designator;
  Direction direction = Direction::kAscending;
};

struct Statement {
  std::string file;
  // Empty: every record.
  AnyOf<AllOf<Criterion>> criteria;
  std::vector<SortKey> sort_keys;
};

}  // namespace velanor::store::select
