// velanorctl: the component and its store from the command line.
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <string>

#include "app/velanorctl/commands.h"
#include "store/sqlite/failure.h"

namespace {

using namespace velanor::app;

constexpr int kFailed = 1;
// Not 2, which says that a scenario is not of the language.
constexpr int kUsage = 64;

constexpr void (*kCommands[])(CLI::App&, int&) = {add_play,   add_demo, add_import, add_export,
                                                  add_select, add_show, add_check,  add_backup};

void speak_french(CLI::App& program) {
  program.set_help_flag("-h,--help", "Affiche cette aide");
  const auto formatter = program.get_formatter();
  formatter->label("Usage", "Usage ");
  formatter->label("Positionals", "Arguments");
  formatter->label("Excludes", "Sans");
  formatter->label("REQUIRED", "(obligatoire)");
  formatter->label("SUBCOMMAND", "SOUS-COMMANDE");
  formatter->label("SUBCOMMANDS", "SOUS-COMMANDES");
}

std::string reason(const CLI::App& program, const CLI::ParseError& error) {
  switch (static_cast<CLI::ExitCodes>(error.get_exit_code())) {
    case CLI::ExitCodes::ExtrasError:
      return "argument inattendu : " + CLI::detail::join(program.remaining(true), " ");
    case CLI::ExitCodes::RequiredError:
      return "une sous-commande ou un argument manque";
    case CLI::ExitCodes::ExcludesError:
      return "deux options s'excluent";
    case CLI::ExitCodes::ArgumentMismatch:
      return "une option attend une valeur";
    case CLI::ExitCodes::ValidationError: {
      const std::string told = error.what();
      return "la valeur de " + told.substr(0, told.find(':')) + " n'est pas admise";
    }
    default:
      return std::string("la ligne de commande n'est pas comprise : ") + error.what();
  }
}

int parse_and_run(CLI::App& program, int argc, char** argv, const int& status) try {
  program.parse(argc, argv);
  return status;
} catch (const CLI::CallForHelp& help) {
  return program.exit(help);
} catch (const CLI::ParseError& error) {
  std::cerr << "velanorctl : " << reason(program, error) << ". Voir velanorctl --help.\n";
  return kUsage;
}

}  // namespace

int main(int argc, char** argv) try {
  int status = 0;
  CLI::App program("Fiches du personnel : le composant et sa base, à la ligne de commande", "velanorctl");
  speak_french(program);
  program.require_subcommand(1);
  program.footer(
      "Statut de sortie : 0 tout est fait, 1 l'opération a échoué ou une faute a été trouvée, 2 (play) le\n"
      "scénario n'est pas de son langage, 3 la base elle-même est endommagée, 64 la ligne de commande\n"
      "n'est pas comprise.");
  for (const auto add : kCommands) add(program, status);
  for (CLI::App* command : program.get_subcommands({})) command->group("Sous-commandes");
  return parse_and_run(program, argc, argv, status);
} catch (const velanor::store::sqlite::DamagedError& error) {
  std::cerr << "velanorctl : " << error.what() << "\n";
  return kDamaged;
} catch (const std::exception& error) {
  std::cerr << "velanorctl : " << error.what() << "\n";
  return kFailed;
}
