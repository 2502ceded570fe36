// The plainest reading of a statement, to hold the engine against, and random statements and records.
#pragma once

#include <algorithm>
#include <initializer_list>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "store/select/collation.h"
#include "velanor/query.h"
#include "velanor/record.h"

namespace velanor::store::plain {

struct PlainTest {
  std::string op, value;
  bool ends = false, begins = false;  // the values that are looked for end or begin with it
};
struct PlainCriterion {
  int attribute;
  std::vector<std::vector<PlainTest>> any;
};
struct PlainStatement {
  std::vector<std::vector<PlainCriterion>> any;
  std::vector<std::pair<int, bool>> keys;
};
using Card = std::pair<std::string, DbRecord>;

inline std::vector<std::string> values(const Card& card, int attribute) {
  if (attribute == 0) return {card.first};
  std::vector<std::string> found;
  for (int v = 1; v <= card.second.Count(attribute); ++v) {
    for (int s = 1; s <= std::max(card.second.Count(attribute, v), 1); ++s) {
      found.emplace_back(card.second(attribute, v, s));
    }
  }
  if (found.empty()) found.emplace_back();
  return found;
}

inline bool equal(const std::string& value, const PlainTest& test) {
  if (test.ends && test.begins) return value.find(test.value) != std::string::npos;
  return test.ends     ? value.ends_with(test.value)
         : test.begins ? value.starts_with(test.value)
                       : value == test.value;
}

inline bool below(const std::string& value, const PlainTest& test) {
  // Of a bound only the opening bracket is a sign.
  const std::string bound = test.value + (test.begins ? "]" : "");
  const auto number = [](const std::string& s) {
    return !s.empty() && s.find_first_not_of("0123456789") == std::string::npos;
  };
  return number(value) && number(bound) ? std::stoull(value) < std::stoull(bound) : value < bound;
}

inline bool holds(const PlainTest& test, const std::string& value) {
  if (test.op == "=") return equal(value, test);
  if (test.op == "<") return below(value, test);
  return test.op == ">=" ? !below(value, test) : !equal(value, test);
}

inline bool matches(const PlainStatement& statement, const Card& card) {
  if (statement.any.empty()) return true;
  for (const auto& all : statement.any) {
    bool every = true;
    for (const auto& criterion : all) {
      bool one = false;
      for (const auto& chain : criterion.any) {
        bool each = true;
        for (const auto& test : chain) {
          const auto known = values(card, criterion.attribute);
          each &=
              std::any_of(known.begin(), known.end(), [&](const auto& value) { return holds(test, value); });
        }
        one |= each;
      }
      every &= one;
    }
    if (every) return true;
  }
  return false;
}

inline std::string key(const Card& card, int attribute) {
  if (attribute == 0) return card.first;
  std::string result;
  select::Collator().append_key(card.second(attribute), result);
  return result;
}

inline std::vector<std::string> selected(const PlainStatement& statement, const std::vector<Card>& cards) {
  std::vector<const Card*> found;
  for (const Card& card : cards) {
    if (matches(statement, card)) found.push_back(&card);
  }
  std::sort(found.begin(), found.end(), [&](const Card* a, const Card* b) {
    for (const auto& [attribute, descending] : statement.keys) {
      const int order = key(*a, attribute).compare(key(*b, attribute));
      if (order != 0) return descending ? order > 0 : order < 0;
    }
    return a->first < b->first;
  });
  std::vector<std::string> ids;
  for (const Card* card : found) ids.push_back(card->first);
  return ids;
}

class Dice {
 public:
  explicit Dice(unsigned seed) : random_(seed) {}
  int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
  bool one_in(int n) { return below(n) == 0; }
  std::string one_of(std::initializer_list<const char*> texts) {
    return texts.begin()[below(static_cast<int>(texts.size()))];
  }

  std::string id() {
    return one_of({"0", "01", "0140", "01400", "9", "é"}) + one_of({"", "0", "7", "07", "072026"});
  }
  std::string text() {
    return one_of({"", "", "1", "2", "02", "10", "a", "A", "é", "e", "à b", "ab", "\"x", "[y]", "[", "]]a"});
  }
  DbRecord card() {
    DbRecord result;
    for (int i = below(7); i > 0; --i) result.set(below(3) + 1, below(3) + 1, below(2) + 1, text());
    return result;
  }
  PlainTest test(int attribute) {
    return {one_of({"=", "=", "=", "#", "<>", ">=", "<"}), attribute == 0 ? id() : text(), one_in(3),
            one_in(3)};
  }
  PlainStatement statement() {
    PlainStatement result;
    if (!one_in(8)) result.any.emplace_back();
    for (int i = below(4); i >= 0 && !result.any.empty(); --i) {
      PlainCriterion criterion{one_in(2) ? 0 : below(4), {{}}};
      criterion.any.back().push_back(test(criterion.attribute));
      for (int j = below(3); j > 0; --j) {
        if (one_in(3)) criterion.any.emplace_back();
        criterion.any.back().push_back(test(criterion.attribute));
      }
      result.any.back().push_back(std::move(criterion));
      if (i > 0 && one_in(4)) result.any.emplace_back();
    }
    for (int i = below(3); i > 0; --i) result.keys.emplace_back(below(4), one_in(2));
    return result;
  }

 private:
  std::mt19937 random_;
};

inline std::string written(const PlainStatement& statement) {
  std::string text = "SSELECT F";
  const char* between = " ";
  for (const auto& all : statement.any) {
    for (const auto& criterion : all) {
      text += between + ("AVEC " + std::to_string(criterion.attribute));
      for (const auto& chain : criterion.any) {
        if (&chain != &criterion.any.front()) text += " OR";
        for (const auto& test : chain) {
          if (&test != &chain.front()) text += " AND";
          text += " " + test.op + " \"" + (test.ends ? "[" : "") + store::escaped(test.value) +
                  (test.begins ? "]" : "") + "\"";
        }
      }
      between = " AND ";
    }
    between = " OR ";
  }
  for (const auto& [attribute, descending] : statement.keys) {
    text += (descending ? " PAR-DECR " : " PAR ") + std::to_string(attribute);
  }
  return text;
}

}  // namespace velanor::store::plain
