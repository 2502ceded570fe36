// "Saisie Automatique": what a template makes of hours worked or paid.
#include <gtest/gtest.h>

#include "card/record/element.h"
#include "forms/item_template.h"
#include "support/office.h"
#include "text/utf8.h"

namespace velanor::test {
namespace {

// The template of the agreement and grouping: 110 hours paid for 100 worked; an item on the hours
// worked, one on the hours paid, a fixed amount, one that has left its file.
class AutomaticFilling : public testing::Test {
 protected:
  AutomaticFilling() {
    load(database_, "lib/cards.play");
    store::DbRecord card = *database_.find("VELANORO", "000100012026");
    for (const card::Field& column : card::kItemColumns) set_element(card, column, 1, "");
    database_.put("VELANORO", "000100012026", card);
  }

  // Opens the items of the first amendment and fills them; the lines as the form shows them.
  std::vector<std::string> filled(const char* box, const char* hours) {
    Office office(database_);
    office.component.init();
    EXPECT_EQ(office.hand.type(office.ui.Txt_Asso, "001"), "");
    EXPECT_EQ(office.hand.type(office.ui.Txt_Aidant, "00010"), "");
    EXPECT_EQ(office.hand.pick(office.ui.Lst_DatEffet, 0), "");
    EXPECT_EQ(office.hand.click(office.ui.Cmd_Detail), "");
    EXPECT_EQ(office.hand.click(office.control("Cmd_SaisieAuto")), "");
    EXPECT_EQ(office.component.screen().top().name(), "Frm_SaisieHres");
    EXPECT_EQ(office.hand.type(dynamic_cast<screen::TextControl&>(office.control(box)), hours), "");
    EXPECT_EQ(office.hand.click(office.control("Cmd_OK")), "");
    auto& form = dynamic_cast<forms::ItemScreen&>(office.component.screen().top());
    std::vector<std::string> lines;
    for (int i = 0; i < form.Lst_Code.count(); ++i) {
      std::string line;
      for (screen::ListBox* column : form.columns()) line += std::string(text::trim(column->line(i))) + "|";
      lines.push_back(line);
    }
    EXPECT_EQ(office.toolkit.hourglasses, 0);
    EXPECT_EQ(office.hand.click(office.control("Cmd_Retour")), "");
    EXPECT_EQ(element(office.component.card_in_hand(), card::kItemBase, 1, 1), "10000");
    EXPECT_EQ(element(office.component.card_in_hand(), card::kItemBase, 1, 2), "11000");
    EXPECT_EQ(office.ui.Lst_DureMens.line(0), "100,00");
    return lines;
  }

  store::MemoryDatabase database_;
  const std::vector<std::string> kLines{"001|Heures contrat|100,00|0,00|0,00|",
                                        "002|Prime de nuit|110,00|12,5000|1375,00|",
                                        "003|Indemnité forfaitaire|0,00|0,00|45,00|"};
};

TEST_F(AutomaticFilling, MakesHoursPaidOfHoursWorked) { EXPECT_EQ(filled("Txt_NbHresTrav", "100"), kLines); }

TEST_F(AutomaticFilling, MakesHoursWorkedOfHoursPaid) {
  EXPECT_EQ(filled("Txt_NbHresPayees", "110"), kLines);
}

std::string texts(const std::vector<card::ItemText>& items) {
  std::string text;
  for (const auto& item : items) {
    text += item.code + "|";
    for (const auto& figure : item.figures) text += figure.shown + "|";
    text += " ";
  }
  return text;
}

// One line of a template each; item 002 has a rate of its own, 003 has none.
TEST_F(AutomaticFilling, TakesBaseRateAndAmountFromWhereTheTemplateSays) {
  const struct {
    const char* what;
    std::vector<std::pair<int, const char*>> line;
    const char* ratio;
    forms::Hours hours;
    const char* made;
  } cases[] = {
      {"worked of worked", {{1, "003"}, {2, "T"}}, "11000", {"100,00", "T"}, "003|100,00||| "},
      {"worked of paid", {{1, "003"}, {2, "T"}}, "11000", {"100,00", "P"}, "003|90,91||| "},
      {"paid of worked", {{1, "003"}, {2, "P"}}, "11000", {"100,00", "T"}, "003|110,00||| "},
      {"paid of paid", {{1, "003"}, {2, "P"}}, "11000", {"100,00", "P"}, "003|100,00||| "},
      {"no ratio", {{1, "003"}, {2, "P"}}, "", {"100,00", "T"}, "003|100,00||| "},
      {"a ratio of nothing", {{1, "003"}, {2, "P"}}, "0", {"100,00", "T"}, "003|100,00||| "},
      {"half a hundredth up", {{1, "003"}, {2, "P"}}, "15000", {"0,01", "T"}, "003|0,02||| "},
      {"fixed base", {{1, "003"}, {3, "1250"}}, "", {"100,00", "T"}, "003|12,50||| "},
      {"rate of the item", {{1, "002"}, {2, "T"}}, "", {"2,00", "T"}, "002|2,00|12,5000|25,00| "},
      {"rate of the template",
       {{1, "002"}, {2, "T"}, {4, "20000"}},
       "",
       {"2,00", "T"},
       "002|2,00|2,0000|4,00| "},
      {"amount where a base lacks", {{1, "002"}, {5, "999"}}, "", {"2,00", "T"}, "002||12,5000|9,99| "},
      {"product before amount",
       {{1, "002"}, {2, "T"}, {5, "999"}},
       "",
       {"2,00", "T"},
       "002|2,00|12,5000|25,00| "},
      {"an item that has gone", {{1, "777"}, {2, "T"}}, "", {"2,00", "T"}, ""},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.what);
    store::DbRecord record;
    for (const auto& [attribute, text] : test.line) record.set(attribute, 1, text);
    record.set(6, test.ratio);
    EXPECT_EQ(texts(forms::fill_template(record, test.hours, *database_.OpenFile("RUBSAISIE"))), test.made);
  }
}

}  // namespace
}  // namespace velanor::test
