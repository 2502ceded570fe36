// Tells the host what has become of the cards, once the act that did it is over.
#pragma once

#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <vector>

#include "card/commands/card_event.h"
#include "velanor/host.h"

namespace velanor::control {

// What `state_changed` speaks of.
struct Standing {
  State state = State::kNone;
  Card card = {};
  bool modified = false;
  friend bool operator==(const Standing& a, const Standing& b) {
    return a.state == b.state && a.card.id == b.card.id && a.card.title == b.card.title &&
           a.modified == b.modified;
  }
};

// Outlives the component where a listener destroys it.
class Announcer : public std::enable_shared_from_this<Announcer> {
 public:
  explicit Announcer(std::function<Standing()> standing) : standing_(std::move(standing)) {}

  void listen(CardListener& listener) { listeners_.push_back(&listener); }
  void ignore(CardListener& listener);
  // During an act.
  void note(const commands::CardEvent& event) { events_.push_back(event); }
  // Throws what the first listener threw that did, when all have heard.
  void act_over();
  // The component goes: nothing is told any more.
  void stop();

 private:
  bool has_news();
  void tell_next();
  void tell_standing();
  void tell(const std::function<void(CardListener&)>& news);

  std::function<Standing()> standing_;  // empty when it is of no use any more
  std::vector<CardListener*> listeners_;
  std::deque<commands::CardEvent> events_;
  Standing told_;
  std::exception_ptr failure_;
  bool telling_ = false;
  bool acted_ = false;  // what the listeners have yet to hear
};

}  // namespace velanor::control
