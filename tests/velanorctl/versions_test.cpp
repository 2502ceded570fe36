// history, diff, restore-version and purge-history, as a clerk's administrator uses them.
#include <algorithm>
#include <string_view>

#include "velanorctl/program.h"

namespace velanor::app {
namespace {

class Versions : public CommandLine {
 protected:
  static constexpr std::string_view kMoment = "00/00/0000 00:00:00";
  static bool is_moment(std::string_view text) {
    for (std::size_t i = 0; i < kMoment.size(); ++i) {
      if (i >= text.size() || (text[i] >= '0' && text[i] <= '9' ? '0' : text[i]) != kMoment[i]) return false;
    }
    return true;
  }
  // Moments and the system's user differ from run to run.
  std::string told(const std::string& arguments) const {
    const std::string output = run(arguments).output;
    std::string told;
    for (std::size_t at = 0; at < output.size();) {
      if (!is_moment(std::string_view(output).substr(at))) {
        told += output[at++];
        continue;
      }
      const std::size_t between = at + kMoment.size();
      const std::size_t name = output.find_first_not_of(", ", between);
      told += "MOMENT" + output.substr(between, name - between) + "QUI";
      at = std::min(output.find_first_of(" ,)\n", name), output.size());
    }
    return told;
  }
  void import(const std::string& table, const std::string& file) const {
    write("t.csv", table);
    ASSERT_EQ(run("import t.csv --store base --file " + file + " --accepter-inconnus").status, 0);
  }
};

TEST_F(Versions, AreListedComparedByPositionAndBroughtBack) {
  import("id;1;2,1\n001;Ville;x\n", "SECTEUR");
  import("id;1;2,1\n001;Bourg;x\n", "SECTEUR");
  EXPECT_EQ(told("history SECTEUR 001 --store base"),
            "numéro  date                 auteur  sorte\n"
            "------  -------------------  ------  ------------\n"
            "1       MOMENT  QUI    création\n"
            "2       MOMENT  QUI    modification\n");
  EXPECT_EQ(told("diff SECTEUR 001 --store base"),
            "version 1, MOMENT, QUI → version 2, MOMENT, QUI\n1 Nom : Ville → Bourg\n");
  EXPECT_EQ(told("restore-version SECTEUR 001 1 --store base"),
            "SECTEUR 001 : la version 1 (MOMENT, QUI) est rétablie. C'est maintenant la version 3.\n");
  EXPECT_EQ(run("show SECTEUR 001 --store base").output, "1 = Ville\n2 = x\n");
  EXPECT_EQ(told("restore-version SECTEUR 001 1 --store base"),
            "SECTEUR 001 : la version 1 (MOMENT, QUI) est ce qui est stocké. Rien n'a été écrit.\n");
  EXPECT_EQ(told("diff SECTEUR 001 1 --store base"),
            "version 1, MOMENT, QUI → version 3, MOMENT, QUI\nRien ne diffère.\n");
}

TEST_F(Versions, OfACardAreComparedInTheWordsOfTheScreen) {
  import(
      "id;Nom;Début de contrat;Date d'effet 1;Taux horaire 1;Type de contrat\n"
      "000010012026;MARTIN;01/02/2019;01/01/2026;12,345;CDI\n",
      "VELANORO");
  import(
      "id;Nom;Date d'effet 2;Taux horaire 1;Type de contrat;Montant 1.2\n"
      "000010012026;PETIT;01/07/2026;12,4;CDD;7,5\n",
      "VELANORO");
  const std::string changes = run("diff VELANORO 000010012026 --store base").output;
  EXPECT_EQ(changes.substr(changes.find('\n') + 1),
            "Nom : MARTIN → PETIT\n"
            "Type de contrat : CDI → CDD\n"
            "Date d'effet 2 : (vide) → 01/07/2026\n"
            "Taux horaire 1 : 12,345 → 12,400\n"
            "Montant 1.2 : (vide) → 7,50\n");
}

TEST_F(Versions, ThatAreNotThereAreSaidSo) {
  import("id;1\n001;Ville\n", "SECTEUR");
  const struct {
    const char *call, *sentence;
  } cases[] = {
      {"history SECTEUR 002 --store base",
       "velanorctl : L'enregistrement « 002 » du fichier SECTEUR n'a jamais existé dans cette base. Vérifiez "
       "le "
       "fichier et l'identifiant.\n"},
      {"diff SECTEUR 001 7 --store base",
       "velanorctl : Il n'y a pas de version 7 de cet enregistrement. « velanorctl history » donne celles "
       "qui "
       "sont gardées.\n"},
      {"history SECTEUR 001 --demo",
       "velanorctl : Cette base ne garde pas d'historique : elle n'est qu'en mémoire. Ouvrez une base "
       "enregistrée.\n"},
  };
  for (const auto& [call, sentence] : cases) {
    const Outcome outcome = run(call);
    EXPECT_EQ(outcome.output, sentence);
    EXPECT_EQ(outcome.status, 1);
  }
  EXPECT_EQ(run("restore-version SECTEUR 001 zwei --store base").status, 64);
}

TEST_F(Versions, AreForgottenOnlyWhenThatIsConfirmed) {
  import("id;1\n001;Ville\n", "SECTEUR");
  import("id;1\n001;Bourg\n", "SECTEUR");
  const Outcome refused = run("purge-history --before 01/01/2090 --store base");
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(
      refused.output,
      "velanorctl : Rien n'a été oublié. Les versions remplacées avant le 01/01/2090 seraient perdues pour "
      "toujours ; ajoutez --oui si c'est ce que vous voulez.\n");
  EXPECT_EQ(run("purge-history --before 32/01/2020 --oui --store base").status, 1);
  EXPECT_EQ(run("purge-history --before 01/01/2020 --oui --store base").output,
            "Versions oubliées : 0. Ce qui est stocké n'a pas changé.\n");
  EXPECT_EQ(run("purge-history --before 01/01/2090 --oui --store base").output,
            "Versions oubliées : 1. Ce qui est stocké n'a pas changé.\n");
  EXPECT_EQ(run("show SECTEUR 001 --store base").output, "1 = Bourg\n");
}

}  // namespace
}  // namespace velanor::app
