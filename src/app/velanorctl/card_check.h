// Whether stored cards are such as the screen would save them, and use only codes that exist.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "store/database.h"

namespace velanor::app {

// Reads the reference files once, then judges cards one by one. What it says of a card holds for
// the reference files as they were when it was made.
class CardCheck {
 public:
  explicit CardCheck(store::Database& database);

  // What is wrong with the reference files themselves, so that no card could be right.
  const std::vector<std::string>& faults_of_references() const { return faults_; }
  // Every fault of a card, as sentences; the rules of saving in the words of the screen.
  std::vector<std::string> faults_of(std::string_view id, const store::DbRecord& card) const;

  struct References;
  ~CardCheck();

 private:
  std::unique_ptr<References> references_;
  std::vector<std::string> faults_;
};

}  // namespace velanor::app
