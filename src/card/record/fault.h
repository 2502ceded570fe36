// What is wrong with a card, of which many cards may have one of the same kind.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "card/record/record_layout.h"

namespace velanor::card {

class Fault {
 public:
  // "…" in the pattern stands for what differs from one fault of the kind to the next.
  explicit Fault(std::string pattern, std::string value = {})
      : pattern_(std::move(pattern)), value_(std::move(value)) {}

  const std::string& kind() const { return pattern_; }
  std::string sentence() const {
    static constexpr std::string_view kPlace = "…";
    std::string text = pattern_;
    if (const auto at = text.find(kPlace); at != text.npos) text.replace(at, kPlace.size(), value_);
    return text;
  }

  // What it is about; a field without a number: nothing on its own.
  Field field = {};
  // Which value of it, from 1: the line of a list; 0: none in particular.
  int line = 0;
  // A value that is emptied, for a right one to be entered.
  bool is_a_wrong_value = false;

 private:
  std::string pattern_, value_;
};

inline Fault about(const Field& field, Fault fault, int line = 0) {
  fault.field = field;
  fault.line = line;
  return fault;
}

}  // namespace velanor::card
