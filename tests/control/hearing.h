// Notes what a component tells, a line an event.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "velanor/controle_velanor.h"

namespace velanor::test {

inline const char* name_of(control::State state) {
  static const char* const kNames[] = {"none", "creating", "editing", "reading"};
  return kNames[static_cast<int>(state)];
}

// "editing 000100012026 00010 MARTIN JEANNE *", without what is empty; the star where it is modified.
inline std::string standing(const ControleVelanor& component) {
  std::string text = name_of(component.state());
  for (const std::string& part : {component.card_id(), component.card_title()})
    text += part.empty() ? "" : " " + part;
  return text + (component.modified() ? " *" : "");
}

class Hearing : public control::CardListener {
 public:
  explicit Hearing(ControleVelanor& component) : component_(component) { component.listen(*this); }

  void card_opened(const control::Card& card) override { note("opened " + card.id + " " + card.title); }
  void card_saved(const control::Card& card) override { note("saved " + card.id + " " + card.title); }
  void card_deleted(const control::Card& card) override { note("deleted " + card.id + " " + card.title); }
  void card_copied(const control::Card& card, const std::string& copy) override {
    note("copied " + card.id + " " + card.title + " to " + copy);
  }
  void card_closed(const control::Card& card) override { note("closed " + card.id + " " + card.title); }
  void card_saved_elsewhere(const control::Card& card, const std::string& author) override {
    note("saved elsewhere " + card.id + " " + card.title + " by " + author);
  }
  void card_deleted_elsewhere(const control::Card& card, const std::string& author) override {
    note("deleted elsewhere " + card.id + " " + card.title + " by " + author);
  }
  void state_changed() override { note("now " + standing(component_)); }

  // What was told since this was asked before.
  std::vector<std::string> take() { return std::exchange(told_, {}); }

  // Runs after each event is noted.
  std::function<void(const std::string& event)> then;

 private:
  void note(const std::string& event) {
    told_.push_back(event);
    if (then) then(event);
  }

  ControleVelanor& component_;
  std::vector<std::string> told_;
};

}  // namespace velanor::test
