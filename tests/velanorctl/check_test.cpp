// What check says of a base that somebody else has changed, from outside.
#include "store/sqlite/connection.h"
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
