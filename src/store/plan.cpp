#include "store/plan.h"

#include <algorithm>

namespace velanor::store {
namespace {

using select::Criterion;
using select::Test;

Narrowing narrowing_of_test(const Test& test) {
  if (test.negated) return {};
  switch (test.kind) {
    case Test::Kind::kIs:
      return {Narrowing::Kind::kId, test.text};
    case Test::Kind::kBeginsWith:
      return {Narrowing::Kind::kIdPrefix, test.text};
    case Test::Kind::kEndsWith:
      return {Narrowing::Kind::kIdSuffix, test.text};
    default:
      return {};
  }
}

// One id is the best to know, then the longest part of it.
bool is_better(const Narrowing& a, const Narrowing& b) {
  const auto rank = [](const Narrowing& n) { return n.kind == Narrowing::Kind::kId; };
  return rank(a) != rank(b) ? rank(a) : a.text.size() > b.text.size();
}

bool reads_record(const select::Designator& designator) { return designator.attribute != 0; }

}  // namespace

Narrowing narrowing_of(const select::Statement& statement) {
  Narrowing best;
  // With alternatives no single condition is necessary.
  if (statement.criteria.size() != 1) return best;
  for (const Criterion& criterion : statement.criteria.front()) {
    const bool on_id = !reads_record(criterion.designator) && criterion.designator.is_whole();
    if (!on_id || criterion.tests.size() != 1) continue;
    for (const Test& test : criterion.tests.front()) {
      const Narrowing narrowing = narrowing_of_test(test);
      if (narrowing.kind == Narrowing::Kind::kNone) continue;
      if (best.kind == Narrowing::Kind::kNone || is_better(narrowing, best)) best = narrowing;
    }
  }
  return best;
}

Content content_needed(const select::Statement& statement, const std::vector<int>& attributes) {
  bool records = std::any_of(attributes.begin(), attributes.end(), [](int number) { return number != 0; });
  for (const auto& key : statement.sort_keys) records |= reads_record(key.designator);
  for (const auto& alternative : statement.criteria) {
    for (const Criterion& criterion : alternative) records |= reads_record(criterion.designator);
  }
  return records ? Content::kRecords : Content::kIdsOnly;
}

}  // namespace velanor::store
