// A screen to act on: two pages, a header, a modal form, and a log of what its controls tell.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "velanor/hand.h"
#include "velanor/screen.h"

namespace velanor::screen {

struct CardForm : Form {
  CardForm() : Form("Fiche", "") {}

  TextBox header{*this, {.name = "Txt_Tete"}};
  ComboBox combo{*this, {.name = "Cbo_Tete"}};
  CommandButton ok{*this, {.name = "Cmd_OK"}};
  Tabs pages{*this, {.name = "Ong"}, {"Un", "Deux"}};
  Frame frame{*this, {.name = "Cdr", .page = 0}};
  TextBox first{*this, {.name = "Txt_Un", .frame = &frame}};
  TextBox next{*this, {.name = "Txt_Suite", .frame = &frame}};
  TextBox second{*this, {.name = "Txt_Deux", .page = 1}};
  ListBox list{*this, {.name = "Lst_Deux", .page = 1}};
  ScrollBar bar{*this, {.name = "Bdv_Deux", .page = 1}};
  Menu menu{*this, {.name = "Mnu"}};
};

struct AskForm : Form {
  AskForm() : Form("Question", "") {}

  TextBox text{*this, {.name = "Txt"}};
  ListBox list{*this, {.name = "Lst"}};
  CommandButton ok{*this, {.name = "Cmd_OK"}};
  CommandButton cancel{*this, {.name = "Cmd_Annuler"}};
};

class QuietToolkit : public Toolkit {
 public:
  Answer message(const Message& message) override {
    texts.push_back(message.text);
    return answer;
  }
  Answer answer = Answer::Ok;
  std::vector<std::string> texts;
};

class ActedScreen : public testing::Test {
 protected:
  using Log = std::vector<std::string>;

  ActedScreen() {
    for (Control* control : card_.controls()) {
      note(control->lost_focus, "-" + control->name());
      note(control->got_focus, "+" + control->name());
    }
    note(card_.ok.clicked, "clicked");
    note(card_.pages.switched, "switched");
    card_.list.add("a");
    card_.list.add("b");
    card_.bar.set_max(3);
  }

  void note(Event& event, const std::string& what) {
    event += [this, what] { log_.push_back(what); };
  }
  Log log() { return std::exchange(log_, {}); }
  void note_now(std::string what) { log_.push_back(std::move(what)); }
  // Puts the focus there and forgets what that told.
  void start_on(Control& control) {
    EXPECT_EQ(hand_.focus(control), "");
    log_.clear();
  }

  CardForm card_;
  AskForm ask_;
  QuietToolkit toolkit_;
  Screen screen_{card_, toolkit_};
  Hand hand_{screen_};

 private:
  Log log_;
};

}  // namespace velanor::screen
