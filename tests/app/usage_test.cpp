// The command lines of both programs: every kind of mistake is told in French.
#include <gtest/gtest.h>

#include <string>

#include "support/run_program.h"

namespace {

using velanor::test::Outcome;
using velanor::test::run_program;

const std::string kVelanor = "QT_QPA_PLATFORM=offscreen XDG_RUNTIME_DIR=/nowhere " VELANOR " ";
const std::string kVelanorctl = VELANORCTL " ";

TEST(Usage, EveryMistakeIsToldInFrench) {
  const struct {
    const char* arguments;
    const char* sentence;
  } cases[] = {
      {"", "il manque une sous-commande. Voir velanorctl --help."},
      {"bogus", "il n'y a pas de sous-commande bogus. Voir velanorctl --help."},
      {"--bogus", "l'option --bogus n'existe pas. Voir velanorctl --help."},
      {"demo", "CHEMIN manque. Voir velanorctl demo --help."},
      {"demo --bogus", "l'option --bogus n'existe pas. Voir velanorctl demo --help."},
      {"demo a b", "argument inattendu : b. Voir velanorctl demo --help."},
      {"demo a --cards", "--cards attend une valeur. Voir velanorctl demo --help."},
      {"demo a --cards x",
       "--cards : « x » n'est pas un nombre de 1 à 2000000. Voir velanorctl demo --help."},
      {"demo a --cards 0",
       "--cards : « 0 » n'est pas un nombre de 1 à 2000000. Voir velanorctl demo --help."},
      {"demo a --cards 1 --cards 2", "--cards est donné plus d'une fois. Voir velanorctl demo --help."},
      {"export --file F --separator x",
       "--separator : « x » n'est pas une des valeurs possibles. Voir velanorctl export --help."},
      {"export --file F --names=oui",
       "--names : « oui » n'est pas une des valeurs possibles. Voir velanorctl export --help."},
      {"restore-version F 1 0 --demo",
       "NUMERO : « 0 » n'est pas un nombre de 1 à 999999999. Voir velanorctl restore-version --help."},
      {"diff F 1 abc --demo",
       "V1 : « abc » n'est pas un nombre de 1 à 999999999. Voir velanorctl diff --help."},
      {"check --demo --store x", "--store et --demo s'excluent. Voir velanorctl check --help."},
      {"check", "--store manque. Voir velanorctl check --help."},
  };
  for (const auto& [arguments, sentence] : cases) {
    SCOPED_TRACE(arguments);
    const Outcome outcome = run_program(kVelanorctl + arguments);
    EXPECT_EQ(outcome.status, 64);
    EXPECT_EQ(outcome.output, "velanorctl : " + std::string(sentence) + "\n");
  }
}

TEST(Usage, TheWindowProgramSpeaksTheSameWay) {
  const struct {
    const char* arguments;
    const char* sentence;
  } cases[] = {{"--shots x", "--shots ne va pas sans --play"},
               {"--play", "--play attend une valeur"},
               {"x y", "argument inattendu : y"},
               {"--bogus", "l'option --bogus n'existe pas"}};
  for (const auto& [arguments, sentence] : cases) {
    SCOPED_TRACE(arguments);
    const Outcome outcome = run_program(kVelanor + arguments);
    EXPECT_EQ(outcome.status, 64);
    EXPECT_NE(outcome.output.find("velanor : " + std::string(sentence) + ". Voir velanor --help.\n"),
              std::string::npos)
        << outcome.output;
  }
}

TEST(Usage, HelpHasNoEnglishWordOfTheParsersOwn) {
  for (const char* call : {VELANOR " --help", VELANORCTL " --help", VELANORCTL " demo --help",
                           VELANORCTL " export --help", VELANORCTL " check --help"}) {
    SCOPED_TRACE(call);
    const Outcome outcome = run_program(call);
    EXPECT_EQ(outcome.status, 0);
    for (const char* word : {"Usage:", "REQUIRED", "Excludes", "Needs", "Positionals", "SUBCOMMAND", "INT",
                             "TEXT", " in [", "Print this", "s:\n"})
      EXPECT_EQ(outcome.output.find(word), std::string::npos) << word << "\n" << outcome.output;
  }
}

TEST(Usage, BothTellTheirVersionWithoutADisplay) {
  EXPECT_EQ(run_program("QT_QPA_PLATFORM=xcb DISPLAY= " VELANOR " --version").output,
            "velanor " VELANOR_VERSION "\n");
  EXPECT_EQ(run_program(kVelanorctl + "--version").output, "velanorctl " VELANOR_VERSION "\n");
}

}  // namespace
