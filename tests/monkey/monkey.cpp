#include "monkey/monkey.h"

#include "monkey/steps.h"

namespace velanor::test {

Monkey::Monkey(store::MemoryDatabase& base, Store kind, std::uint64_t seed)
    : base_(base), kind_(kind), failing_(base), store_(failing_), random_(seed), invariants_(base, store_) {
  store_.judge = [this](std::string_view file, std::string_view id, const store::DbRecord* record) {
    if (failing_.failures() != failures_) invariants_.judge().excuse_card();
    invariants_.judge().judge(file, id, record);
  };
  base.for_each("VELANORO",
                [&](std::string_view id, const store::DbRecord& card) { stock_.emplace_back(id, card); });
  start();
}

void Monkey::start() {
  note("a new component");
  for (const auto& [id, card] : stock_) base_.put("VELANORO", id, card);
  acts_ = 0;
  office_ = std::make_unique<Office>(store_);
  office_->toolkit.answer = [this](const screen::Message& message) { return answer(message); };
  office_->component.init();
  invariants_.start_anew(*office_);
}

screen::Answer Monkey::answer(const screen::Message& message) {
  using screen::Answer, screen::Buttons;
  if (message.closing && !leaving_ && once_in(4)) {
    note_more("« " + message.text + " » closed");
    return *message.closing;
  }
  const bool first = leaving_ || below(3) > 0;
  const Answer given = message.buttons == Buttons::Ok      ? Answer::Ok
                       : message.buttons == Buttons::YesNo ? (first ? Answer::Yes : Answer::No)
                       : /* OkCancel */ first              ? Answer::Ok
                                                           : Answer::Cancel;
  static const char* const kNames[] = {"OK", "Annuler", "Oui", "Non"};
  note_more("« " + message.text + " » " + kNames[static_cast<int>(given)]);
  return given;
}

void Monkey::note(const std::string& step) {
  trail_.push_back(step);
  if (trail_.size() > 60) trail_.pop_front();
}

// ---- Acting.

screen::Refusal Monkey::press(screen::TextControl& control, char32_t key, int times) {
  note_more("key " + std::to_string(key) + " x " + std::to_string(times));
  screen::Refusal why;
  for (int i = 0; i < times && why.empty(); ++i) why = office_->hand.press(control, {key});
  return why;
}

screen::Refusal Monkey::act_on_text(screen::TextControl& control) {
  screen::Hand& hand = office_->hand;
  auto* combo = dynamic_cast<screen::ComboBox*>(&control);
  if (combo && !careful_ && once_in(5)) return press(control, screen::Key::kBackspace, 1 + below(4));
  if (combo && (careful_ || below(4) > 0)) {
    const screen::Refusal why = hand.drop_down(*combo);
    if (!why.empty() || combo->count() == 0) return why;
    const int line = below(combo->count());
    note_more("line " + std::to_string(line) + " <" + std::string(combo->line(line)) + ">");
    return hand.choose(*combo, line);
  }
  const std::string word = word_for(control.name());
  switch (careful_ ? 3 : below(8)) {
    case 0:
      note_more("emptied");
      return hand.replace_text(control, "");
    case 1:
      note_more("pasted <" + word + ">");
      return hand.replace_text(control, word);
    case 2:
      return press(control, any<char32_t>({8, 9, 13, 27, 127, U'7', U'a', U'.'}), 1);
    default: {
      note_more("typed <" + word + ">");
      const screen::Refusal why = hand.replace_text(control, "");
      return why.empty() ? hand.type(control, word) : why;
    }
  }
}

screen::Refusal Monkey::act_on_list(screen::ListBox& list) {
  if (list.count() == 0) return {};
  const int line = below(list.count());
  const bool twice = once_in(2);
  note_more((twice ? "double click on " : "click on ") + std::to_string(line));
  return twice ? office_->hand.double_click(list, line) : office_->hand.pick(list, line);
}

screen::Refusal Monkey::act_on(screen::Control& control) {
  screen::Hand& hand = office_->hand;
  if (auto* text = dynamic_cast<screen::TextControl*>(&control)) return act_on_text(*text);
  if (auto* list = dynamic_cast<screen::ListBox*>(&control)) return act_on_list(*list);
  if (auto* bar = dynamic_cast<screen::ScrollBar*>(&control)) {
    const int to = below(bar->max() + 1);
    note_more("to " + std::to_string(to));
    return hand.scroll(*bar, to);
  }
  if (dynamic_cast<screen::Tabs*>(&control)) return hand.show_page(below(3));
  if (dynamic_cast<screen::Label*>(&control) || dynamic_cast<screen::Frame*>(&control)) {
    return once_in(3) ? hand.leave() : once_in(2) ? hand.right_press() : hand.close();
  }
  return hand.click(control);
}

// A failure soon, or deep in what a card is read with.
bool Monkey::attempt(const std::function<void()>& what, bool asks) {
  failures_ = failing_.failures();
  if (kind_ == Store::kFailing && once_in(asks ? 15 : 60)) failing_.fail_at(1 + below(once_in(2) ? 4 : 40));
  try {
    what();
  } catch (const store::DbError& error) {
    // Nobody made it fail, nor was there another clerk.
    if (failing_.failures() == failures_ && error.number() != store::kConflict) throw;
    // As the window does, which goes on.
    office_->component.screen().top().settle_focus();
  }
  failing_.fail_at(0);
  const bool failed = failing_.failures() != failures_;
  if (failed) note_more("the store fails");
  score_.failures += failed;
  return failed;
}

void Monkey::lead() {
  std::vector<std::string> ids{"000990012026", "000010092026", "000010012031"};
  base_.for_each("VELANORO", [&](std::string_view id, const store::DbRecord&) { ids.emplace_back(id); });
  const std::string id = any(ids);
  note_more(id);
  const std::string before = standing(office_->component);
  const auto opening = office_->component.open(id.substr(5, 3), id.substr(8), id.substr(0, 5));
  using Outcome = control::Opening::Outcome;
  const bool there = base_.find("VELANORO", id).has_value();
  score_.led += opening.is_open();
  if (opening.is_open() != opening.why.empty()) misled_ = "nothing, or too much, was said";
  if (opening.is_open() && office_->component.card_id() != id) misled_ = "another card is open";
  if (opening.outcome == Outcome::kFailed || opening.outcome == Outcome::kBusy) misled_ = opening.why;
  if (!opening.is_open() && standing(office_->component) != before)
    misled_ = "what was open was left for nothing";
  if (opening.outcome == Outcome::kUnknown && there && id.substr(8) == "2026") misled_ = opening.why;
}

// Somebody else works on the same store.
void Monkey::other_clerk() {
  std::vector<std::string> ids;
  base_.for_each("VELANORO", [&](std::string_view id, const store::DbRecord&) { ids.emplace_back(id); });
  const std::string id = any(ids);
  store::DbRecord card = *base_.find("VELANORO", id);
  if (once_in(3)) {
    note("another clerk removes " + id);
    return base_.remove("VELANORO", id);
  }
  note("another clerk renames " + id);
  card.set(1, "AUTREMENT");
  base_.put("VELANORO", id, card);
}

std::string Monkey::act() {
  // Cards that were removed come back at last.
  if (++acts_ > 1500 && !card_open(*office_)) start();
  if (once_in(500)) other_clerk();
  screen::Control* const control = once_in(100) ? nullptr : &choose();
  const std::string name = control ? control->name() : "open";
  const bool on_card = control && &control->form() == &office_->ui;
  note(name);
  const long changes = store_.changes();
  const int lines = office_->ui.Lst_DatEffet.count();
  const bool creating = office_->ui.Txt_Etat.text() == "Création";
  invariants_.before(*office_, on_card ? name : "");
  Act done{name};
  if (control) {
    // Choices and buttons are what reads and writes.
    const bool asks =
        dynamic_cast<screen::CommandButton*>(control) || dynamic_cast<screen::ComboBox*>(control);
    done.store_failed = attempt([&] { (void)act_on(*control); }, asks);
  } else {
    done.store_failed = attempt([&] { lead(); }, true);
    if (!misled_.empty()) return "open: " + misled_;
  }
  done.store_changed = store_.changes() != changes;
  score_.saved += done.store_changed && name == "Cmd_OK";
  score_.created += done.store_changed && name == "Cmd_OK" && creating;
  refused_ += !done.store_changed && name == "Cmd_OK" && on_card;
  score_.added += name == "Cmd_OkDetail" && office_->ui.Lst_DatEffet.count() > lines;
  if (office_->component.closed()) {
    start();
    return {};
  }
  if (std::string breach = invariants_.check(*office_, done); !breach.empty()) return breach;
  if (std::string breach = steps(); !breach.empty()) return breach;
  return done.store_failed && once_in(2) ? way_out() : std::string();
}

std::string Monkey::steps() {
  if (kind_ == Store::kFailing || !once_in(30)) return {};
  note("back and forth");
  if (const std::string breach = walk_steps(*office_, score_.steps); !breach.empty())
    return "steps: " + breach;
  return invariants_.check(*office_, {.control = "steps"});
}

// ---- The way out.

// A box that holds what cannot be left keeps the focus, and says so, until it is emptied.
std::string Monkey::press_way_out(screen::Control& button) {
  for (int tries = 0; tries < 3; ++tries) {
    note("  out by " + button.name());
    const int messages = office_->component.screen().messages_shown();
    if (const auto why = office_->hand.click(button); !why.empty()) return "way-out: " + why.why();
    screen::Control* const focus = office_->component.screen().top().focus();
    auto* const box = dynamic_cast<screen::TextControl*>(focus);
    const bool lost = box && office_->component.screen().messages_shown() > messages && button.usable();
    if (!lost) return {};
    if (const auto why = office_->hand.replace_text(*box, ""); !why.empty()) return "way-out: " + why.why();
  }
  return "way-out: " + button.name() + " is never reached";
}

std::string Monkey::way_out() {
  leaving_ = true;
  card::CardScreen& ui = office_->ui;
  std::string breach;
  for (int steps = 0; steps < 6 && breach.empty(); ++steps) {
    if (&office_->component.screen().top() != &ui) {
      screen::Control& button = office_->control("Cmd_Annuler");
      breach = press_way_out(button.usable() ? button : office_->control("Cmd_Retour"));
    } else if (entering_amendment(*office_)) {
      breach = press_way_out(ui.Cmd_AnnulDetail);
    } else if (entering_activity(*office_)) {
      breach = press_way_out(ui.Cmd_AnnulAct);
    } else if (ui.Cmd_Annul.usable()) {
      breach = press_way_out(ui.Cmd_Annul);
    }
    if (breach.empty()) breach = invariants_.check(*office_, {.control = "Cmd_Annul"});
  }
  if (breach.empty() && once_in(3)) breach = press_way_out(ui.Cmd_Sortir);
  leaving_ = false;
  if (!breach.empty()) return breach;
  ++score_.ways_out;
  if (office_->component.closed()) {
    start();
    return {};
  }
  for (const screen::Control* control : std::initializer_list<const screen::Control*>{
           &ui.Txt_Asso, &ui.Cbo_Asso, &ui.Cbo_Periode, &ui.Cmd_Sortir}) {
    if (!control->usable()) return "way-out: " + control->name() + " is locked at its end";
  }
  return {};
}

}  // namespace velanor::test
