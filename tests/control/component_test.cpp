// The component in its host: what it asks for, what it opens, how it starts, fails and leaves.
#include <gtest/gtest.h>

#include "support/failing_database.h"
#include "support/office.h"

namespace velanor::test {
namespace {

using Names = std::vector<std::string>;

// Notes the files that are opened and the statements that are sent; a file can be made to fail.
class Watched : public store::WrappedDatabase {
 public:
  using WrappedDatabase::WrappedDatabase;

  std::string broken_file;
  Names opened;
  Names statements;

 protected:
  using Kind = store::DatabaseCall::Kind;
  void before(const store::DatabaseCall& call) override {
    if (call.kind == Kind::kSelect) statements.emplace_back(store::DbRecord::from_encoded(call.id)(1));
    if (call.kind != Kind::kOpen) return;
    if (call.file == broken_file) throw store::DbError(store::kStoreFailure, "fichier abîmé");
    opened.emplace_back(call.file);
  }
};

class Component : public testing::Test {
 protected:
  Component() { load(memory_, "lib/cards.play"); }
  store::MemoryDatabase memory_;
  Watched database_{memory_};
};

TEST_F(Component, OpensItsFilesOnceInOrderAndAsksForItsRightsOnce) {
  Office office(database_);
  office.component.init();
  EXPECT_EQ(database_.opened, (Names{"ACTIVITES", "ASSOCIATION", "VELANORO", "BUDGETPARAM", "COMMUNES",
                                     "CONVENTIONCOL", "GRILLESCCBUDGET", "PROFIL", "RUBCHARGE", "RUBSAISIE",
                                     "SECTEUR", "TABLES", "BUDGETTRAMESAISIE"}));
  EXPECT_EQ(office.host.asked, Names{"ELEMBUDGETPERS"});
  EXPECT_EQ(database_.statements,
            (Names{"SSELECT VELANORO PAR CodeAsso PAR-DECR Annee", "SSELECT ASSOCIATION 0 PAR 0"}));
  EXPECT_EQ(office.ui.Cbo_EtudeAidant.items(), (Names{"1 Sans diplôme", "3 CAP, BEP"}));
}

TEST_F(Component, AnEntityWhoseCodeHoldsABracketIsOfferedItsOwnAndNothingElse) {
  memory_.put("ASSOCIATION", "[01", store::DbRecord::from_encoded("À crochet"));
  memory_.put("ACTIVITES", "[01010", *memory_.find("ACTIVITES", "007010"));
  memory_.put("VELANORO", "00077[012026", *memory_.find("VELANORO", "000100072024"));
  Office office(database_);
  office.component.init();
  EXPECT_EQ(office.hand.replace_text(office.ui.Cbo_Asso, "À crochet"), "");
  EXPECT_EQ(office.hand.focus(office.ui.Cbo_Periode), "");
  EXPECT_EQ(office.ui.Cbo_Aidant.items(), Names{"PETIT ANNE"});
  EXPECT_EQ(office.hand.type(office.ui.Txt_Aidant, "00077"), "");
  EXPECT_EQ(office.ui.Cbo_Activites.items(), Names{"Hébergement"});
}

TEST_F(Component, AFileOrParameterRecordThatCannotBeReadEndsTheStart) {
  {
    Office office(database_);
    database_.broken_file = "SECTEUR";
    EXPECT_THROW(office.component.init(), store::DbError);
    EXPECT_TRUE(office.component.closed());
    EXPECT_NE(office.hand.type(office.ui.Txt_Asso, "001"), "");
  }
  database_.broken_file.clear();
  for (const char* id : {"FINCONTRAT", "QUALIF", "REGROUPBUDGET", "NATURECONTRAT", "DIPLOMES"}) {
    SCOPED_TRACE(id);
    const auto record = *memory_.find("TABLES", id);
    memory_.remove("TABLES", id);
    Office office(database_);
    try {
      office.component.init();
      ADD_FAILURE() << "started";
    } catch (const store::DbError& error) {
      EXPECT_EQ(error.number(), store::kMissingRecord);
    }
    memory_.put("TABLES", id, record);
  }
  Office office(database_);
  EXPECT_NO_THROW(office.component.init());
}

TEST_F(Component, TheDefaultAgreementIsTheOneThatAllParametersName) {
  const struct {
    Names values;
    const char* agreement;
  } cases[] = {{{"06", "06"}, "06"}, {{"01", "06"}, ""}, {{}, ""}, {{"03"}, "03"}};
  for (const auto& test : cases) {
    SCOPED_TRACE(test.agreement);
    store::DbRecord parameters;
    for (const auto& value : test.values) parameters.set(10, store::kAppend, value);
    memory_.put("BUDGETPARAM", "1", parameters);
    Office office(database_);
    office.component.init();
    EXPECT_EQ(office.hand.type(office.ui.Txt_Asso, "001"), "");
    EXPECT_EQ(office.hand.click(office.ui.Cmd_Ajout), "");
    EXPECT_EQ(office.ui.Txt_ConvCol.text(), test.agreement);
  }
  memory_.remove("BUDGETPARAM", "1");
  Office office(database_);
  office.component.init();
  EXPECT_EQ(office.toolkit.messages, Names{});
}

TEST_F(Component, ASingleEntityIsTakenAtOnce) {
  for (const char* id : {"007", "009"}) memory_.remove("ASSOCIATION", id);
  Office office(database_);
  office.component.init();
  EXPECT_EQ(office.ui.Txt_Asso.text(), "001");
  EXPECT_EQ(office.ui.Cbo_Asso.text(), "Aide aux Familles du Val");
  EXPECT_EQ(office.ui.Cbo_Aidant.items(), (Names{"DURAND PAUL", "MARTIN JEANNE"}));
  EXPECT_EQ(office.ui.focus(), &office.ui.Txt_Aidant);
}

TEST_F(Component, HelpAndContextMenuAndExitReachTheHost) {
  Office office(database_);
  office.component.init();
  office.host.asked.clear();
  EXPECT_EQ(office.hand.right_press(), "");
  EXPECT_EQ(office.toolkit.popped_up, Names{"Mnu_Aide"});
  EXPECT_EQ(office.hand.click(office.ui.Mnu_Sommaire), "");
  EXPECT_EQ(office.host.asked, Names{"Velanor.htm|Fiches du personnel|P|client"});
  EXPECT_EQ(office.hand.click(office.ui.Cmd_Sortir), "");
  EXPECT_EQ(office.host.asked.back(), "unload");
  EXPECT_TRUE(office.component.closed());
  EXPECT_NE(office.hand.click(office.ui.Cmd_Sortir), "");
}

TEST_F(Component, TwoComponentsOnOneDatabaseShareItsFilesAndNothingElse) {
  Office first(database_), second(database_);
  first.component.init();
  const auto opened = database_.opened;
  second.component.init();
  EXPECT_EQ(database_.opened, opened);
  EXPECT_EQ(first.hand.type(first.ui.Txt_Asso, "001"), "");
  EXPECT_EQ(second.hand.type(second.ui.Txt_Asso, "007"), "");
  EXPECT_EQ(first.hand.type(first.ui.Txt_Aidant, "00010"), "");
  EXPECT_EQ(second.ui.Cbo_Aidant.items(), Names{"PETIT ANNE"});
  EXPECT_TRUE(second.ui.Txt_Asso.enabled());
  EXPECT_EQ(second.hand.click(second.ui.Cmd_Sortir), "");
  EXPECT_EQ(first.hand.click(first.ui.Cmd_OK), "");
  EXPECT_EQ(first.toolkit.messages, Names{});
  EXPECT_EQ(first.ui.focus(), &first.ui.Txt_Aidant);
}

// An entry utility of the host's own: it may refuse a date, and then no message comes.
TEST_F(Component, TheEntryUtilityOfTheHostMayRefuseADate) {
  class Strict : public entry::UtilSaisie {
   public:
    std::string CompleteDate(std::string_view typed, bool& refused) override {
      const std::string completed = own_->CompleteDate(typed, refused);
      refused = typed == "1/1/30";
      return completed;
    }
    bool DateRefused(bool& refused) override { return refused; }
    entry::CheckedDate CheckDate(std::string_view text) override {
      entry::CheckedDate date = own_->CheckDate(text);
      if (text == "02/02/2026") date.second = "1234567";
      return date;
    }
    std::string InternalToDate(std::string_view day) override { return own_->InternalToDate(day); }
    char32_t FilterNumericKey(std::string_view text, char32_t key, int digits) override {
      return own_->FilterNumericKey(text, key, digits);
    }
    std::string FormatAmount(std::string_view text, int decimals, int digits) override {
      return own_->FormatAmount(text, decimals, digits);
    }
    std::string FormatColumn(std::string_view text, int digits, int decimals) override {
      return own_->FormatColumn(text, digits, decimals);
    }
    std::string UnformatNumber(std::string_view text) override { return own_->UnformatNumber(text); }

   private:
    std::unique_ptr<entry::UtilSaisie> own_ = entry::make_util_saisie();
  } strict;
  Office office(database_, &strict);
  office.component.init();
  EXPECT_EQ(office.hand.type(office.ui.Txt_Asso, "001"), "");
  EXPECT_EQ(office.hand.type(office.ui.Txt_Aidant, "00010"), "");
  EXPECT_EQ(office.hand.type(office.ui.Txt_DatFin, "01/01/2027"), "");
  EXPECT_EQ(office.hand.leave(), "");
  EXPECT_TRUE(office.ui.Cbo_MotifFin.enabled());
  EXPECT_EQ(office.hand.replace_text(office.ui.Txt_DatFin, "1/1/30"), "");
  EXPECT_EQ(office.hand.leave(), "");
  EXPECT_EQ(office.ui.focus(), &office.ui.Txt_DatFin);
  EXPECT_FALSE(office.ui.Cbo_MotifFin.enabled());
  EXPECT_EQ(office.toolkit.messages, Names{});
  // A second value of more than six characters is refused for the effective date alone.
  EXPECT_EQ(office.hand.replace_text(office.ui.Txt_DatFin, "02/02/2026"), "");
  EXPECT_EQ(office.hand.click(office.ui.Cmd_AjDetail), "");
  EXPECT_EQ(office.toolkit.messages, Names{});
  EXPECT_EQ(office.hand.replace_text(office.ui.Txt_DatEffet, "02/02/2026"), "");
  EXPECT_EQ(office.hand.leave(), "");
  EXPECT_EQ(office.toolkit.messages, Names{"Erreur de saisie dans la date, veuillez la ressaisir."});
  EXPECT_EQ(office.ui.focus(), &office.ui.Txt_DatEffet);
}

// Whichever call of the store fails while a card is saved: the error reaches the host, and either
// the card is still open with all that was typed, or it is stored and the screen browses.
TEST_F(Component, AFailureWhileSavingLosesNothing) {
  bool finished = false;
  for (int n = 1; !finished; ++n) {
    SCOPED_TRACE(n);
    ASSERT_LT(n, 100);
    store::MemoryDatabase memory;
    load(memory, "lib/cards.play");
    store::FailingDatabase failing(memory);
    Office office(failing);
    office.component.init();
    EXPECT_EQ(office.hand.type(office.ui.Txt_Asso, "001"), "");
    EXPECT_EQ(office.hand.type(office.ui.Txt_Aidant, "00010"), "");
    EXPECT_EQ(office.hand.replace_text(office.ui.Txt_HorMensEtab, "140"), "");
    EXPECT_EQ(office.hand.leave(), "");
    const store::DbRecord in_hand = office.component.card_in_hand();
    failing.fail_at(n);
    std::string told;
    try {
      EXPECT_EQ(office.hand.click(office.ui.Cmd_OK), "");
      finished = true;
    } catch (const store::DbError& error) {
      told = error.what();
    }
    const bool stored = (*memory.find("VELANORO", "000100012026"))(2) == "14000";
    EXPECT_EQ(told.starts_with("La fiche est enregistrée."), stored && !finished) << told;
    EXPECT_EQ(office.ui.Cmd_OK.enabled(), !stored);
    EXPECT_EQ(office.ui.Cmd_Sortir.enabled(), stored);
    EXPECT_EQ(office.ui.Txt_HorMensEtab.text(), stored ? "" : "140,00");
    if (stored) continue;
    EXPECT_EQ(office.component.card_in_hand(), in_hand);
    EXPECT_EQ(office.hand.click(office.ui.Cmd_OK), "");
    EXPECT_EQ((*memory.find("VELANORO", "000100012026"))(2), "14000");
    EXPECT_EQ((*memory.find("VELANORO", "000100012026"))(25), "");
  }
}

// Another clerk's new card takes the code that was just found free.
class Overtaken : public store::WrappedDatabase {
 public:
  Overtaken(store::Database& database, store::MemoryDatabase& other)
      : WrappedDatabase(database), other_(other) {}

