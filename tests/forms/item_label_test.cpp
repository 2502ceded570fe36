// The label of an item, typed: two items may bear one.
#include <gtest/gtest.h>

#include "support/office.h"

namespace velanor::test {
namespace {

const std::string kSeveral =
    "Plusieurs libellés de la liste correspondent à ce texte, veuillez en choisir un.";

class ItemLabel : public testing::Test {
 protected:
  ItemLabel() {
    load(database_, "lib/cards.play");
    for (const char* code : {"011", "012"}) {
      store::DbRecord item = *database_.find("RUBSAISIE", "003");
      item.set(1, "Panier");
      database_.put("RUBSAISIE", code, item);
    }
    office_.component.init();
    office_.component.open("001", "2026", "00010");
    EXPECT_EQ(office_.hand.show_page(1), "");
    EXPECT_EQ(office_.hand.pick(office_.ui.Lst_DatEffet, 0), "");
    EXPECT_EQ(office_.hand.click(office_.ui.Cmd_Detail), "");
    EXPECT_EQ(office_.hand.click(form().Cmd_Ajouter), "");
  }
  forms::ItemScreen& form() { return dynamic_cast<forms::ItemScreen&>(office_.component.screen().top()); }

  store::MemoryDatabase database_;
  Office office_{database_};
};

TEST_F(ItemLabel, ThatMoreThanOneItemBearsIsNotTakenForTheFirst) {
  for (const char* typed : {"Panier", "panier", "pan"}) {
    SCOPED_TRACE(typed);
    office_.toolkit.messages.clear();
    EXPECT_EQ(office_.hand.replace_text(form().Cbo_LibRub, typed), "");
    EXPECT_EQ(office_.hand.focus(form().Txt_Montant), "");
    EXPECT_EQ(form().Txt_Code.text(), "");
    EXPECT_EQ(office_.toolkit.messages, std::vector{kSeveral});
    EXPECT_EQ(form().focus(), &form().Cbo_LibRub);
    // Said once: whoever insists may go.
    EXPECT_EQ(office_.hand.focus(form().Txt_Montant), "");
    EXPECT_EQ(office_.toolkit.messages.size(), 1U);
  }
}

TEST_F(ItemLabel, IsToldApartByItsCodeAndEachItemCanBeChosen) {
  const screen::ComboBox& labels = form().Cbo_LibRub;
  const int first = labels.find("Panier");
  EXPECT_EQ(labels.notes()[static_cast<std::size_t>(first)], "011");
  EXPECT_EQ(labels.notes()[static_cast<std::size_t>(first) + 1], "012");
  EXPECT_EQ(labels.notes()[static_cast<std::size_t>(labels.find("Kilomètres"))], "");
  EXPECT_EQ(office_.hand.choose(form().Cbo_LibRub, first + 1), "");
  EXPECT_EQ(form().Txt_Code.text(), "012");
}

TEST_F(ItemLabel, OfOneItemIsTakenByAnyPartOfIt) {
  EXPECT_EQ(office_.hand.replace_text(form().Cbo_LibRub, "kilo"), "");
  EXPECT_EQ(office_.hand.focus(form().Txt_Base), "");
  EXPECT_EQ(form().Txt_Code.text(), "004");
  EXPECT_EQ(office_.toolkit.messages, std::vector<std::string>());
}

}  // namespace
}  // namespace velanor::test
