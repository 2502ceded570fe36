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

const store::DbRecord& content_of(const store::Version& version) {
  if (version.record) return *version.record;
  const std::string which = "La version " + std::to_string(version.number);
  throw store::DbError(store::kStoreFailure,
                       which +
                           (version.sound ? " est une suppression : elle n'a pas de contenu à rétablir."
                                          : " est endommagée : elle ne peut pas être rétablie.") +
                           " Choisissez-en une autre.");
}

// What was seen here is what it takes the place of, even when others write meanwhile. A damaged record is
// none that could be expected.
store::Expected expected_of(const store::Version& last) {
  if (!last.sound) return store::Expected::anything();
  return last.record ? store::Expected::record(*last.record) : store::Expected::absent();
}

int bring_back(const Options& options) {
  const auto database = open_named_store(options.store);
  const auto versions = versions_of(*database, options);
  const store::Version& wanted = version_numbered(versions, options.number);
  const store::DbRecord& content = content_of(wanted);
  const store::Version& last = versions.back();
  std::cout << options.file << " " << options.id << " : la version " << wanted.number << " ("
            << moment_of(wanted) << ", " << author_of(wanted) << ") ";
  if (last.record == content) {
    std::cout << "est ce qui est stocké. Rien n'a été écrit.\n";
    return 0;
  }
  database->OpenFile(options.file)->write(options.id, content, expected_of(last));
  std::cout << "est rétablie. C'est maintenant la version " << versions_of(*database, options).back().number
            << (last.sound && !last.record ? " ; l'enregistrement avait été supprimé" : "") << ".\n";
  return 0;
}

}  // namespace

void add_restore_version(CLI::App& program, int& status) {
  const auto options = std::make_shared<Options>();
  CLI::App* command =
      program.add_subcommand("restore-version", "Rétablit une version antérieure d'un enregistrement");
  add_record_options(*command, *options);
  command->add_option("NUMERO", options->number, "Le numéro de la version, comme « history » le donne")
      ->required()
      ->type_name("")
      ->check(CLI::PositiveNumber.description(""));
  command->footer("Rien n'est perdu : ce qui était stocké reste dans l'historique.");
  command->callback([options, &status] { status = bring_back(*options); });
}

}  // namespace velanor::app
