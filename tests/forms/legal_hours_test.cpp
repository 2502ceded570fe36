// The hours of the items against those of the establishment.
#include <gtest/gtest.h>

#include "card/record/element.h"
#include "support/office.h"

namespace velanor::test {
namespace {

TEST(LegalHours, AreAskedAboutWhenTheyAreExceededAndNotWhenTheyAreReached) {
  const std::string kTooMany = "Le nombre d'heure saisi est supérieur à l'horaire légal.";
  const struct {
    const char *establishment, *first, *second;  // hours of the box, bases of two hour items
    bool asks;
  } cases[] = {
      {"151,67", "151,67", "", false},  {"151,67", "151,68", "", true}, {"151,67", "51,67", "100", false},
      {"151,67", "51,68", "100", true}, {"140", "140", "", false},      {"140", "140,01", "", true},
      {"140", "151,67", "", true},      {"160", "151,68", "", false},   {"160", "160,01", "", true},
      {"", "151,67", "", false},        {"", "151,68", "", true},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(std::string(test.establishment) + ": " + test.first + " " + test.second);
    store::MemoryDatabase database;
    load(database, "lib/cards.play");
    // The item 003 is an amount: however high, it is no hours.
    store::DbRecord card = *database.find("VELANORO", "000100012026");
    set_element(card, card::kItemAmount, 1, 2, "9999900");
    set_element(card, card::kItemCode, 1, 3, "001");
    set_element(card, card::kItemBase, 1, 3, "");
    database.put("VELANORO", "000100012026", card);
    Office office(database);
    office.component.init();
    EXPECT_EQ(office.hand.type(office.ui.Txt_Asso, "001"), "");
    EXPECT_EQ(office.hand.type(office.ui.Txt_Aidant, "00010"), "");
    EXPECT_EQ(office.hand.replace_text(office.ui.Txt_HorMensEtab, ""), "");
    EXPECT_EQ(office.hand.type(office.ui.Txt_HorMensEtab, test.establishment), "");
    EXPECT_EQ(office.hand.pick(office.ui.Lst_DatEffet, 0), "");
    EXPECT_EQ(office.hand.click(office.ui.Cmd_Detail), "");
    auto& form = dynamic_cast<forms::ItemScreen&>(office.component.screen().top());
    const auto base = [&](int line, std::string_view hours) {
      EXPECT_EQ(office.hand.double_click(form.Lst_Code, line), "");
      EXPECT_EQ(office.hand.replace_text(form.Txt_Base, ""), "");
      EXPECT_EQ(office.hand.type(form.Txt_Base, hours), "");
      EXPECT_EQ(office.hand.click(form.Cmd_OK), "");
    };
    base(0, test.first);
    if (*test.second) base(2, test.second);
    office.toolkit.messages.clear();
    EXPECT_EQ(office.hand.click(form.Cmd_Retour), "");
    const auto& messages = office.toolkit.messages;
    EXPECT_EQ(std::count(messages.begin(), messages.end(), kTooMany), test.asks ? 1 : 0);
    EXPECT_EQ(messages.size(), test.asks ? 2U : 1U) << testing::PrintToString(messages);
    EXPECT_EQ(&office.component.screen().top(), &office.ui);
  }
}

}  // namespace
}  // namespace velanor::test
