// What a user can do, and what does not answer.
#include <functional>

#include "screen/acted_screen.h"
#include "support/typed_keys.h"

namespace velanor::screen {
namespace {

class HandTest : public ActedScreen {};

TEST_F(HandTest, WhatDoesNotAnswerSaysWhy) {
  const std::tuple<std::string, std::function<void()>, std::function<Refusal()>> kCases[] = {
      {"Txt_Tete is disabled", [&] { card_.header.set_enabled(false); },
       [&] { return hand_.type(card_.header, "x"); }},
      {"Txt_Tete is hidden", [&] { card_.header.set_visible(false); },
       [&] { return hand_.focus(card_.header); }},
      {"Cdr is disabled", [&] { card_.frame.set_enabled(false); },
       [&] { return hand_.press(card_.first, Key{U'x'}); }},
      {"page 1 is disabled", [&] { card_.pages.enable_page(1, false); },
       [&] { return hand_.pick(card_.list, 0); }},
      {"page 1 is disabled", [&] { card_.pages.enable_page(1, false); }, [&] { return hand_.show_page(1); }},
      {"Ong is disabled", [&] { card_.pages.set_enabled(false); }, [&] { return hand_.show_page(1); }},
      {"there is no page 2", [] {}, [&] { return hand_.show_page(2); }},
      {"Cdr takes no focus", [] {}, [&] { return hand_.focus(card_.frame); }},
      {"Txt_Tete is no button", [] {}, [&] { return hand_.click(card_.header); }},
      {"Lst_Deux has no line 2", [] {}, [&] { return hand_.double_click(card_.list, 2); }},
      {"Cbo_Tete has no line -1", [] {}, [&] { return hand_.choose(card_.combo, -1); }},
      {"Bdv_Deux goes from 0 to 3", [] {}, [&] { return hand_.scroll(card_.bar, 4); }},
      {"Cbo_Tete cannot be typed into", [&] { card_.combo.make_list_only(); },
       [&] { return hand_.replace_text(card_.combo, ""); }},
      {"Cmd_OK stands behind the form Question", [&] { screen_.open(ask_, {}); },
       [&] { return hand_.click(card_.ok); }},
      {"Cmd_OK is gone: the component was left", [&] { screen_.finish(); },
       [&] { return hand_.click(card_.ok); }},
      {"the component was left", [&] { screen_.finish(); }, [&] { return hand_.close(); }},
  };
  for (const auto& [why, prepare, act] : kCases) {
    SCOPED_TRACE(why);
    for (Control* control : card_.controls()) {
      control->set_enabled(true);
      control->set_visible(true);
    }
    card_.pages.enable_all();
    card_.pages.show(0);
    prepare();
    EXPECT_EQ(act(), why);
  }
}

TEST_F(HandTest, AClickMovesTheFocusFirst) {
  start_on(card_.header);
  EXPECT_EQ(hand_.click(card_.ok), "");
  EXPECT_EQ(log(), (Log{"-Txt_Tete", "+Cmd_OK", "clicked"}));
}

TEST_F(HandTest, AClickIsLostWhenTheControlLeftKeepsTheFocus) {
  card_.header.lost_focus += [this] { card_.set_focus(card_.header); };
  start_on(card_.header);
  card_.combo.refill({"un"});
  EXPECT_EQ(hand_.click(card_.ok), "");
  EXPECT_EQ(hand_.choose(card_.combo, 0), "");
  EXPECT_EQ(hand_.show_page(1), "");
  EXPECT_EQ(hand_.pick(card_.list, 0), "");
  EXPECT_EQ(hand_.scroll(card_.bar, 2), "");
  EXPECT_EQ(log(), (Log{"-Txt_Tete", "-Txt_Tete", "-Txt_Tete", "-Txt_Tete", "-Txt_Tete"}));
  EXPECT_EQ(card_.combo.index(), -1);
  EXPECT_EQ(card_.bar.value(), 0) << "its page was not shown";
}

TEST_F(HandTest, AClickIsLostWhenTheControlLeftOpensAMessage) {
  card_.header.lost_focus += [this] { screen_.refuse("non"); };
  start_on(card_.header);
  EXPECT_EQ(hand_.show_page(1), "");
  EXPECT_EQ(card_.pages.current(), 0);
  start_on(card_.header);
  EXPECT_EQ(hand_.click(card_.ok), "");
  EXPECT_EQ(log(), (Log{"-Txt_Tete", "+Cmd_OK"}));
  EXPECT_EQ(hand_.click(card_.ok), "");
  EXPECT_EQ(log(), Log{"clicked"});
}

TEST_F(HandTest, AClickIsLostWhenTheControlLeftDisablesTheButton) {
  card_.header.lost_focus += [this] { card_.ok.set_enabled(false); };
  start_on(card_.header);
  EXPECT_EQ(hand_.click(card_.ok), "");
  EXPECT_EQ(log(), Log{"-Txt_Tete"});
}

TEST_F(HandTest, AClickIsLostWhenTheButtonReachedIsCoveredByAForm) {
  card_.ok.got_focus += [this] { screen_.open(ask_, {}); };
  EXPECT_EQ(hand_.click(card_.ok), "");
  EXPECT_EQ(log(), Log{"+Cmd_OK"});
}

TEST_F(HandTest, TheSecondClickOfADoubleClickNeedsAListThatStillAnswers) {
  note(card_.list.double_clicked, "double");
  bool disables = false;
  card_.list.clicked += [&] { card_.list.set_enabled(!disables); };
  start_on(card_.second);
  EXPECT_EQ(hand_.double_click(card_.list, 0), "");
  EXPECT_EQ(log(), (Log{"-Txt_Deux", "+Lst_Deux", "double"}));
  disables = true;
  EXPECT_EQ(hand_.double_click(card_.list, 1), "");
  EXPECT_EQ(log(), Log{"+Txt_Tete"}) << "the focus went on, nothing was opened";
}

TEST_F(HandTest, ButtonsThatDisableThemselvesHandTheFocusOn) {
  card_.ok.clicked += [this] { card_.ok.set_enabled(false); };
  EXPECT_EQ(hand_.click(card_.ok), "");
  EXPECT_EQ(card_.focus(), &card_.pages);
}

TEST_F(HandTest, AControlOnAnotherPageIsReachedByItsTab) {
  start_on(card_.header);
  EXPECT_EQ(hand_.type(card_.second, "x"), "");
  EXPECT_EQ(log(), (Log{"-Txt_Tete", "+Ong", "switched", "-Ong", "+Txt_Deux"}));
  EXPECT_EQ(card_.second.text(), "x");
}

TEST_F(HandTest, KeysPassTheFilterAndFollowTheFocus) {
  card_.header.key_press = [this](Key& key) {
    if (key.code == Key::kEnter) card_.set_focus(card_.first);
    if (key.code == Key::kEnter || key.code == U'x') key.swallow();
    if (key.code == U'.') key.code = U',';
  };
  card_.header.changed += [this] {
    if (card_.header.text() == "1,2") card_.set_focus(card_.first);
  };
  EXPECT_EQ(hand_.type(card_.header, "1x.2é4"), "");
  EXPECT_EQ(card_.header.text(), "1,2");
  EXPECT_EQ(card_.first.text(), "é4");
  EXPECT_EQ(hand_.press(card_.header, Key{Key::kBackspace}), "");
  EXPECT_EQ(hand_.press(card_.header, Key{Key::kDelete}), "");
  EXPECT_EQ(card_.header.text(), "1,");
  EXPECT_EQ(hand_.press(card_.header, Key{Key::kEnter}), "");
  EXPECT_EQ(card_.focus(), &card_.first);
  EXPECT_EQ(hand_.press(card_.first, Key{Key::kTab}), "");
  EXPECT_EQ(card_.focus(), &card_.next);
}

TEST_F(HandTest, AKeyIsJudgedWhereItFalls) {
  test::SmallField field(card_);
  for (const auto& [what, text, at, key, left] : test::kTypedKeys) {
    SCOPED_TRACE(what);
    field.set_text(text);
    EXPECT_EQ(hand_.press(field, {key}, at), "");
    EXPECT_EQ(field.text(), left);
  }
  for (const auto& [value, left] : test::kWholeValues) {
    SCOPED_TRACE(value);
    EXPECT_EQ(hand_.replace_text(field, value), "");
    EXPECT_EQ(field.text(), left);
  }
}

TEST_F(HandTest, KeysActOnButtonsAndEscapeCancels) {
  ask_.cancel_buttons = {&ask_.cancel, &ask_.ok};
  note(ask_.ok.clicked, "ok");
  note(ask_.cancel.clicked, "cancel");
  ask_.list.add("a");
  screen_.open(ask_, {});
  EXPECT_EQ(hand_.press(ask_.text, Key{Key::kEnter}), "");
  EXPECT_EQ(hand_.press(ask_.list, Key{Key::kEnter}), "");
  EXPECT_EQ(log(), Log{}) << "Enter is a button's";
  EXPECT_EQ(hand_.press(ask_.text, Key{Key::kEscape}), "");
  EXPECT_EQ(hand_.press(ask_.cancel, Key{Key::kEnter}), "");
  EXPECT_EQ(hand_.press(ask_.cancel, Key{U' '}), "");
  EXPECT_EQ(log(), (Log{"cancel", "cancel", "cancel"}));
  ask_.cancel.set_enabled(false);
  EXPECT_EQ(hand_.press(ask_.text, Key{Key::kEscape}), "");
  EXPECT_EQ(log(), Log{"ok"}) << "the first that is usable";
}

TEST_F(HandTest, ReplacingATextIsOneEdit) {
  card_.header.key_press = [](Key& key) {
    if (key.code == U'b') key.swallow();
  };
  note(card_.header.changed, "changed");
  EXPECT_EQ(hand_.replace_text(card_.header, "abc"), "");
  EXPECT_EQ(card_.header.text(), "ac");
  EXPECT_EQ(log(), (Log{"+Txt_Tete", "changed"}));
  EXPECT_EQ(hand_.replace_text(card_.header, ""), "");
  EXPECT_EQ(card_.header.text(), "");
}

TEST_F(HandTest, OpeningAComboBoxTellsItBeforeALineIsChosen) {
  card_.combo.drop_down += [this] { card_.combo.refill({"un", "deux"}); };
  EXPECT_EQ(hand_.drop_down(card_.combo), "");
  EXPECT_EQ(hand_.choose(card_.combo, 1), "");
  EXPECT_EQ(card_.combo.text(), "deux");
}

}  // namespace
}  // namespace velanor::screen
