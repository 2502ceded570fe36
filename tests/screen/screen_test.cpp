// Forms on one another, and the message boxes between them.
#include "velanor/screen.h"

#include "screen/acted_screen.h"

namespace velanor::screen {
namespace {

class ScreenTest : public ActedScreen {};

TEST_F(ScreenTest, AModalFormGoesBeforeWhatWasToBeDoneThen) {
  AskForm above;
  screen_.open(ask_, [&] { note_now("ask closed over " + screen_.top().name()); });
  screen_.open(above, [&] { note_now("above closed over " + screen_.top().name()); });
  EXPECT_EQ(screen_.open_forms(), (std::vector<Form*>{&card_, &ask_, &above}));
  screen_.close(ask_);
  EXPECT_TRUE(screen_.is_open(ask_)) << "it is not the topmost";
  screen_.close(above);
  screen_.close(ask_);
  screen_.close(card_);
  EXPECT_EQ(log(), (Log{"above closed over Question", "ask closed over Fiche"}));
  EXPECT_EQ(&screen_.top(), &card_);
}

TEST_F(ScreenTest, WhatIsDoneAfterAFormMayOpenItAgain) {
  int times = 0;
  const std::function<void()> again = [&] {
    if (++times < 3) screen_.open(ask_, again);
  };
  screen_.open(ask_, again);
  while (screen_.is_open(ask_)) screen_.close(ask_);
  EXPECT_EQ(times, 3);
}

TEST_F(ScreenTest, AFormOpenedAgainStartsWithoutFocus) {
  screen_.open(ask_, {});
  EXPECT_EQ(hand_.focus(ask_.text), "");
  screen_.close(ask_);
  note(ask_.text.lost_focus, "lost");
  screen_.open(ask_, {});
  EXPECT_EQ(ask_.focus(), nullptr);
  EXPECT_EQ(log(), Log{});
}

TEST_F(ScreenTest, TheFormBehindKeepsItsFocus) {
  start_on(card_.header);
  screen_.open(ask_, {});
  EXPECT_EQ(hand_.focus(ask_.text), "");
  screen_.close(ask_);
  EXPECT_EQ(card_.focus(), &card_.header);
  EXPECT_EQ(log(), Log{});
}

TEST_F(ScreenTest, AFormMayRefuseItsCloseBox) {
  bool closes = false;
  ask_.may_close = [&] { return closes; };
  screen_.open(ask_, {});
  EXPECT_EQ(hand_.close(), "");
  EXPECT_TRUE(screen_.is_open(ask_));
  closes = true;
  EXPECT_EQ(hand_.close(), "");
  EXPECT_FALSE(screen_.is_open(ask_));
  EXPECT_FALSE(screen_.request_close()) << "the base form stays";
}

TEST_F(ScreenTest, AFormThatClosesItselfWhenAskedIsClosedOnce) {
  ask_.may_close = [&] {
    screen_.close(ask_);
    return true;
  };
  screen_.open(ask_, [&] { note_now("closed"); });
  EXPECT_TRUE(screen_.request_close());
  EXPECT_EQ(log(), Log{"closed"});
}

TEST_F(ScreenTest, KeysGoToTheFormThatCameOnTopMeanwhile) {
  card_.header.changed += [this] {
    screen_.open(ask_, {});
    ask_.set_focus(ask_.text);
  };
  EXPECT_EQ(hand_.type(card_.header, "abc"), "");
  EXPECT_EQ(card_.header.text(), "a");
  EXPECT_EQ(ask_.text.text(), "bc");
}

TEST_F(ScreenTest, MessagesBearTheTitleAndTheIconOfTheirKind) {
  struct Seen : Toolkit {
    Answer message(const Message& message) override {
      last = message;
      return Answer::Yes;
    }
    Message last;
  } seen;
  Screen screen(ask_, seen);
  screen.refuse("non");
  EXPECT_EQ(seen.last.title, "Message TALVERINE");
  EXPECT_EQ(seen.last.icon, Icon::Exclamation);
  EXPECT_EQ(seen.last.buttons, Buttons::Ok);
  EXPECT_TRUE(screen.confirm("sûr ?"));
  EXPECT_EQ(seen.last.icon, Icon::Question);
  EXPECT_EQ(seen.last.buttons, Buttons::YesNo);
  EXPECT_EQ(screen.messages_shown(), 2);
}

}  // namespace
}  // namespace velanor::screen
