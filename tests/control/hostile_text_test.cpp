// Any text in any box: it comes back as it was typed, or is refused with a message, and nothing else changes.
#include <gtest/gtest.h>

#include <iostream>
#include <set>

#include "support/hostile.h"
#include "support/office.h"
#include "text/utf8.h"

namespace velanor::test {
namespace {

using store::DbRecord;
using Texts = std::vector<std::string>;

constexpr const char* kId = "000100012026";

// A box, and the button that opens it.
struct Box {
  std::string name, opener;
};

class HostileText : public testing::Test {
 protected:
  HostileText() { load(memory_, "lib/cards.play"); }

  void open(Office& office, const std::string& opener) {
    office.component.init();
    EXPECT_TRUE(office.component.open("001", "2026", "00010").is_open());
    if (!opener.empty()) {
      EXPECT_EQ(office.hand.click(office.control(opener)), "");
    }
  }
  // Every box of the card that takes a text, with nothing or a line under edit.
  std::vector<Box> boxes() {
    std::vector<Box> found;
    std::set<std::string> known;
    for (const char* opener : {"", "Cmd_AjAct", "Cmd_AjDetail"}) {
      Office office(memory_);
      open(office, opener);
      for (screen::Control* control : office.ui.controls()) {
        auto* const box = dynamic_cast<screen::TextControl*>(control);
        if (box && box->usable() && box->editable() && known.insert(box->name()).second)
          found.push_back({box->name(), opener});
      }
    }
    return found;
  }
  // Opens the card, puts the text into the box and saves; what was said.
  Texts enter(Office& office, const Box& box, const std::string& text) {
    open(office, box.opener);
    auto& control = dynamic_cast<screen::TextControl&>(office.control(box.name));
    const screen::Refusal why = office.hand.replace_text(control, text);
    if (!why.empty()) return {why.why()};
    EXPECT_EQ(office.hand.leave(), "");
    shown_ = control.text();
    (void)office.hand.click(office.ui.Cmd_OK);
    return office.toolkit.messages;
  }
  DbRecord stored() { return *memory_.find("VELANORO", kId); }

  store::MemoryDatabase memory_;
  std::string shown_;
};

TEST_F(HostileText, InABoxIsSavedAsItIsShownOrNotAtAll) {
  const DbRecord before = stored();
  int saved = 0, kept = 0;
  const auto all = boxes();
  EXPECT_GT(all.size(), 25U);
  for (const Box& box : all) {
    for (const std::string& text : hostile_texts()) {
      SCOPED_TRACE(box.name + " <" + text.substr(0, 60) + ">");
      memory_.put("VELANORO", kId, before);
      Office office(memory_);
      Texts said;
      ASSERT_NO_THROW(said = enter(office, box, text));
      EXPECT_EQ(store::clean_text(shown_), shown_);
      if (office.component.state() == control::State::kEditing) {
        ++kept;
        EXPECT_EQ(stored(), before);
        continue;
      }
      ++saved;
      EXPECT_EQ(DbRecord::from_encoded(stored().encoded()), stored());
      Office again(memory_);
      again.component.init();
      ASSERT_TRUE(again.component.open("001", "2026", "00010").is_open());
      if (box.opener.empty() && said.empty()) {
        const std::string read = dynamic_cast<screen::TextControl&>(again.control(box.name)).text();
        EXPECT_TRUE(read == shown_ || read == text::upper(shown_))
            << read.substr(0, 60) << " instead of " << shown_.substr(0, 60);
      }
      // Untouched, it is saved as it stands.
      const DbRecord after = stored();
      EXPECT_EQ(again.hand.click(again.ui.Cmd_OK), "");
      EXPECT_EQ(stored(), after);
    }
  }
  std::cout << saved << " texts saved, " << kept << " not\n";
  EXPECT_GT(saved, 0);
  EXPECT_GT(kept, 0);
}

}  // namespace
}  // namespace velanor::test
