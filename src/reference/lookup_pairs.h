// The pairs of a code box and a label box: typing a complete code shows its label, choosing a
// label fills in the code.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "card/screen/card_screen.h"
#include "card/screen/card_state.h"
#include "reference/label_search.h"
#include "reference/lists.h"
#include "velanor/screen.h"

namespace velanor::reference {

// What sets one pair apart from the others.
struct LookupPair {
  screen::TextBox& code;
  screen::ComboBox& label;
  // A code is complete when it has exactly the code box's maximum length.
  std::string_view unknown;  // message for a code that does not exist
  // The record of a code, which has its label; nothing when there is none.
  std::function<std::optional<store::DbRecord>(const std::string& code)> read;
  // The list behind the label box, and where the code stands in its ids.
  const store::DbResult& kept;
  int code_from = 1;
  // Message that refuses a code that exists; "" accepts it.
  std::function<std::string_view(const std::string& code, const store::DbRecord&)> refusal = {};
  // After a code was accepted, with its record; after any other content.
  std::function<void(const store::DbRecord&)> accepted = {};
  std::function<void()> incomplete = {};
  // A failing store ends the operation instead of reading as an empty record.
  bool failures_surface = false;
  // Of entries that read the same the one that was picked is meant, not the first.
  Alike alike = Alike::kSame;
};

class LookupPairs {
 public:
  // Keeps the references; their owners outlive this.
  LookupPairs(card::CardState& card, screen::Screen& screen) : card_(card), screen_(screen) {}

  // Binds the pair's boxes to its description.
  void add(LookupPair pair);
  // Binds the town box, which has no code.
  void add_town(screen::ComboBox& town, const control::Procedure& procedure);

 private:
  void code_changed(const LookupPair& pair);
  void refuse(const LookupPair& pair, std::string_view message);
  void label_chosen(const LookupPair& pair);
  void label_typed(const LookupPair& pair);
  void label_left(const LookupPair& pair);
  void label_restored(const LookupPair& pair);
  void town_typed(screen::ComboBox& town, const control::Procedure& procedure);

  card::CardState& card_;
  screen::Screen& screen_;
  std::vector<std::unique_ptr<LookupPair>> pairs_;
  const screen::ComboBox* told_ = nullptr;  // the box whose text was said to match nothing
};

// Digits alone; Enter pads to the full length and goes no further. Leaving the box pads too.
void bind_code_box(screen::TextBox& box);

}  // namespace velanor::reference