 protected:
  void before(const store::DatabaseCall& call) override {
    if (call.kind != store::DatabaseCall::Kind::kWrite || overtaken_ == 2) return;
    ++overtaken_;
    store::DbRecord theirs;
    theirs.set(1, "LEUR FICHE");
    other_.put(call.file, call.id, theirs);
  }

 private:
  store::MemoryDatabase& other_;
  int overtaken_ = 0;
};

TEST_F(Component, TheLaterOfTwoClerksGetsTheNextFreeCode) {
  Overtaken database(memory_, memory_);
  Office office(database);
  office.component.init();
  EXPECT_EQ(office.hand.type(office.ui.Txt_Asso, "001"), "");
  EXPECT_EQ(office.hand.type(office.ui.Txt_Aidant, "00010"), "");
  EXPECT_EQ(office.hand.click(office.ui.Cmd_Copier), "");
  EXPECT_EQ(office.toolkit.messages, Names{"Cet aidant a été dupliqué sur le code 99997."});
  EXPECT_EQ((*memory_.find("VELANORO", "999990012026"))(1), "LEUR FICHE");
  EXPECT_EQ((*memory_.find("VELANORO", "999980012026"))(1), "LEUR FICHE");
  EXPECT_EQ((*memory_.find("VELANORO", "999970012026"))(1), "99997");
  EXPECT_EQ(office.hand.click(office.ui.Cmd_Supp), "");
  EXPECT_FALSE(memory_.find("VELANORO", "000100012026")) << "the card in hand is still the one that was open";
}

class ReadOnly : public store::WrappedDatabase {
 public:
  using WrappedDatabase::WrappedDatabase;
  bool read_only() const override { return true; }
};

TEST_F(Component, NothingCanBeEnteredInADatabaseThatTakesNoWrites) {
  ReadOnly database(memory_);
  Office office(database);
  office.component.init();
  EXPECT_EQ(office.hand.type(office.ui.Txt_Asso, "001"), "");
  EXPECT_FALSE(office.ui.Cmd_Ajout.enabled());
  EXPECT_EQ(office.hand.type(office.ui.Txt_Aidant, "00010"), "");
  EXPECT_EQ(office.ui.Txt_Etat.text(), "Consultation");
  for (screen::Control* control :
       std::initializer_list<screen::Control*>{&office.ui.Cmd_OK, &office.ui.Cmd_Supp, &office.ui.Cmd_Copier,
                                               &office.ui.Txt_HorMensEtab, &office.ui.Lst_DatEffet})
    EXPECT_FALSE(control->enabled()) << control->name();
  EXPECT_EQ(office.hand.click(office.ui.Cmd_Detail), "");
  EXPECT_EQ(office.component.screen().top().name(), "Frm_RubSaisie");
}

}  // namespace
}  // namespace velanor::test
