// The faults of many cards, by kind.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "card/record/fault.h"

namespace velanor::office {

class FaultList {
 public:
  struct Kind {
    std::string sentence;
    // Cards that have such a fault, and a line a fault: "ID : sentence".
    int cards = 0;
    std::vector<std::string> lines;
  };

  void add(std::string_view id, const std::vector<card::Fault>& faults);

  // Views into this.
  std::vector<const Kind*> most_frequent_first() const;
  int cards() const { return cards_; }
  int faults() const { return faults_; }

 private:
  std::map<std::string, Kind> kinds_;
  int cards_ = 0, faults_ = 0;
};

}  // namespace velanor::office
