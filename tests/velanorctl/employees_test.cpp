// The table of the employees at the command line.
#include "velanorctl/program.h"

namespace velanor::app {
namespace {

class EmployeesCommand : public CommandLine {};

TEST_F(EmployeesCommand, PrintsTheRowsThatAreAskedForInTheirOrder) {
  const Outcome all = run("employees --demo --entite 001 --annee 2026 --tri -code huet");
  EXPECT_EQ(all.status, 0);
  const auto third = all.output.find("00027  HUET PAULINE"), first = all.output.find("00001  HUET FABIENNE");
  EXPECT_LT(third, first) << all.output;
  EXPECT_NE(first, std::string::npos);
  EXPECT_NE(all.output.find("\n3 sur 177 fiches\n"), std::string::npos) << all.output;
  EXPECT_EQ(all.output.find("Année"), std::string::npos) << "all are of one year";
  const Outcome some = run("employees --demo -- huet -fabienne 'annee>=2026'");
  EXPECT_EQ(some.output.find("FABIENNE"), std::string::npos);
  EXPECT_NE(some.output.find("Entité  Année\n"), std::string::npos) << some.output;
  EXPECT_NE(some.output.find("\n2 sur 979 fiches\n"), std::string::npos) << some.output;
}

TEST_F(EmployeesCommand, SaysWhatItDoesNotUnderstand) {
  EXPECT_EQ(run("employees --demo --entite 001").status, 64);
  const Outcome sorted = run("employees --demo --tri zz");
  EXPECT_EQ(sorted.status, 1);
  EXPECT_EQ(sorted.output,
            "velanorctl : Il n'y a pas de colonne « zz ». Donnez le titre d'une colonne du tableau.\n");
}

}  // namespace
}  // namespace velanor::app
