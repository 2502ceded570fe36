// velanorctl restore: puts a backup in the place of a database.
#include <CLI/CLI.hpp>
#include <iostream>

#include "app/velanorctl/commands.h"
#include "app/velanorctl/open_store.h"
#include "velanor/sqlite_database.h"

namespace velanor::app {
namespace {

struct Options {
  std::string backup, base;
};

int restore(const Options& options) {
  const std::string base = path_of(options.base);
  const std::string aside = store::SqliteDatabase::restore(path_of(options.backup), base);
  std::cout << "Base « " << base << " » reprise de la sauvegarde « " << options.backup << " ».\n";
  if (!aside.empty()) std::cout << "L'ancienne base est gardée sous « " << aside << " ».\n";
  return 0;
}

}  // namespace

void add_restore(CLI::App& program, int& status) {
  const auto options = std::make_shared<Options>();
  CLI::App* command = program.add_subcommand("restore", "Reprend une sauvegarde à la place de la base");
  command->add_option("SAUVEGARDE", options->backup, "La sauvegarde ; elle reste où elle est")
      ->required()
      ->type_name("");
  command->add_option("BASE", options->base, "La base ; personne ne doit s'en servir")
      ->required()
      ->type_name("");
  command->footer(
      "La sauvegarde est vérifiée d'abord. L'ancienne base est gardée à côté, sous un autre nom.");
  command->callback([options, &status] { status = restore(*options); });
}

}  // namespace velanor::app
