// The year of a card at the command line.
#include "velanorctl/program.h"

namespace velanor::app {
namespace {

class YearCommand : public CommandLine {};

TEST_F(YearCommand, PrintsTheYearOfACardHoweverItIsNamed) {
  const Outcome by_id = run("year --demo 000010012026");
  EXPECT_EQ(by_id.status, 0);
  EXPECT_EQ(by_id.output.find("HUET FABIENNE, 2026\n\nMois"), 0U) << by_id.output;
  EXPECT_NE(by_id.output.find("\nAnnée"), std::string::npos);
  EXPECT_NE(by_id.output.find("1201,20  0,66"), std::string::npos) << by_id.output;
  EXPECT_EQ(run("year --demo 1 1 2026").output, by_id.output);
}

TEST_F(YearCommand, SaysWhatIsNotThere) {
  const Outcome unknown = run("year --demo 99999 001 2026");
  EXPECT_EQ(unknown.status, 1);
  EXPECT_EQ(unknown.output, "velanorctl : Il n'y a pas de fiche « 999990012026 » dans cette base.\n");
  EXPECT_EQ(run("year --demo 1 001").output,
            "velanorctl : Donnez l'identifiant de la fiche, ou son code, son entité et son année.\n");
}

}  // namespace
}  // namespace velanor::app
