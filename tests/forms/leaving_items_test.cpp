// Leaving the item form: what was changed there is kept, dropped, or neither yet.
#include <gtest/gtest.h>

#include "support/office.h"

namespace velanor::test {
namespace {

class LeavingItems : public testing::Test {
 protected:
  LeavingItems() {
    load(database_, "lib/cards.play");
    office_.component.init();
    office_.component.open("001", "2026", "00010");
    EXPECT_EQ(office_.hand.show_page(1), "");
    EXPECT_EQ(office_.hand.pick(office_.ui.Lst_DatEffet, 0), "");
    EXPECT_EQ(office_.hand.click(office_.ui.Cmd_Detail), "");
  }
  forms::ItemScreen& form() { return dynamic_cast<forms::ItemScreen&>(office_.component.screen().top()); }
  bool in_form() { return &office_.component.screen().top() != &office_.ui; }
  void change_first_item(std::string_view base) {
    EXPECT_EQ(office_.hand.double_click(form().Lst_Code, 0), "");
    EXPECT_EQ(office_.hand.replace_text(form().Txt_Base, base), "");
    EXPECT_EQ(office_.hand.click(form().Cmd_OK), "");
  }
  std::string stored_base() { return std::string(office_.component.card_in_hand()(31, 1, 1)); }

  store::MemoryDatabase database_;
  Office office_{database_};
};

TEST_F(LeavingItems, WhoAnswersNeitherYesNorNoStaysWithWhatWasChanged) {
  const struct {
    screen::Answer answer;
    bool stays;
    const char* base;
  } cases[] = {{screen::Answer::Cancel, true, "900"},
               {screen::Answer::No, false, "10400"},
               {screen::Answer::Yes, false, "900"}};
  for (const auto& test : cases) {
    SCOPED_TRACE(static_cast<int>(test.answer));
    if (!in_form()) {
      EXPECT_EQ(office_.hand.click(office_.ui.Cmd_Detail), "");
    }
    change_first_item("9");
    office_.toolkit.answer = [&](const screen::Message& message) {
      EXPECT_EQ(message.closing, screen::Answer::Cancel);
      return test.answer;
    };
    EXPECT_EQ(office_.hand.click(form().Cmd_Retour), "");
    EXPECT_EQ(in_form(), test.stays);
    EXPECT_EQ(stored_base(), test.base);
  }
}

}  // namespace
}  // namespace velanor::test
