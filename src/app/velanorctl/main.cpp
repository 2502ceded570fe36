// velanorctl: the component and its store from the command line.
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>

#include "app/velanorctl/commands.h"
#include "app/velanorctl/guarded_output.h"
#include "app/velanorctl/secrets.h"
#include "app/velanorctl/usage.h"
#include "store/sqlite/failure.h"
#include "text/failure.h"

namespace {

using namespace velanor::app;

constexpr int kFailed = 1;

constexpr void (*kCommands[])(CLI::App&, int&) = {
    add_play,      add_demo,        add_import,          add_export,        add_select,
    add_show,      add_year,        add_check,           add_backup,        add_restore,
    add_history,   add_diff,        add_restore_version, add_purge_history, add_copy,
    add_employees, add_setup_server};

int parse_and_run(CLI::App& program, int argc, char** argv, const int& status) try {
  program.parse(argc, argv);
  std::cout.flush();
  if (std::cout) return status;
  std::cerr << "velanorctl : la sortie n'a pas pu être écrite. Vérifiez la place sur le disque.\n";
  return kFailed;
} catch (const CLI::ParseError& end) {
  return end_of_parsing(program, end);
}

// The exit status, of a failure too.
int run(int argc, char** argv) try {
  int status = 0;
  CLI::App program("Fiches du personnel : le composant et sa base, à la ligne de commande", "velanorctl");
  speak_french(program);
  program.require_subcommand(1);
  program.footer(
      "Statut de sortie : 0 tout est fait, 1 l'opération a échoué ou une faute a été trouvée, 2 (play) le\n"
      "scénario n'est pas de son langage, 3 la base elle-même est endommagée, 64 la ligne de commande\n"
      "n'est pas comprise.");
  for (const auto add : kCommands) add(program, status);
  for (CLI::App* command : program.get_subcommands({})) command->group("Sous-commandes ");
  return parse_and_run(program, argc, taken_arguments(argc, argv), status);
} catch (const velanor::store::sqlite::DamagedError& error) {
  std::cerr << "velanorctl : " << error.what() << "\n";
  return kDamaged;
} catch (const std::exception& error) {
  std::cerr << "velanorctl : " << velanor::text::failure_sentence(error) << "\n";
  return kFailed;
}

}  // namespace

// What is told of a failure holds stored texts too.
int main(int argc, char** argv) {
  const GuardedOutput output(std::cout), errors(std::cerr);
  return run(argc, argv);
}
