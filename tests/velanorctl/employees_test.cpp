// The table of the employees at the command line.
#include <filesystem>

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
  const Outcome none = run("employees --demo --entite 999 --annee 2026");
  EXPECT_EQ(none.status, 1);
  EXPECT_NE(none.output.find("Il n'y a pas de fiche de l'entité « 999 » pour l'année « 2026 »"),
            std::string::npos)
      << none.output;
}

// Read back by another program: kinds of cells, formats, the heading, and no formula.
TEST_F(EmployeesCommand, WritesAWorkbookWhoseDatesAndFiguresAreSuchAndWhoseTextsAreTexts) {
  run("demo base.db");
  write("nom.csv", "id;1\n000010012026;=1+1\n000140012026;@HUET\n");
  EXPECT_EQ(run("import nom.csv --store base.db --file VELANORO").status, 0);
  const Outcome made = run("employees --store base.db --entite 001 --annee 2026 --tri code --xlsx e.xlsx");
  EXPECT_EQ(made.output, "Classeur « e.xlsx » : 177 lignes.\n");
  EXPECT_EQ(std::filesystem::status(folder_.file("e.xlsx")).permissions(), std::filesystem::perms(0600));
  write("read.py", R"py(
import re, zipfile
book = zipfile.ZipFile('e.xlsx')
sheet = book.read('xl/worksheets/sheet1.xml').decode()
styles = book.read('xl/styles.xml').decode()
def cell(name):
    found = re.search(r'<c r="%s"([^>]*)>(.*?)</c>' % name, sheet)
    return re.sub(r' s="\d+"', '', found[1]) + ' ' + re.sub('<[^>]*>', '', found[2]) if found else 'none'
print('formulas', sheet.count('<f>'), 'dates', 'dd/mm/yyyy' in styles, 'frozen', 'state="frozen"' in sheet,
      'filter', re.search('autoFilter ref="([^"]*)"', sheet)[1])
for name in ('A1', 'A2', 'B2', 'G2', 'H2', 'L2'): print(name, cell(name))
# What holds today may be any figure.
print('J2', cell('J2').rsplit(' ', 1)[0], 'M2', cell('M2').rsplit(' ', 1)[0])
)py");
  EXPECT_EQ(test::run_program("cd '" + folder_.file("") + "' && python3 read.py").output,
            "formulas 0 dates True frozen True filter A1:M178\n"
            "A1  t=\"inlineStr\" Code\nA2  t=\"inlineStr\" 00001\nB2  t=\"inlineStr\" =1+1\nG2  43795\n"
            "H2 none\nL2  2\nJ2  M2  t=\"inlineStr\"\n");
}

TEST_F(EmployeesCommand, AWorkbookTakesNoBasesPlaceAndGoesThroughNoLink) {
  run("demo base.db");
  std::filesystem::create_symlink("ailleurs.xlsx", folder_.file("lien.xlsx"));
  std::filesystem::rename(folder_.file("base.db"), folder_.file("base.xlsx"));
  const std::string rows = "employees --demo --entite 001 --annee 2026 --xlsx ";
  EXPECT_NE(run(rows + "lien.xlsx").output.find("c'est un lien"), std::string::npos);
  EXPECT_NE(run(rows + "base.xlsx").output.find("c'est une base de fiches"), std::string::npos);
  EXPECT_NE(run(rows + "table.csv").output.find("doit finir par « .xlsx »"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(folder_.file("ailleurs.xlsx")));
  EXPECT_EQ(run("check --store base.xlsx").status, 0);
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
