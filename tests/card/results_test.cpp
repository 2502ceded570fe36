// The results of the budget calculation: which changes of a card empty them, and what goes with a card.
#include <gtest/gtest.h>

#include <algorithm>

#include "card/record/element.h"
#include "card/record/named_fields.h"
#include "support/failing_database.h"
#include "support/office.h"

namespace velanor::test {
namespace {

const std::string kId = "000100012026";

class Results : public testing::Test {
 protected:
  // A card with all that the screen can change, calculated.
  Results() {
    load(database_, "lib/cards.play");
    store::DbRecord card = stored();
    for (const card::Field& result : card::kResults) set_element(card, result, calculated(result));
    for (const auto& [field, text] : {std::pair<card::Field, const char*>{card::kProfile2, "002"},
                                      {card::kCeiling, "346400"},
                                      {card::kContractEnd, "22000"},
                                      {card::kEndReason, "01"},
                                      {card::kSocialBase, "200000"},
                                      {card::kMutualEmployer, "4321"}})
      set_element(card, field, text);
    // An item that has a base, a rate and an amount.
    set_element(card, card::kItemCode, 1, 3, "002");
    set_element(card, card::kItemBase, 1, 3, "200");
    set_element(card, card::kItemRate, 1, 3, "125000");
    set_element(card, card::kItemAmount, 1, 3, "2500");
    database_.put("VELANORO", kId, card);
  }

  static std::string calculated(const card::Field& result) { return "9" + std::to_string(result.number); }
  store::DbRecord stored() { return *database_.find("VELANORO", kId); }
  bool results_stand() {
    const store::DbRecord card = stored();
    bool all = true, any = false;
    for (const card::Field& result : card::kResults) {
      all &= element(card, result) == calculated(result);
      any |= !element(card, result).empty();
    }
    EXPECT_EQ(all, any) << "some results stand and some do not";
    return all;
  }

  store::MemoryDatabase database_;
};

// How a clerk changes a card.
struct CardEditor {
  Office& office;

