// velanorctl setup-server: what a server must be told before it can keep a base.
#include <CLI/CLI.hpp>
#include <iostream>

#include "app/velanorctl/commands.h"
#include "velanor/postgres_database.h"

namespace velanor::app {

void add_setup_server(CLI::App& program, int& status) {
  CLI::App* command = program.add_subcommand(
      "setup-server",
      "Affiche le script SQL qui prépare une base sur un serveur PostgreSQL, ou la met à niveau");
  command->footer(
      "À exécuter dans la base par un administrateur du serveur :\n"
      "  velanorctl setup-server | psql -v ON_ERROR_STOP=1 BASE");
  command->callback([&status] {
    std::cout << store::PostgresDatabase::setup_script();
    status = 0;
  });
}

}  // namespace velanor::app
