// velanorctl restore-version: writes an earlier version of a record anew.
#include <CLI/CLI.hpp>
#include <iostream>

#include "app/velanorctl/commands.h"
#include "app/velanorctl/versions.h"

namespace velanor::app {
namespace {

struct Options : RecordOptions {
  std::uint64_t number = 0;
};

int bring_back(const Options& options) {
  const auto database = open_named_store(options.store);
  const auto versions = versions_of(*database, options);
  const store::Version& wanted = office::version_numbered(versions, options.number);
  const auto back = office::bring_back(*database, options.file, options.id, versions, wanted);
  std::cout << options.file << " " << options.id << " : la version " << wanted.number << " ("
            << office::moment_of(wanted) << ", " << author_of(wanted) << ") ";
  if (!back.written) {
    std::cout << "est ce qui est stocké. Rien n'a été écrit.\n";
    return 0;
  }
  std::cout << "est rétablie. C'est maintenant la version " << back.number
            << (back.was_deleted ? " ; l'enregistrement avait été supprimé" : "") << ".\n";
  return 0;
}

}  // namespace

void add_restore_version(CLI::App& program, int& status) {
  const auto options = std::make_shared<Options>();
  CLI::App* command =
      program.add_subcommand("restore-version", "Rétablit une version antérieure d'un enregistrement");
  add_record_options(*command, *options);
  add_version_number(*command, "NUMERO", options->number,
                     "Le numéro de la version, comme « history » le donne")
      ->required();
  command->footer("Rien n'est perdu : ce qui était stocké reste dans l'historique.");
  command->callback([options, &status] { status = bring_back(*options); });
}

}  // namespace velanor::app
