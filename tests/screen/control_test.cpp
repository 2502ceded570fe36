// What the controls tell when the program or the user changes them.
#include "velanor/control.h"

#include <gtest/gtest.h>

#include "text/utf8.h"
#include "velanor/form.h"

namespace velanor::screen {
namespace {

using Texts = std::vector<std::string>;

// One control of each kind, and a log of the events that they raise.
class ControlTest : public testing::Test {
 protected:
  void note(Event& event, const std::string& what) {
    event += [this, what] { log_.push_back(what); };
  }
  // The events since it was last asked.
  Texts log() { return std::exchange(log_, {}); }

  Form form_{"Frm", ""};
  Label label_{form_, {.name = "Etq"}};
  Frame outer_{form_, {.name = "Cdr", .page = 1}};
  Frame inner_{form_, {.name = "Cdr_Dedans", .frame = &outer_}};
  TextBox text_{form_, {.name = "Txt", .label = &label_, .frame = &inner_, .max_length = 4}};
  ComboBox combo_{form_, {.name = "Cbo"}};
  ListBox list_{form_, {.name = "Lst"}};
  OptionButton first_{form_, {.name = "Opt_Un", .frame = &outer_}};
  OptionButton second_{form_, {.name = "Opt_Deux", .frame = &outer_}};
  OptionButton elsewhere_{form_, {.name = "Opt_Ailleurs", .frame = &inner_}};
  ScrollBar bar_{form_, {.name = "Bdv"}};
  Tabs tabs_{form_, {.name = "Ong"}, {"Un", "Deux", "Trois"}};

