// What check says of a base that somebody else has changed, from outside.
#include "office/asides.h"
#include "store/sqlite/connection.h"
#include "velanor/date.h"
#include "velanor/sqlite_database.h"
#include "velanor/util_saisie.h"
#include "velanorctl/program.h"

namespace velanor::app {
namespace {

class Check : public CommandLine {
 protected:
  void SetUp() override { run("demo base"); }
  void change(const char* sql) {
    store::sqlite::Connection(folder_.file("base"), store::sqlite::Missing::kFail, 1000).run(sql);
  }
};

TEST_F(Check, TellsADamagedCardAndGoesOnWithTheOthers) {
  change(
      "UPDATE record SET content = x'4D' WHERE id = (SELECT id FROM record JOIN file "
      "ON number = file WHERE name = 'VELANORO' ORDER BY id LIMIT 1)");
  const Outcome check = run("check --store base");
  EXPECT_EQ(check.status, 3);
  EXPECT_EQ(check.output.find("L'enregistrement « "), 0u) << check.output;
  EXPECT_NE(check.output.find("fiches en faute : 0, fautes : 0."), std::string::npos) << check.output;
}

TEST_F(Check, TellsWhatIsDerivedAndMakesItAnewOnRequest) {
  change("DROP INDEX record_by_tail");
  const Outcome check = run("check --store base");
  EXPECT_EQ(check.status, 3);
  EXPECT_EQ(check.output.find("Structure de la base : l'index « record_by_tail » manque.\n"), 0u);
  const Outcome repaired = run("check --reparer --store base");
  EXPECT_EQ(repaired.output.find("Ce qui se déduit des enregistrements a été refait.\n"), 0u);
  EXPECT_EQ(repaired.status, 0) << repaired.output;
  EXPECT_EQ(run("check --store base").status, 0);
}

// The same base with a warning, then set aside, then with a fault besides.
TEST_F(Check, WarnsOnRequestOfWhatIsNoFault) {
  constexpr const char* kWarning = "000010012026 : L'âge au début du contrat est invraisemblable : ";
  const auto change_card = [this](int attribute, const std::string& text) {
    store::SqliteDatabase base(folder_.file("base"));
    store::DbRecord card = base.OpenFile("VELANORO")->Read("000010012026");
    card.set(attribute, text.empty() ? text : std::string(card(8)));
    base.put("VELANORO", "000010012026", card);
  };
  change_card(9, "as the start");
  EXPECT_EQ(run("check --store base").output.find("Avertissements"), std::string::npos);
  Outcome check = run("check --warnings --store base");
  EXPECT_EQ(check.status, 0);
  EXPECT_NE(check.output.find(kWarning), std::string::npos) << check.output;
  EXPECT_NE(check.output.find("mis de côté : 0.\n979 sur 979 fiches complètes.\n"), std::string::npos)
      << check.output;
  {
    store::SqliteDatabase base(folder_.file("base"));
    office::set_aside(base, "000010012026", {office::WarningKind::kBirth, "anne", 21000});
  }
  ASSERT_EQ(run("backup copie --store base").status, 0);
  ASSERT_EQ(run("copy --from copie --to autre").status, 0);
  ASSERT_EQ(run("export remarques.csv --file BUDGETREMARQUES --store autre").status, 0);
  ASSERT_EQ(run("import remarques.csv --file BUDGETREMARQUES --store base").status, 0);
  for (const char* base : {"copie", "autre", "base"}) {
    check = run(std::string("check --warnings --store ") + base);
    EXPECT_EQ(check.output.find(kWarning), std::string::npos) << base;
    EXPECT_NE(check.output.find("mis de côté : 1.\n"), std::string::npos) << check.output;
  }
  change_card(19, "");
  check = run("check --warnings --store base");
  EXPECT_EQ(check.status, 1);
  EXPECT_NE(check.output.find("978 sur 979 fiches complètes.\n"), std::string::npos) << check.output;
}

TEST_F(Check, TakesTheDaysWithinWhichAContractEndsSoon) {
  {
    store::SqliteDatabase base(folder_.file("base"));
    store::DbRecord card = base.OpenFile("VELANORO")->Read("000010012026");
    card.set(6, "D");
    card.set(23, std::to_string(*entry::day_number(entry::system_clock()()) + 200));
    card.set(24, "01");
    base.put("VELANORO", "000010012026", card);
  }
  constexpr const char* kSoon = "000010012026 : Le contrat à durée déterminée finit dans les 201 jours";
  EXPECT_NE(run("check --warnings --jours 201 --store base").output.find(kSoon), std::string::npos);
  EXPECT_EQ(run("check --warnings --jours 199 --store base")
                .output.find("000010012026 : Le contrat à durée déterminée finit dans les 199"),
            std::string::npos);
  EXPECT_NE(run("check --jours 60 --store base").status, 0) << "of warnings alone";
  EXPECT_NE(run("check --warnings --jours 367 --store base").status, 0);
}

TEST_F(Check, SeesCalculationsWithoutACard) {
  change(
      "DELETE FROM record WHERE file = (SELECT number FROM file WHERE name = 'VELANORO') AND id = "
      "(SELECT min(id) FROM record JOIN file ON number = file WHERE name = 'BUDGETHISTORCUMUL')");
  const Outcome check = run("check --store base");
  EXPECT_EQ(check.status, 1) << check.output;
  for (const char* line : {"BUDGETHISTORCUMUL ", "BUDGETDETAILCALCUL ", " : ce calcul n'a pas de fiche.\n"})
    EXPECT_NE(check.output.find(line), std::string::npos) << check.output;
}

}  // namespace
}  // namespace velanor::app
