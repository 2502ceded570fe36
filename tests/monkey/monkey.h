// A user without a plan: random but possible acts, keys and answers on the whole component.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <random>

#include "monkey/invariants.h"
#include "monkey/watched_store.h"
#include "support/failing_database.h"

namespace velanor::test {

enum class Store { kPlain, kFailing };

struct Score {
  long saved = 0;     // cards
  long created = 0;   // new ones among them
  long added = 0;     // amendment lines
  long failures = 0;  // of the store, after which everything went on
  long ways_out = 0;  // proved after a failure
  long led = 0;       // to a card, from wherever it stood
  long steps = 0;     // taken back and done again
};

class Monkey {
 public:
  Monkey(store::MemoryDatabase& base, Store kind, std::uint64_t seed);

  // The first breach; empty when there was none.
  std::string act();
  void leave_out(const std::string& check) { invariants_.leave_out(check); }
  const Score& score() const { return score_; }
  // The last acts, one a line.
  const std::deque<std::string>& trail() const { return trail_; }

 private:
  int below(int n) { return static_cast<int>(random_() % static_cast<std::uint64_t>(n)); }
  bool once_in(int n) { return below(n) == 0; }
  template <typename T>
  const T& any(const std::vector<T>& of) {
    return of[static_cast<std::size_t>(below(static_cast<int>(of.size())))];
  }
  // A component anew, on the cards that the game began with and those that it made.
  void start();
  screen::Answer answer(const screen::Message& message);

  screen::Control& choose();
  // What somebody who knows the work would do next, so that the game gets anywhere.
  const char* next_step();
  const char* next_step_of_form();
  const char* next_step_of_browsing();
  // What a careful user does next on a card, so that some are saved.
  const char* missing_step();
  const char* missing_step_of_form();
  const char* first_empty(std::initializer_list<const char*> boxes, const char* otherwise);
  bool has_line_without_items() const;
  std::string word_for(const std::string& name);

  screen::Refusal act_on(screen::Control& control);
  screen::Refusal act_on_text(screen::TextControl& control);
  screen::Refusal act_on_list(screen::ListBox& list);
  screen::Refusal press(screen::TextControl& control, char32_t key, int times);
  // Whether the store failed meanwhile; what else is thrown goes on.
  bool attempt(const std::function<void()>& what, bool asks);
  // Has the component led to a card, of which there may be none; the breach, if there is one, in `misled_`.
  void lead();
  void other_clerk();

  // Everything back and forth now and then; the breach, or nothing.
  std::string steps();
  // Gives up whatever is open; why that did not work, or nothing.
  std::string way_out();
  std::string press_way_out(screen::Control& button);

  void note(const std::string& step);
  void note_more(const std::string& detail) { trail_.back() += "  " + detail; }

  store::MemoryDatabase& base_;
  Store kind_;
  store::FailingDatabase failing_;
  WatchedStore store_;
  std::mt19937_64 random_;
  std::unique_ptr<Office> office_;
  Invariants invariants_;
  std::deque<std::string> trail_;
  bool leaving_ = false;  // answers whatever lets it out
  bool careful_ = false;  // with the card in hand
  std::vector<std::pair<std::string, store::DbRecord>> stock_;
  int acts_ = 0;      // of this component
  int failures_ = 0;  // of the store, before this act
  int refused_ = 0;
  std::string misled_;
  Score score_;
};

}  // namespace velanor::test
