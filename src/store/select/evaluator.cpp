#include "store/select/evaluator.h"

#include <algorithm>

#include "store/mark_scanner.h"
#include "store/utf8.h"
#include "text/number.h"

namespace velanor::store::select {
namespace {

std::string_view without_zeros(std::string_view digits) {
  return digits.substr(std::min(digits.find_first_not_of('0'), digits.size()));
}

// Two whole numbers of any length by their value, anything else by its bytes.
bool is_below(std::string_view value, std::string_view bound) {
  if (!text::is_digits(value) || !text::is_digits(bound)) return value < bound;
  value = without_zeros(value);
  bound = without_zeros(bound);
  return value.size() != bound.size() ? value.size() < bound.size() : value < bound;
}

bool finds(const Test& test, std::string_view value) {
  switch (test.kind) {
    case Test::Kind::kIs:
      return value == test.text;
    case Test::Kind::kBeginsWith:
      return value.starts_with(test.text);
    case Test::Kind::kEndsWith:
      return value.ends_with(test.text);
    case Test::Kind::kContains:
      return value.find(test.text) != std::string_view::npos;
    case Test::Kind::kAtLeast:
      return !is_below(value, test.text);
    case Test::Kind::kBelow:
      return is_below(value, test.text);
  }
  return false;
}

// Worth a look before the scanner is set up, where it is quickly told.
bool is_one_value(std::string_view text) {
  constexpr std::size_t kShort = 24;
  return text.size() <= kShort && std::none_of(text.begin(), text.end(), [](char byte) {
           return static_cast<unsigned char>(byte) >= static_cast<unsigned char>(kSubvalueMark);
         });
}

bool holds(const Test& test, std::string_view text) {
  if (is_one_value(text)) return finds(test, text) != test.negated;
  MarkScanner marks(text, 0, kSubvalueMark);
  for (std::size_t begin = 0;;) {
    const std::size_t end = std::min(marks.next(), text.size());
    if (finds(test, text.substr(begin, end - begin)) != test.negated) return true;
    if (end == text.size()) return false;
    begin = end + 1;
  }
}

// Whether any alternative has only members that hold.
template <class T, class Holds>
bool any_of_all(const AnyOf<AllOf<T>>& alternatives, Holds member_holds) {
  return std::any_of(alternatives.begin(), alternatives.end(), [&](const AllOf<T>& members) {
    return std::all_of(members.begin(), members.end(), member_holds);
  });
}

}  // namespace

std::string_view text_of(const Designator& designator, const Row& row) {
  const std::string_view text =
      designator.attribute == 0 ? row.id : attribute_text(row.encoded, designator.attribute);
  return designator.is_whole() ? text : utf8::slice(text, designator.first, designator.count);
}

namespace {

bool holds(const Criterion& criterion, const Row& row) {
  const std::string_view text = text_of(criterion.designator, row);
  return any_of_all(criterion.tests, [&](const Test& test) { return holds(test, text); });
}

}  // namespace

bool matches(const Statement& statement, const Row& row) {
  if (statement.criteria.empty()) return true;
  return any_of_all(statement.criteria, [&](const Criterion& criterion) { return holds(criterion, row); });
}

bool may_match(const Statement& statement, std::string_view id) {
  if (statement.criteria.empty()) return true;
  return any_of_all(statement.criteria, [&](const Criterion& criterion) {
    return criterion.designator.attribute != 0 || holds(criterion, {id, {}});
  });
}

}  // namespace velanor::store::select
