// What other clerks write while a card is open or chosen.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "card/commands/card_event.h"
#include "card/screen/card_screen.h"
#include "card/screen/card_state.h"
#include "control/session/procedure.h"
#include "reference/lists.h"
#include "velanor/news.h"

namespace velanor::control {

class OtherClerks {
 public:
  // Keeps the references; their owners outlive this. `title`: of the card that is open.
  struct Ground {
    const card::CardScreen& ui;
    const card::CardState& card;
    const Procedure& procedure;
    reference::ReferenceLists& lists;
    std::function<std::string()> title;
    commands::TellCardEvent tell;
  };
  explicit OtherClerks(Ground ground) : on_(std::move(ground)) {}

  // -1 where the database does not hear of others.
  int descriptor() const { return news_ ? news_->descriptor() : -1; }
  void start() { news_ = on_.procedure.database().news(); }
  void stop() { news_.reset(); }
  // What has come since the last time and bears upon the screen. Throws the store's error, and then comes
  // back to it the next time.
  void follow();
  // Another card is in hand, or the same one anew.
  void begin_card() { told_.reset(); }

 private:
  bool touches_list(const store::Change& change) const;
  bool touches_card(const store::Change& change) const;
  void look_at_card(const store::Change& change);

  Ground on_;
  std::unique_ptr<store::News> news_;
  std::vector<store::Change> waiting_;
  // What of the open card was told last, once there was anything; within, nothing: deleted.
  std::optional<std::optional<store::DbRecord>> told_;
};

}  // namespace velanor::control
