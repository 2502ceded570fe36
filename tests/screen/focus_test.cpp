// Where the focus goes, and who hears of it.
#include "screen/acted_screen.h"

namespace velanor::screen {
namespace {

class FocusTest : public ActedScreen {};

TEST_F(FocusTest, TheControlLeftHearsBeforeTheOneReached) {
  start_on(card_.header);
  EXPECT_TRUE(card_.move_focus(&card_.combo));
  EXPECT_EQ(log(), (Log{"-Txt_Tete", "+Cbo_Tete"}));
  EXPECT_TRUE(card_.move_focus(&card_.combo));
  EXPECT_TRUE(card_.move_focus(nullptr));
  EXPECT_EQ(log(), Log{"-Cbo_Tete"});
  EXPECT_EQ(card_.focus(), nullptr);
}

TEST_F(FocusTest, ALostFocusHandlerMaySendTheFocusBack) {
  card_.header.lost_focus += [this] { card_.set_focus(card_.header); };
  start_on(card_.header);
  EXPECT_FALSE(card_.move_focus(&card_.ok));
  EXPECT_EQ(card_.focus(), &card_.header);
  EXPECT_EQ(log(), Log{"-Txt_Tete"}) << "neither the one wanted nor the one kept hears anything";
}

TEST_F(FocusTest, ALostFocusHandlerMaySendTheFocusElsewhere) {
  card_.header.lost_focus += [this] { card_.set_focus(card_.combo); };
  start_on(card_.header);
  EXPECT_FALSE(card_.move_focus(&card_.ok));
  EXPECT_EQ(log(), (Log{"-Txt_Tete", "+Cbo_Tete"}));
  EXPECT_FALSE(card_.move_focus(nullptr) && card_.focus());
}

TEST_F(FocusTest, ALostFocusHandlerMaySendTheFocusToAnotherPage) {
  card_.header.lost_focus += [this] { card_.set_focus(card_.second); };
  start_on(card_.header);
  EXPECT_FALSE(card_.move_focus(&card_.ok));
  EXPECT_EQ(card_.focus(), &card_.second);
  EXPECT_EQ(card_.pages.current(), 1);
}

TEST_F(FocusTest, AHandActingWithinALostFocusHandlerDoesNotStartAMoveOfItsOwn) {
  card_.header.lost_focus += [this] {
    EXPECT_FALSE(card_.move_focus(&card_.combo));
    EXPECT_EQ(card_.focus(), &card_.header);
  };
  start_on(card_.header);
  EXPECT_TRUE(card_.move_focus(&card_.ok));
  EXPECT_EQ(log(), (Log{"-Txt_Tete", "+Cmd_OK"}));
}

TEST_F(FocusTest, ATargetThatTheHandlerDisablesIsNotReached) {
  card_.header.lost_focus += [this] { card_.ok.set_enabled(false); };
  start_on(card_.header);
  EXPECT_FALSE(card_.move_focus(&card_.ok));
  EXPECT_EQ(card_.focus(), &card_.header);
  EXPECT_EQ(log(), Log{"-Txt_Tete"});
}

TEST_F(FocusTest, AFailingHandlerLeavesTheFocusWhereItWas) {
  bool fails = true;
  card_.header.lost_focus += [&] {
    if (fails) throw std::runtime_error("no");
  };
  start_on(card_.header);
  EXPECT_THROW(card_.move_focus(&card_.ok), std::runtime_error);
  EXPECT_EQ(card_.focus(), &card_.header);
  fails = false;
  EXPECT_TRUE(card_.move_focus(&card_.ok)) << "and the next move is not held up";
}

TEST_F(FocusTest, TheProgramShowsThePageOfTheControlThatItFocuses) {
  start_on(card_.header);
  card_.set_focus(card_.second);
  EXPECT_EQ(log(), (Log{"switched", "-Txt_Tete", "+Txt_Deux"}));
  card_.pages.enable_page(0, false);
  card_.set_focus(card_.first);
  EXPECT_EQ(card_.focus(), &card_.second) << "the page is disabled";
}

TEST_F(FocusTest, AFocusTakenByTheSwitchOfPagesGoesOnToTheControlThatWasAskedFor) {
  card_.pages.switched += [this] { card_.set_focus(card_.combo); };
  start_on(card_.header);
  card_.set_focus(card_.second);
  EXPECT_EQ(card_.focus(), &card_.second);
  EXPECT_EQ(log(), (Log{"switched", "-Txt_Tete", "+Cbo_Tete", "-Cbo_Tete", "+Txt_Deux"}));
}

TEST_F(FocusTest, AControlDisabledByTheSwitchOfPagesIsPassedOver) {
  card_.pages.switched += [this] { card_.second.set_enabled(false); };
  start_on(card_.header);
  card_.set_focus(card_.second);
  EXPECT_EQ(card_.pages.current(), 1);
  EXPECT_EQ(card_.focus(), &card_.header);
}

TEST_F(FocusTest, WhatCannotBeUsedIsPassedOver) {
  start_on(card_.header);
  card_.frame.set_enabled(false);
  card_.combo.set_visible(false);
  for (Control* control :
       std::initializer_list<Control*>{&card_.first, &card_.combo, &card_.frame, &card_.bar}) {
    SCOPED_TRACE(control->name());
    card_.set_focus(*control);
    EXPECT_EQ(card_.focus(), &card_.header);
  }
  EXPECT_EQ(log(), Log{});
}

TEST_F(FocusTest, AFocusedControlThatBecomesUnusableHandsTheFocusOnInTabOrder) {
  start_on(card_.first);
  card_.settle_focus();
  EXPECT_EQ(log(), Log{});
  card_.first.set_enabled(false);
  card_.settle_focus();
  EXPECT_EQ(log(), Log{"+Txt_Suite"}) << "without a word to the one left";
  card_.frame.set_visible(false);
  card_.settle_focus();
  EXPECT_EQ(card_.focus(), &card_.header) << "round the end, past the page that is not shown";
  for (Control* control : card_.controls()) control->set_enabled(false);
  card_.settle_focus();
  EXPECT_EQ(card_.focus(), nullptr);
}

TEST_F(FocusTest, TheTabOrderGoesRoundWhatIsInSight) {
  const std::pair<Control*, Control*> kForward[] = {{nullptr, &card_.header},
                                                    {&card_.ok, &card_.pages},
                                                    {&card_.pages, &card_.first},
                                                    {&card_.next, &card_.header}};
  for (const auto& [from, to] : kForward) EXPECT_EQ(card_.neighbour(from, true), to);
  EXPECT_EQ(card_.neighbour(&card_.header, false), &card_.next);
  EXPECT_EQ(card_.neighbour(nullptr, false), &card_.next);
}

TEST_F(FocusTest, AnEditCountsFromTheLastArrivalOfTheFocus) {
  ASSERT_EQ(hand_.type(card_.header, "x"), "");
  EXPECT_TRUE(card_.header.edited());
  card_.move_focus(&card_.ok);
  card_.move_focus(&card_.header);
  EXPECT_FALSE(card_.header.edited());
}

TEST_F(FocusTest, AFieldLeftForACancelButtonIsJudgedWhenTheFocusGoesOn) {
  card_.cancel_buttons = {&card_.ok};
  start_on(card_.header);
  EXPECT_TRUE(card_.move_focus(&card_.ok));
  EXPECT_EQ(log(), Log{"+Cmd_OK"}) << "its text may be thrown away";
  EXPECT_TRUE(card_.move_focus(&card_.combo));
  EXPECT_EQ(log(), (Log{"-Txt_Tete", "+Cbo_Tete"}));
  card_.move_focus(&card_.header);
  card_.move_focus(&card_.ok);
  card_.header.set_enabled(false);
  log();
  card_.move_focus(&card_.combo);
  EXPECT_EQ(log(), (Log{"-Cmd_OK", "+Cbo_Tete"})) << "what is closed by now is not judged any more";
}

TEST_F(FocusTest, WhoThinksBetterOfACancelButtonIsBackInTheFieldWithItsEdit) {
  card_.cancel_buttons = {&card_.ok};
  int judged = 0;
  card_.header.lost_focus += [&] {
    ++judged;
    card_.set_focus(card_.header);
  };
  ASSERT_EQ(hand_.type(card_.header, "x"), "");
  EXPECT_EQ(hand_.click(card_.ok), "");
  EXPECT_EQ(log(), (Log{"+Txt_Tete", "+Cmd_OK", "clicked", "+Txt_Tete"}));
  EXPECT_EQ(judged, 0);
  EXPECT_TRUE(card_.header.edited());
  EXPECT_FALSE(card_.move_focus(&card_.combo));
  EXPECT_EQ(judged, 1);
}

TEST_F(FocusTest, TheFocusComesBackFromAButtonThatDeletesAndNeverSettlesThere) {
  card_.perilous_buttons = {&card_.ok};
  start_on(card_.combo);
  EXPECT_EQ(hand_.click(card_.ok), "");
  EXPECT_EQ(card_.focus(), &card_.combo);
  card_.combo.set_enabled(false);
  card_.settle_focus();
  EXPECT_EQ(card_.focus(), &card_.pages) << "past the button, which is next in tab order";
}

TEST_F(FocusTest, WhoSteppedToAButtonThatDeletesIsBackThere) {
  card_.perilous_buttons = {&card_.ok};
  start_on(card_.combo);
  EXPECT_EQ(hand_.press(card_.combo, {Key::kTab}), "");
  ASSERT_EQ(card_.focus(), &card_.ok);
  EXPECT_EQ(hand_.press(card_.ok, {Key::kEnter}), "");
  EXPECT_EQ(card_.focus(), &card_.ok);
  start_on(card_.combo);
  EXPECT_EQ(hand_.click(card_.ok), "");
  EXPECT_EQ(card_.focus(), &card_.combo);
}

TEST_F(FocusTest, TabGoesOnToWhatLeavingHasOpened) {
  card_.combo.set_enabled(false);
  card_.header.lost_focus += [this] { card_.combo.set_enabled(!card_.header.is_empty()); };
  start_on(card_.header);
  EXPECT_EQ(hand_.press(card_.header, {Key::kTab}), "");
  EXPECT_EQ(card_.focus(), &card_.ok);
  EXPECT_EQ(hand_.type(card_.header, "x"), "");
  EXPECT_EQ(hand_.press(card_.header, {Key::kTab}), "");
  EXPECT_EQ(card_.focus(), &card_.combo);
}

}  // namespace
}  // namespace velanor::screen