  void click(const char* button) const { ASSERT_EQ(office.hand.click(office.control(button)), "") << button; }
  void enter(const char* box, const char* text) const {
    auto& control = dynamic_cast<screen::TextControl&>(office.control(box));
    ASSERT_EQ(office.hand.replace_text(control, ""), "") << box;
    ASSERT_EQ(office.hand.type(control, text), "") << box;
    ASSERT_EQ(office.hand.leave(), "");
  }
  void choose(const char* box, const char* line) const {
    auto& combo = dynamic_cast<screen::ComboBox&>(office.control(box));
    ASSERT_EQ(office.hand.drop_down(combo), "") << box;
    ASSERT_EQ(office.hand.choose(combo, combo.find(line)), "") << box << " " << line;
  }
  void edit(const char* list, int line) const {
    ASSERT_EQ(office.hand.double_click(dynamic_cast<screen::ListBox&>(office.control(list)), line), "")
        << list;
  }
  // A box of the second amendment.
  void amend(const char* box, const char* text) const {
    edit("Lst_DatEffet", 1);
    enter(box, text);
    click("Cmd_OkDetail");
  }
  // A figure of the first item of the first amendment.
  void reckon(const char* box, const char* text, int item) const {
    ASSERT_EQ(office.hand.pick(office.ui.Lst_DatEffet, 0), "");
    click("Cmd_Detail");
    edit("Lst_Code", item);
    enter(box, text);
    click("Cmd_OK");
    click("Cmd_Retour");
  }
};

TEST_F(Results, AreEmptiedByWhatTheyAreMadeOfAndByNothingElse) {
  const bool kKept = true, kEmptied = false;
  const struct {
    const char* what;
    card::Field field;
    void (*change)(const CardEditor&);
    bool kept;
  } cases[] = {
      {"sector", card::kSector, [](const CardEditor& c) { c.choose("Cbo_Secteur", "Agglomération"); }, kKept},
      {"town", card::kTown, [](const CardEditor& c) { c.choose("Cbo_Com", "Eze"); }, kKept},
      {"birth", card::kBirth, [](const CardEditor& c) { c.enter("Txt_DatNais", "02/02/1980"); }, kKept},
      {"social base", card::kSocialBase, [](const CardEditor& c) { c.enter("Txt_AssSS", "1900"); }, kKept},
      {"new measure", card::kNewMeasure,
       [](const CardEditor& c) {
         c.edit("Lst_DatEffet", 1);
         c.choose("Cbo_NouvMes", "OUI");
         c.click("Cmd_OkDetail");
       },
       kKept},
      {"establishment", card::kEstablishment, [](const CardEditor& c) { c.enter("Txt_CodEtab", "002"); },
       kKept},
      {"nature", card::kContractNature,
       [](const CardEditor& c) { c.choose("Cbo_NatureContrat", "02 Apprentissage"); }, kKept},
      {"education", card::kEducation,
       [](const CardEditor& c) { c.choose("Cbo_EtudeAidant", "1 Sans diplôme"); }, kKept},
      {"branch", card::kBranchEntry, [](const CardEditor& c) { c.enter("Txt_DateBranche", "02/02/2015"); },
       kKept},

      {"name", card::kName, [](const CardEditor& c) { c.enter("Txt_NomAidant", "Martin"); }, kEmptied},
      {"hours of the establishment", card::kEstablishmentHours,
       [](const CardEditor& c) { c.enter("Txt_HorMensEtab", "140"); }, kEmptied},
      {"contract type", card::kContractType, [](const CardEditor& c) { c.click("Opt_CDD"); }, kEmptied},
      {"staff kind", card::kStaffKind, [](const CardEditor& c) { c.click("Opt_Admin"); }, kEmptied},
      {"activity", card::kActivity,
       [](const CardEditor& c) {
         c.edit("Lst_Activites", 1);
         c.enter("Txt_Pourc", "0");
         c.click("Cmd_OkAct");
         c.click("Cmd_AjAct");
         c.choose("Cbo_Activites", "Encadrement");
         c.enter("Txt_Pourc", "33,33");
         c.click("Cmd_OkAct");
       },
       kEmptied},
      {"shares", card::kShare,
       [](const CardEditor& c) {
         for (int line : {0, 1}) {
           c.edit("Lst_Activites", line);
           c.enter("Txt_Pourc", "50");
           c.click("Cmd_OkAct");
         }
       },
       kEmptied},
      {"effective date", card::kEffective, [](const CardEditor& c) { c.amend("Txt_DatEffet", "02/02/2026"); },
       kEmptied},
      {"grid start", card::kGridStart,
       [](const CardEditor& c) {
         c.edit("Lst_DatEffet", 0);
         c.enter("Txt_DatDepGrille", "02/02/2024");
         c.click("Cmd_OkDetail");
       },
       kEmptied},
      {"qualification", card::kQualification,
       [](const CardEditor& c) {
         c.edit("Lst_DatEffet", 0);
         c.choose("Cbo_Qualif", "ED");
         c.click("Cmd_OkDetail");
       },
       kEmptied},
      {"grid", card::kGrid,
       [](const CardEditor& c) {
         c.edit("Lst_DatEffet", 0);
         c.choose("Cbo_Grille", "Technicien");
         c.choose("Cbo_Qualif", "RS");
         c.click("Cmd_OkDetail");
       },
       kEmptied},
      {"category", card::kCategory, [](const CardEditor& c) { c.amend("Txt_Categorie", "b"); }, kEmptied},
      {"hourly rate", card::kHourlyRate, [](const CardEditor& c) { c.amend("Txt_TxHor", "16"); }, kEmptied},
      {"profile", card::kProfile1, [](const CardEditor& c) { c.enter("Txt_Profil1", "002"); }, kEmptied},
      {"second profile", card::kProfile2, [](const CardEditor& c) { c.enter("Txt_Profil2", "001"); },
       kEmptied},
      {"exempted hours", card::kExemptedHours, [](const CardEditor& c) { c.enter("Txt_HresExo", "99,99"); },
       kEmptied},
      {"ceiling", card::kCeiling, [](const CardEditor& c) { c.enter("Txt_PlafSecu", "3000"); }, kEmptied},
      {"end", card::kContractEnd, [](const CardEditor& c) { c.enter("Txt_DatFin", "31/12/2027"); }, kEmptied},
      {"end reason", card::kEndReason,
       [](const CardEditor& c) { c.choose("Cbo_MotifFin", "Fin de contrat"); }, kEmptied},
      {"items", card::kItemCode,
       [](const CardEditor& c) {
         EXPECT_EQ(c.office.hand.pick(c.office.ui.Lst_DatEffet, 0), "");
         c.click("Cmd_Detail");
         c.edit("Lst_Code", 1);
         c.click("Cmd_Supprimer");
         c.click("Cmd_Retour");
       },
       kEmptied},
      {"base of an item", card::kItemBase, [](const CardEditor& c) { c.reckon("Txt_Base", "105", 0); },
       kEmptied},
      {"rate of an item", card::kItemRate, [](const CardEditor& c) { c.reckon("Txt_Taux", "13", 2); },
       kEmptied},
      {"amount of an item", card::kItemAmount, [](const CardEditor& c) { c.reckon("Txt_Montant", "26", 1); },
       kEmptied},
      {"mutual insurance, employee", card::kMutualEmployee,
       [](const CardEditor& c) { c.enter("Txt_MutSalContrat", "12,35"); }, kEmptied},
      {"mutual insurance, employer", card::kMutualEmployer,
       [](const CardEditor& c) { c.enter("Txt_MutPatContrat", "43,22"); }, kEmptied},
      {"charge item", card::kMutualCharge, [](const CardEditor& c) { c.enter("Txt_ChargMutContrat", "401"); },
       kEmptied},
  };
  for (const card::Field& field : card::card_fields()) {
    const bool locked = field == card::kAgreement || field == card::kContractStart;
    const bool told_below = field == card::kMonthlyTime;
    const bool told = std::any_of(std::begin(cases), std::end(cases),
                                  [&](const auto& test) { return test.field == field; });
    EXPECT_TRUE(told || told_below || locked)
        << "tests/card/results_test.cpp does not say whether the results stand when " << field.name
        << " changes";
  }
  const store::DbRecord before = stored();
  for (const auto& test : cases) {
    SCOPED_TRACE(test.what);
    database_.put("VELANORO", kId, before);
    Office office(database_);
    office.component.init();
    const CardEditor clerk{office};
    clerk.enter("Txt_Asso", "001");
    EXPECT_EQ(office.hand.type(office.ui.Txt_Aidant, "00010"), "");
    test.change(clerk);
    clerk.click("Cmd_OK");
    EXPECT_TRUE(office.ui.Cmd_Sortir.enabled())
        << "not saved: " << testing::PrintToString(office.toolkit.messages);
    EXPECT_NE(element(stored(), test.field), element(before, test.field)) << "nothing was changed";
    EXPECT_EQ(results_stand(), test.kept);
  }
}

// Hours that are typed count for administrative staff alone.
TEST_F(Results, AreEmptiedByTheMonthlyTimeOfAdministrativeStaff) {
  store::DbRecord card = stored();
  set_element(card, card::kStaffKind, "A");
  set_element(card, card::kMonthlyTime, 2, "15167");
  database_.put("VELANORO", kId, card);
  Office office(database_);
  office.component.init();
  const CardEditor clerk{office};
  clerk.enter("Txt_Asso", "001");
  EXPECT_EQ(office.hand.type(office.ui.Txt_Aidant, "00010"), "");
  clerk.amend("Txt_DureMens", "120");
  clerk.click("Cmd_OK");
  EXPECT_EQ(element(stored(), card::kMonthlyTime, 2), "12000");
  EXPECT_FALSE(results_stand());
}

// ---- The calculation records of a card that is deleted.

class Removal : public Results {
 protected:
  static constexpr int kMonths = 12;
  Removal() {
    const store::DbRecord some = stored();
    database_.put("BUDGETHISTORCUMUL", kId, some);
    database_.put("BUDGETHISTORCUMUL", "000200012026", some);
    for (int m = 1; m <= kMonths; ++m) database_.put("BUDGETDETAILCALCUL", month(m), some);
  }
  static std::string month(int m) { return kId + (m < 10 ? "0" : "") + std::to_string(m); }
  // The ids of a file, in order.
  std::vector<std::string> ids(const char* file) {
    std::vector<std::string> ids;
    database_.for_each(file, [&](std::string_view id, const store::DbRecord&) { ids.emplace_back(id); });
    return ids;
  }
  void remove_card(store::Database& database) {
    Office office(database);
    office.component.init();
    EXPECT_EQ(office.hand.type(office.ui.Txt_Asso, "001"), "");
    EXPECT_EQ(office.hand.type(office.ui.Txt_Aidant, "00010"), "");
    EXPECT_EQ(office.hand.click(office.ui.Cmd_Supp), "");
    EXPECT_TRUE(office.ui.Cmd_Sortir.enabled());
  }
};

// Removals and openings fail by their file or id; everything else works.
class Refusing : public store::WrappedDatabase {
 public:
  Refusing(store::Database& inner, std::string refused)
      : WrappedDatabase(inner), refused_(std::move(refused)) {}

