// velanorctl backup: copies a database while others may use it.
#include <CLI/CLI.hpp>
#include <iostream>

#include "app/velanorctl/commands.h"
#include "app/velanorctl/open_store.h"
#include "app/velanorctl/progress.h"
#include "store/sqlite/sqlite_database.h"

namespace velanor::app {
namespace {

struct Options {
  std::string url;
  std::string path;
};

int back_up(const Options& options) {
  store::SqliteDatabase database(path_of(options.url));
  {
    Progress progress("Sauvegarde");
    database.back_up(options.path, [&](double part) { progress.part(part); });
  }
  std::cout << "Sauvegarde « " << options.path << " » terminée.\n";
  return 0;
}

}  // namespace

void add_backup(CLI::App& program, int& status) {
  const auto options = std::make_shared<Options>();
  CLI::App* command =
      program.add_subcommand("backup", "Sauvegarde la base dans un fichier, même pendant qu'elle sert");
  command->add_option("--store", options->url, "Base à sauvegarder : un chemin ou sqlite:CHEMIN")
      ->required()
      ->type_name("URL");
  command->add_option("PATH", options->path, "Le fichier à créer ; il ne doit pas exister")
      ->required()
      ->type_name("");
  command->callback([options, &status] { status = back_up(*options); });
}

}  // namespace velanor::app
