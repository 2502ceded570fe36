#include "velanorctl/program.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "app/velanorctl/table.h"
#include "velanor/sqlite_database.h"

namespace velanor::app {
namespace {

TEST_F(CommandLine, BuildsTheDemonstrationOnceAndChecksIt) {
  EXPECT_EQ(run("demo base").status, 0);
  const Outcome check = run("check --store base");
  EXPECT_EQ(check.status, 0);
  EXPECT_NE(check.output.find("fiches en faute : 0, fautes : 0."), std::string::npos) << check.output;
  const Outcome again = run("demo base");
  EXPECT_EQ(again.status, 1);
  EXPECT_EQ(again.output, "velanorctl : Le fichier « base » existe déjà. Donnez un autre nom, ou ôtez-le.\n");
}

TEST_F(CommandLine, TellsAFaultyCardAndEndsWithOne) {
  run("demo base");
  write("faute.csv", "id;1\n000010092026;X\n");
  EXPECT_EQ(
      run("import faute.csv --store base --file VELANORO").output,
      "faute.csv:2: L'entité « 009 » n'existe pas dans ASSOCIATION.\n"
      "Importez d'abord les fichiers de référence ; --accepter-inconnus admet les codes qui n'y sont pas.\n"
      "Rien n'a été importé. Corrigez le tableau, puis recommencez.\n");
  EXPECT_EQ(run("import faute.csv --store base --file VELANORO --accepter-inconnus").output,
            "Attention : faute.csv:2: L'entité « 009 » n'existe pas dans ASSOCIATION.\n"
            "VELANORO : enregistrements créés : 1, modifiés : 0, inchangés : 0.\n");
  const Outcome check = run("check --store sqlite:base");
  EXPECT_EQ(check.status, 1);
  EXPECT_NE(check.output.find("000010092026 : L'entité « 009 » n'existe pas dans ASSOCIATION.\n"),
            std::string::npos);
  EXPECT_NE(check.output.find("fiches en faute : 1"), std::string::npos) << check.output;
}

TEST_F(CommandLine, ImportsATableOrNothingOfIt) {
  write("bon.csv", "id;1\n001;Ville\n002;Bourg\n");
  write("faux.csv", "id;1\n003;Hameau\n004\n");
  EXPECT_EQ(run("import faux.csv --store base --file SECTEUR").status, 1);
  EXPECT_EQ(run("show SECTEUR 003 --store base")
                .output.find("velanorctl : La base « base » ne peut pas être ouverte."),
            0u)
      << "a refused import made the database";
  EXPECT_EQ(run("import bon.csv --store base --file SECTEUR").output,
            "SECTEUR : enregistrements créés : 2, modifiés : 0, inchangés : 0.\n");
  const Outcome bad = run("import faux.csv --store base --file SECTEUR");
  EXPECT_EQ(bad.status, 1);
  EXPECT_EQ(bad.output,
            "faux.csv:3: 1 champ au lieu de 2\n"
            "Rien n'a été importé. Corrigez le tableau, puis recommencez.\n");
  EXPECT_EQ(run("export --store base --file SECTEUR").output, "\xEF\xBB\xBFid;1 Nom\n001;Ville\n002;Bourg\n");
}

TEST_F(CommandLine, PrintsSelectionsLinedUpAndRecordsElementByElement) {
  write("t.csv", "id;1;2,2\n001;Été;x\n002;Bourg;y\n");
  run("import t.csv --store base --file SECTEUR");
  EXPECT_EQ(run("select 'SSELECT SECTEUR PAR 1' '0 1 2' --store base").output,
            "id   1      2\n"
            "---  -----  ----\n"
            "002  Bourg   | y\n"
            "001  Été     | x\n"
            "2 enregistrements\n");
  EXPECT_EQ(run("show SECTEUR 001 --store base").output, "1 = Été\n2,2 = x\n");
  const Outcome absent = run("show SECTEUR 003 --store base");
  EXPECT_EQ(absent.output, "absent\n");
  EXPECT_EQ(absent.status, 1);
  const Outcome bad = run("select 'SSELECT' --store base");
  EXPECT_EQ(bad.status, 1);
  EXPECT_EQ(bad.output.find("velanorctl : "), 0u) << bad.output;
}

TEST_F(CommandLine, BacksUpToAFileThatOpens) {
  write("t.csv", "id;1\n001;Ville\n");
  run("import t.csv --store base --file SECTEUR");
  EXPECT_EQ(run("backup copie --store base").status, 0);
  EXPECT_EQ(run("show SECTEUR 001 --store copie").output, "1 = Ville\n");
  EXPECT_EQ(run("backup copie --store base").status, 1);
}

TEST_F(CommandLine, ADamagedBaseIsRefusedUnderAStatusOfItsOwn) {
  run("demo base");
  std::filesystem::resize_file(folder_.file("base"), 2'000'000);
  const Outcome check = run("check --store base");
  EXPECT_EQ(check.status, 3);
  EXPECT_NE(check.output.find("La base « base » est endommagée."), std::string::npos) << check.output;
  EXPECT_EQ(run("backup copie --store base").status, 3);
  std::filesystem::create_directory(folder_.file("sauvegardes"));
  EXPECT_EQ(run("backup sauvegardes --store base --garder 5").status, 3);
  EXPECT_TRUE(std::filesystem::is_empty(folder_.file("sauvegardes")));
  EXPECT_EQ(run("show SECTEUR 001 --store copie").status, 1) << "a file was left";
  std::filesystem::resize_file(folder_.file("base"), 0);
  EXPECT_EQ(run("check --store base").status, 3);
  EXPECT_EQ(run("backup copie --store base").status, 3);
  EXPECT_EQ(std::filesystem::file_size(folder_.file("base")), 0u) << "an empty file was made a base of";
}

TEST_F(CommandLine, ARotationOfBackupsIsKeptOnRequest) {
  write("t.csv", "id;1\n001;Ville\n");
  run("import t.csv --store base.db --file SECTEUR");
  std::filesystem::create_directory(folder_.file("d"));
  for (int n = 0; n < 3; ++n) EXPECT_EQ(run("backup d --store base.db --garder 2").status, 0);
  const std::filesystem::directory_iterator files(folder_.file("d"));
  EXPECT_EQ(std::distance(begin(files), end(files)), 2);
  EXPECT_EQ(run("backup d --store base.db").output,
            "velanorctl : « d » est un dossier. Donnez le nom du fichier à créer, ou --garder pour y tenir "
            "plusieurs sauvegardes.\n");
  EXPECT_EQ(run("backup d --store base.db --garder 0").status, 64);
}

TEST_F(CommandLine, ARehearsalOfAnImportLeavesNoBase) {
  write("t.csv", "id;Nom\r\n1;Ch\xE2teau\r\n;\r\n");
  EXPECT_EQ(run("import t.csv --store base --file SECTEUR --essai").output,
            "Attention : t.csv:1: le tableau n'est pas en UTF-8 ; il est lu en Windows-1252\n"
            "créerait 001\n"
            "Essai, rien n'a été écrit. SECTEUR : enregistrements créés : 1, modifiés : 0, inchangés : 0.\n");
  EXPECT_FALSE(std::filesystem::exists(folder_.file("base")));
  run("import t.csv --store base --file SECTEUR");
  EXPECT_EQ(run("show SECTEUR 001 --store base").output, "1 = Château\n");
}

TEST_F(CommandLine, AStoreThatIsNotThereOrNotNamedIsSaidSo) {
  const Outcome absent = run("check --store absente");
  EXPECT_EQ(absent.status, 1);
  EXPECT_EQ(absent.output.find("velanorctl : La base « absente » ne peut pas être ouverte."), 0u)
      << absent.output;
  EXPECT_EQ(run("check --store postgres://ici").status, 1);
  EXPECT_EQ(run("check").status, 64);
  EXPECT_EQ(run("check --store base --demo").status, 64);
}

TEST_F(CommandLine, AnOutputThatIsFullIsAnError) {
  run("demo base");
  for (const char* call : {"select 'SSELECT SECTEUR PAR 1' --store base", "show SECTEUR 001 --store base",
                           "check --store base", "export --store base --file SECTEUR"})
    EXPECT_EQ(run(std::string(call) + " >/dev/full").status, 1) << call;
}

TEST_F(CommandLine, NoStoredTextDrivesTheTerminal) {
  write("t.csv",
        "id;1\n001;a\x1B[2Jb\x07\n002;c\xC2\x9B"
        "31m\n");
  run("import t.csv --store base --file SECTEUR");
  run("import t.csv --store base --file ASSOCIATION");
  for (const char* call :
       {"show SECTEUR 001 --store base", "show SECTEUR 002 --store base", "diff SECTEUR 001 --store base",
        "select 'SSELECT SECTEUR PAR 1' --store base", "history SECTEUR 001 --store base",
        "check --store base", "show SECTEUR $(printf '\\033[2J') --store base",
        "history SECTEUR $(printf '\\033[2J') --store base"}) {
    const std::string output = run(call).output;
    EXPECT_EQ(output.find_first_of("\x1B\x07"), output.npos) << call;
    EXPECT_EQ(output.find("\xC2\x9B"), output.npos) << call;
  }
  EXPECT_EQ(run("show SECTEUR 001 --store base").output, "1 = a·[2Jb·\n");
  EXPECT_NE(run("export --store base --file SECTEUR").output.find("a\x1B[2Jb"), std::string::npos)
      << "what is exported is what is stored";
}

// As a user who may write nothing.
TEST_F(CommandLine, ABaseThatMayNotBeWrittenIsReadByEverySubCommand) {
  run("demo base");
  run("backup copie --store base");
  if (getuid() != 0 || std::system(("setpriv --reuid=65534 test -x " VELANORCTL)) != 0)
    GTEST_SKIP() << "needs a second user";
  namespace fs = std::filesystem;
  fs::permissions(folder_.file("base"),
                  fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  fs::permissions(folder_.file(""), fs::perms::all);
  for (const bool folder : {false, true}) {
    if (folder)
      fs::permissions(folder_.file(""), fs::perms::all & ~(fs::perms::group_write | fs::perms::others_write));
    for (const char* call :
         {"show SECTEUR 001", "select 'SSELECT SECTEUR PAR 1'", "check", "history SECTEUR 001",
          "diff SECTEUR 001", "export --file SECTEUR", "backup /tmp/velanor-test-copie-$$"}) {
      const Outcome outcome = run(std::string(call) + " --store base", "setpriv --reuid=65534 ");
      EXPECT_EQ(outcome.status, 0) << call << "\n" << outcome.output;
    }
    EXPECT_EQ(run("restore-version SECTEUR 001 1 --store base", "setpriv --reuid=65534 ").status, 0)
        << "nothing to write";
    EXPECT_EQ(run("check --reparer --store base", "setpriv --reuid=65534 ").status, 1);
  }
  EXPECT_EQ(std::system("rm -f /tmp/velanor-test-copie-*"), 0);
}

TEST_F(CommandLine, ABackupIsTakenBackInPlaceOfTheBase) {
  write("t.csv", "id;1\n001;Ville\n");
  write("u.csv", "id;1\n001;Bourg\n");
  run("import t.csv --store base --file SECTEUR");
  run("backup copie --store base");
  run("import u.csv --store base --file SECTEUR");
  const Outcome outcome = run("restore copie base");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output.find(
                "Base « base » reprise de la sauvegarde « copie ».\nL'ancienne base est gardée sous « "
                "base.avant-"),
            0u)
      << outcome.output;
  EXPECT_EQ(run("show SECTEUR 001 --store base").output, "1 = Ville\n");
  EXPECT_EQ(run("show SECTEUR 001 --store base.avant-*").output, "1 = Bourg\n");
}

TEST_F(CommandLine, AnExportIsAFileOfItsOwnersAloneAndFollowsNoLink) {
  namespace fs = std::filesystem;
  write("t.csv", "id;1\n001;Ville\n");
  run("import t.csv --store base --file SECTEUR");
  write("secret", "à garder");
  fs::create_symlink(folder_.file("secret"), folder_.file("lien.csv"));
  fs::create_symlink(folder_.file("secret"), folder_.file("table.csv.partiel"));
  write("table.csv.0123456789ab.partiel", "reste d'un programme tué");
  // Also in the place of an older one.
  for (int times = 0; times < 2; ++times) {
    EXPECT_EQ(run("export table.csv --store base --file SECTEUR").status, 0);
    EXPECT_EQ(fs::symlink_status(folder_.file("table.csv")).permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
  }
  // What is no table stays: a link, the base itself, another base, what is no file.
  run("demo autre");
  for (const char* target : {"lien.csv", "base", "autre", "/dev/null", "."}) {
    const Outcome refused = run(std::string("export ") + target + " --store base --file SECTEUR");
    EXPECT_EQ(refused.status, 1) << target;
    EXPECT_NE(refused.output.find("n'a pas été écrit"), std::string::npos) << refused.output;
  }
  EXPECT_TRUE(fs::is_symlink(folder_.file("lien.csv")));
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
  EXPECT_EQ(run("show SECTEUR 001 --store base").status, 0);
  EXPECT_EQ(run("show SECTEUR 001 --store autre").status, 0);
  EXPECT_EQ(fs::file_size(folder_.file("secret")), std::string("à garder").size());
  EXPECT_TRUE(fs::is_symlink(folder_.file("table.csv.partiel"))) << "somebody else's file was removed";
  EXPECT_FALSE(fs::exists(folder_.file("table.csv.0123456789ab.partiel")));
  const Outcome misspelt = run("export autre.csv --store base --file SECTEURS");
  EXPECT_EQ(misspelt.status, 1);
  EXPECT_EQ(misspelt.output.find("velanorctl : Le fichier « SECTEURS » n'est pas dans la base."), 0u)
      << misspelt.output;
  EXPECT_FALSE(fs::exists(folder_.file("autre.csv")));
}

TEST_F(CommandLine, ABaseThatOthersCanReadIsRemarkedOn) {
  namespace fs = std::filesystem;
  write("t.csv", "id;1\n001;Ville\n");
  run("import t.csv --store base --file SECTEUR");
  EXPECT_EQ(run("show SECTEUR 001 --store base").output, "1 = Ville\n");
  fs::permissions(folder_.file(""), fs::perms::group_exec, fs::perm_options::add);
  fs::permissions(folder_.file("base"), fs::perms::group_read, fs::perm_options::add);
  const Outcome outcome = run("show SECTEUR 001 --store base");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output,
            "Attention : La base « base » peut être lue par d'autres utilisateurs de cette machine. Pour la "
            "réserver au vôtre : chmod 600 base\n1 = Ville\n");
}

// A program that has looked at a file, or failed over it, still holds what keeps others out.
TEST_F(CommandLine, ABackupIsNotTakenBackWhileAnotherProgramHasTheBaseOpen) {
  write("t.csv", "id;1\n001;Ville\n");
  run("import t.csv --store base --file SECTEUR");
  run("backup copie --store base");
  const std::string path = folder_.file("base");
  {
    store::SqliteDatabase database(path);
    EXPECT_TRUE(store::SqliteDatabase::is_at(path));
    EXPECT_THROW(store::SqliteDatabase::restore(folder_.file("copie"), path), store::DbError);
    const Outcome outcome = run("restore copie base");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output,
              "velanorctl : La base « base » n'a pas été remplacée : un programme s'en sert. Fermez tous les "
              "programmes, puis recommencez.\n");
  }
  EXPECT_EQ(run("restore copie base").status, 0);
}

// ---- Encrypted backups.

TEST_F(CommandLine, ABackupIsEncryptedByTheProgramAge) {
  namespace fs = std::filesystem;
  write("t.csv", "id;1\n001;Ville\n");
  run("import t.csv --store base --file SECTEUR");
  const std::string path = "PATH='" + folder_.file("bin") + "' ";
  const Outcome without = run("backup copie --store base --to-age age1qqq", path);
  EXPECT_EQ(without.status, 1);
  EXPECT_EQ(without.output,
            "velanorctl : La sauvegarde n'a pas été chiffrée, et rien n'a été écrit : le programme « age » "
            "n'est pas installé. Installez-le, puis recommencez.\n");
  // One that turns every byte about.
  fs::create_directory(folder_.file("bin"));
  write("bin/age",
        "#!/bin/sh\n[ \"$1 $2\" = '--recipient age1qqq' ] || exit 1\n/usr/bin/tr '\\000-\\377' "
        "'\\200-\\377\\000-\\177'\n");
  fs::permissions(folder_.file("bin/age"), fs::perms::owner_all);
  EXPECT_EQ(run("backup copie --store base --to-age autre", path).status, 1);
  EXPECT_FALSE(fs::exists(folder_.file("copie")));
  EXPECT_EQ(run("backup copie --store base --to-age age1qqq", path).output,
            "Sauvegarde « copie » terminée, vérifiée et chiffrée.\n");
  EXPECT_EQ(fs::status(folder_.file("copie")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(run("show SECTEUR 001 --store copie").status, 1);
  EXPECT_EQ(std::system(("cd '" + folder_.file("") +
                         "' && LC_ALL=C tr '\\200-\\377\\000-\\177' '\\000-\\377' <copie >clair")
                            .c_str()),
            0);
  EXPECT_EQ(run("show SECTEUR 001 --store clair 2>/dev/null").output, "1 = Ville\n");
  EXPECT_EQ(run("backup copie --store base --to-age age1qqq", path).status, 1) << "the name is taken";
  EXPECT_EQ(run("backup d --garder 3 --store base --to-age age1qqq", path).status, 64);
  for (const auto& entry : fs::directory_iterator(folder_.file("")))
    EXPECT_FALSE(entry.path().string().ends_with(".partiel")) << entry.path();
}

TEST(TextTable, CountsTheColumnsThatATerminalUses) {
  EXPECT_EQ(display_width("Été"), 3);
  EXPECT_EQ(display_width("e\u0301"), 1);
  EXPECT_EQ(display_width("日本"), 4);
  EXPECT_EQ(printable("a\x1B[2J\nb\xFD"
                      "c"),
            "a·[2J·b | c");
}

}  // namespace
}  // namespace velanor::app
