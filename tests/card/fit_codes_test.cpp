// Codes that a file has and that no card may take: the screen, the check and the import refuse the same.
#include "card/record/fit_codes.h"

#include <gtest/gtest.h>

#include <sstream>

#include "card/record/element.h"
#include "exchange/import_csv.h"
#include "office/card_check.h"
#include "support/office.h"

namespace velanor::test {
namespace {

const std::string kId = "000100012026";

class FitCodes : public testing::Test {
 protected:
  FitCodes() { load(database_, "lib/cards.play"); }

  // Types a code into its box on a new card; what was said then.
  std::string typed(screen::TextBox card::CardScreen::*box, const std::string& code) {
    Office office(database_);
    office.component.init();
    EXPECT_EQ(office.hand.type(office.ui.Txt_Asso, "001"), "");
    EXPECT_EQ(office.hand.click(office.ui.Cmd_Ajout), "");
    EXPECT_EQ(office.hand.replace_text(office.ui.*box, ""), "");
    EXPECT_EQ(office.hand.type(office.ui.*box, code), "");
    const bool refused = !office.toolkit.messages.empty();
    EXPECT_EQ((office.ui.*box).text(), refused ? "" : code);
    return refused ? office.toolkit.messages.back() : "";
  }
  // What the check says of the field on a card that has the code.
  std::string checked(const card::Field& field, const std::string& code) {
    store::DbRecord card = *database_.find("VELANORO", kId);
    set_element(card, field, code);
    std::string told;
    for (const card::Fault& fault : office::CardCheck(database_).faults_of(kId, card)) {
      if (fault.sentence().find(field.noun) != std::string::npos) told += fault.sentence();
    }
    return told;
  }
  // What a rehearsal of its import says.
  std::string imported(const card::Field& field, const std::string& code) {
    std::istringstream table("id;" + std::string(field.name) + "\n" + kId + ";" + code + "\n");
    std::string told;
    for (const auto& fault : exchange::import_csv(table, database_, "VELANORO", {.rehearsal = true}).faults)
      told += fault.sentence;
    return told;
  }

  store::MemoryDatabase database_;
};

TEST_F(FitCodes, AreTheOnlyOnesThatAnyWayOntoACardTakes) {
  const struct {
    card::Field field;
    screen::TextBox card::CardScreen::*box;
    const char *fit, *unfit, *refusal;
  } cases[] = {
      {card::kAgreement, &card::CardScreen::Txt_ConvCol, "03", "02",
       "Vous ne pouvez pas sélectionner cette convention."},
      {card::kProfile1, &card::CardScreen::Txt_Profil1, "002", "003",
       "Vous ne pouvez pas affecter un profil mandataire."},
      {card::kProfile2, &card::CardScreen::Txt_Profil2, "002", "003",
       "Vous ne pouvez pas affecter un profil mandataire."},
      {card::kMutualCharge, &card::CardScreen::Txt_ChargMutContrat, "401", "403",
       "La rubrique de charge n'existe pas ou ne répond pas aux critères, veuillez la ressaisir."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.field.name);
    const std::string fault =
        std::string(c.field.noun) + " « " + c.unfit + " » ne convient pas. " + c.refusal;
    EXPECT_EQ(typed(c.box, c.unfit), c.refusal);
    EXPECT_EQ(checked(c.field, c.unfit), fault);
    EXPECT_EQ(imported(c.field, c.unfit), fault);
    EXPECT_EQ(typed(c.box, c.fit) + checked(c.field, c.fit) + imported(c.field, c.fit), "");
  }
}

// What was stored before the rule is not judged again by an import that leaves it as it is.
TEST_F(FitCodes, ThatStandOnACardAlreadyAreTakenAgain) {
  store::DbRecord card = *database_.find("VELANORO", kId);
  set_element(card, card::kProfile1, "003");
  database_.put("VELANORO", kId, card);
  EXPECT_EQ(imported(card::kProfile1, "003"), "");
  EXPECT_EQ(imported(card::kProfile1, "3"), "") << "as a spreadsheet gives it back";
  EXPECT_NE(imported(card::kProfile2, "3"), "");
}

}  // namespace
}  // namespace velanor::test