 protected:
  void before(const store::DatabaseCall& call) override {
    using Kind = store::DatabaseCall::Kind;
    const bool opens = call.kind == Kind::kOpen && call.file == refused_;
    const bool removes = call.kind == Kind::kDelete && call.id == refused_;
    if (opens || removes) throw store::DbError(store::kStoreFailure, store::kPlannedFailure);
  }

 private:
  std::string refused_;
};

TEST_F(Removal, TakesTheTotalAndTheTwelveMonthsOfTheCardAlone) {
  remove_card(database_);
  EXPECT_FALSE(database_.find("VELANORO", kId));
  EXPECT_EQ(ids("BUDGETHISTORCUMUL"), std::vector<std::string>{"000200012026"});
  EXPECT_EQ(ids("BUDGETDETAILCALCUL"), std::vector<std::string>{});
}

TEST_F(Removal, OfTheMonthsGoesOnWhenTheTotalFails) {
  Refusing database(database_, "BUDGETHISTORCUMUL");
  remove_card(database);
  EXPECT_FALSE(database_.find("VELANORO", kId));
  EXPECT_TRUE(database_.find("BUDGETHISTORCUMUL", kId));
  EXPECT_EQ(ids("BUDGETDETAILCALCUL"), std::vector<std::string>{});
}

TEST_F(Removal, OfElevenMonthsGoesOnWhenOneFails) {
  for (int m : {1, 7, 12}) {
    SCOPED_TRACE(m);
    for (int other = 1; other <= kMonths; ++other) database_.put("BUDGETDETAILCALCUL", month(other), {});
    database_.put("VELANORO", kId, *database_.find("VELANORO", "000100012025"));
    Refusing database(database_, month(m));
    remove_card(database);
    EXPECT_EQ(ids("BUDGETDETAILCALCUL"), std::vector<std::string>{month(m)});
    EXPECT_EQ(ids("BUDGETHISTORCUMUL"), std::vector<std::string>{"000200012026"});
  }
}

TEST_F(Removal, OfTheTotalStandsWhenTheMonthsCannotBeOpened) {
  Refusing database(database_, "BUDGETDETAILCALCUL");
  remove_card(database);
  EXPECT_EQ(ids("BUDGETHISTORCUMUL"), std::vector<std::string>{"000200012026"});
  EXPECT_EQ(ids("BUDGETDETAILCALCUL").size(), 12U);
}

}  // namespace
}  // namespace velanor::test
