// What becomes of a card, as it comes to be.
#pragma once

#include <functional>
#include <string>

namespace velanor::commands {

struct CardEvent {
  enum class Kind { kOpened, kSaved, kDeleted, kCopied, kClosed, kSavedElsewhere, kDeletedElsewhere } kind;
  std::string id;           // of its record; "" while it is not stored
  std::string title;        // code and name of the employee
  std::string copy;         // id of the duplicate
  std::string author = {};  // who saved or deleted it elsewhere
};

using TellCardEvent = std::function<void(const CardEvent&)>;

}  // namespace velanor::commands