 private:
  Texts log_;
};

TEST_F(ControlTest, ATextThatDiffersRaisesChangedAndTheSameRaisesNothing) {
  note(text_.changed, "changed");
  text_.set_text("été");
  EXPECT_EQ(log(), Texts{"changed"});
  const auto revision = text_.revision();
  text_.set_text("été");
  EXPECT_EQ(log(), Texts{});
  EXPECT_EQ(text_.revision(), revision);
  text_.set_text("");
  EXPECT_EQ(log(), Texts{"changed"});
}

TEST_F(ControlTest, ATextIsCutToItsLengthInCharacters) {
  text_.set_text("éèàùç");
  EXPECT_EQ(text_.text(), "éèàù");
  note(text_.changed, "changed");
  text_.set_text("éèàù et la suite");
  EXPECT_EQ(log(), Texts{}) << "the cut text is the same";
}

TEST_F(ControlTest, AHandlerMayChangeTheTextAgain) {
  text_.changed += [this] { text_.set_text(text::upper(text_.text())); };
  text_.set_text("ab");
  EXPECT_EQ(text_.text(), "AB");
}

TEST_F(ControlTest, OnlyTheUserMakesATextEdited) {
  text_.set_text("a");
  EXPECT_FALSE(text_.edited());
  text_.replace("a");
  EXPECT_FALSE(text_.edited());
  text_.replace("b");
  EXPECT_TRUE(text_.edited());
}

TEST_F(ControlTest, APastedValueIsWhatItsKeysWouldHaveLeft) {
  text_.key_press = [this](Key& key) {
    const bool comma_again = key.code == U',' && text_.text().find(',') != std::string::npos;
    if (key.code == U'.') key.code = U',';
    if (comma_again || !(text::is_digit(key.code) || key.code == U',')) key.swallow();
  };
  text_.set_text("9");
  const std::pair<std::string_view, std::string> kCases[] = {
      {"12", "12"}, {"1x.5", "1,5"}, {"1,2,3", "1,23"}, {"123456", "1234"}, {"1\r\n2\t", "12"}, {"", ""},
  };
  for (const auto& [value, admitted] : kCases) {
    SCOPED_TRACE(value);
    text_.replace(value);
    EXPECT_EQ(text_.text(), admitted);
  }
}

TEST_F(ControlTest, ChoosingALineOfAComboBoxTakesItsText) {
  note(combo_.changed, "changed");
  note(combo_.clicked, "clicked");
  combo_.refill({"un", "deux", "deux"});
  EXPECT_EQ(log(), Texts{});
  combo_.set_index(1);
  EXPECT_EQ(combo_.text(), "deux");
  EXPECT_EQ(log(), (Texts{"changed", "clicked"}));
  combo_.set_index(1);
  EXPECT_EQ(log(), Texts{});
  combo_.set_index(2);
  EXPECT_EQ(log(), Texts{"clicked"}) << "another line of the same text";
  combo_.set_index(3);
  EXPECT_EQ(combo_.index(), 2) << "there is no such line";
  combo_.set_index(-1);
  EXPECT_EQ(combo_.text(), "");
  EXPECT_EQ(log(), (Texts{"changed", "clicked"}));
}

TEST_F(ControlTest, ATextSetInAComboBoxSelectsNoLineUnlessItReadsAsTheSelectedOne) {
  combo_.refill({"un", "deux"});
  combo_.set_text("deux");
  EXPECT_EQ(combo_.index(), -1);
  combo_.set_index(1);
  combo_.set_text("autre");
  EXPECT_EQ(combo_.index(), -1);
  combo_.set_index(0);
  combo_.set_text("un");
  EXPECT_EQ(combo_.index(), 0);
}

TEST_F(ControlTest, AHandlerOfTheTextSeesTheIndexThatGoesWithIt) {
  combo_.refill({"un", "deux"});
  std::vector<int> seen;
  combo_.changed += [&] { seen.push_back(combo_.index()); };
  combo_.set_index(1);
  combo_.set_text("libre");
  EXPECT_EQ(seen, (std::vector<int>{1, -1}));
}

TEST_F(ControlTest, RefillingAComboBoxIsSilentAndKeepsItsText) {
  combo_.refill({"un", "deux"});
  combo_.set_index(1);
  note(combo_.changed, "changed");
  note(combo_.clicked, "clicked");
  combo_.refill({"deux", "trois"}, 0);
  EXPECT_EQ(combo_.index(), 0);
  combo_.refill({"trois", "quatre"}, 0);
  EXPECT_EQ(combo_.index(), -1) << "line 0 does not read as the text";
  EXPECT_EQ(combo_.text(), "deux");
  EXPECT_EQ(log(), Texts{});
  combo_.clear();
  EXPECT_EQ(combo_.text(), "");
  EXPECT_EQ(combo_.count(), 0);
  EXPECT_EQ(log(), Texts{"changed"});
}

TEST_F(ControlTest, TheSelectionOfAListBoxStaysWithItsLine) {
  for (const char* line : {"a", "b", "c"}) list_.add(line);
  list_.set_index(1);
  note(list_.clicked, "clicked");
  list_.insert(0, "z");
  EXPECT_EQ(list_.line(list_.index()), "b");
  list_.insert(3, "y");
  list_.remove(0);
  EXPECT_EQ(list_.line(list_.index()), "b");
  list_.replace(1, "B");
  EXPECT_EQ(list_.line(list_.index()), "B");
  list_.remove(3);
  EXPECT_EQ(list_.index(), 1);
  list_.remove(1);
  EXPECT_EQ(list_.index(), -1) << "lost with its line";
  EXPECT_EQ(list_.items(), (Texts{"a", "y"}));
  EXPECT_EQ(log(), Texts{}) << "changing lines raises nothing";
}

TEST_F(ControlTest, AListBoxIsClickedOnlyWhenItsIndexDiffers) {
  list_.add("a");
  note(list_.clicked, "clicked");
  for (int index : {0, 0, 5, -2}) list_.set_index(index);
  EXPECT_EQ(log(), Texts{"clicked"});
  list_.set_index(-1);
  EXPECT_EQ(log(), Texts{"clicked"});
}

TEST_F(ControlTest, SettingAnOptionClearsTheOthersOfItsFrameSilently) {
  note(first_.clicked, "first");
  note(second_.clicked, "second");
  elsewhere_.set_value(true);
  first_.set_value(true);
  second_.set_value(true);
  second_.set_value(true);
  EXPECT_EQ(log(), (Texts{"first", "second"}));
  EXPECT_FALSE(first_.value());
  EXPECT_TRUE(elsewhere_.value());
  second_.set_value(false);
  EXPECT_EQ(log(), Texts{});
}

TEST_F(ControlTest, AScrollBarStaysWithinItsBounds) {
  note(bar_.changed, "changed");
  bar_.set_value(3);
  EXPECT_EQ(log(), Texts{}) << "its maximum is still 0";
  bar_.set_max(5);
  bar_.set_value(9);
  EXPECT_EQ(bar_.value(), 5);
  bar_.set_max(2);
  EXPECT_EQ(bar_.value(), 2);
  EXPECT_EQ(log(), (Texts{"changed", "changed"}));
}

TEST_F(ControlTest, ShowingAnotherPageRaisesSwitched) {
  note(tabs_.switched, "switched");
  for (int page : {0, 1, 1, 3, -1}) tabs_.show(page);
  EXPECT_EQ(log(), Texts{"switched"});
  tabs_.disable_others();
  EXPECT_FALSE(tabs_.page_enabled(0));
  EXPECT_TRUE(tabs_.page_enabled(1));
  EXPECT_FALSE(tabs_.page_enabled(3)) << "there is no such page";
}

TEST_F(ControlTest, ALabelFollowsItsFieldAndADisabledFrameStopsWhatStandsInIt) {
  text_.set_enabled(false);
  EXPECT_FALSE(label_.enabled());
  text_.set_enabled(true);
  EXPECT_TRUE(text_.usable());
  outer_.set_enabled(false);
  EXPECT_TRUE(text_.enabled());
  EXPECT_FALSE(text_.usable());
  outer_.set_enabled(true);
  inner_.set_visible(false);
  EXPECT_FALSE(text_.usable());
  EXPECT_EQ(text_.page(), 1) << "the page of its frames";
}

TEST_F(ControlTest, WhatIsStoredIsShownWholeUntilTheUserMakesItShorter) {
  text_.show_whole("Évreux");
  EXPECT_EQ(text_.text(), "Évreux");
  EXPECT_TRUE(text_.shows_more());
  text_.type({Key::kBackspace}, {6, 0});
  EXPECT_EQ(text_.text(), "Évreu") << "one character taken away, not all beyond the length";
  EXPECT_FALSE(text_.shows_more()) << "now it is the user's, and judged";
  text_.type({U'x'}, {5, 0});
  EXPECT_EQ(text_.text(), "Évreu") << "it does not grow";
  text_.replace("Évreux");
  EXPECT_EQ(text_.text(), "Évreux") << "what stood there can be taken back";
  text_.set_text("Évreuil");
  EXPECT_EQ(text_.text(), "Évre");
}

TEST_F(ControlTest, PickingTheLineThatIsShownIsAChoiceAndSettingItIsNone) {
  combo_.refill({"a", "a"});
  note(combo_.clicked, "clicked");
  combo_.choose(0);
  combo_.set_index(0);
  EXPECT_EQ(log(), Texts{"clicked"});
  combo_.choose(0);
  combo_.choose(1);
  combo_.choose(7);
  EXPECT_EQ(log(), (Texts{"clicked", "clicked"}));
  combo_.annotate({"1", "2"});
  combo_.add("b");
  EXPECT_TRUE(combo_.notes().empty()) << "notes are those of the lines that they were made for";
}

}  // namespace
}  // namespace velanor::screen
