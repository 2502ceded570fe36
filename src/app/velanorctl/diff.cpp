// velanorctl diff: tells what changed between two versions of a record.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>

#include "app/velanorctl/commands.h"
#include "app/velanorctl/table.h"
#include "app/velanorctl/versions.h"
#include "office/record_changes.h"

namespace velanor::app {
namespace {

struct Options : RecordOptions {
  // 0: not given.
  std::uint64_t from = 0, to = 0;
};

// What was before the first version, and what a deletion leaves: a record of which all is empty.
store::DbRecord content_of(const store::Version& version) {
  if (version.sound) return version.record.value_or(store::DbRecord());
  throw store::DbError(store::kStoreFailure,
                       "La version " + std::to_string(version.number) +
                           " est endommagée et ne peut pas être comparée. Choisissez-en une autre.");
}

// Of two that are not named the last one and the one before it; one that is named is compared with the last.
int tell_changes(const Options& options) {
  const auto database = open_named_store(options.store);
  const auto versions = versions_of(*database, options);
  const store::Version& last =
      options.to != 0 ? office::version_numbered(versions, options.to) : versions.back();
  store::Version first;
  if (options.from != 0) {
    first = office::version_numbered(versions, options.from);
  } else if (versions.size() > 1) {
    first = versions[versions.size() - 2];
  }
  std::cout << (first.number == 0 ? "création"
                                  : "version " + std::to_string(first.number) + ", " +
                                        office::moment_of(first) + ", " + author_of(first))
            << " → version " << last.number << ", " << office::moment_of(last) << ", " << author_of(last)
            << "\n";
  const auto changes = office::changes_between(options.file, content_of(first), content_of(last));
  for (const office::Change& change : changes) std::cout << printable(change.text()) << "\n";
  if (!last.record) std::cout << "L'enregistrement est supprimé.\n";
  if (changes.empty()) std::cout << "Rien ne diffère.\n";
  return 0;
}

}  // namespace

void add_diff(CLI::App& program, int& status) {
  const auto options = std::make_shared<Options>();
  CLI::App* command =
      program.add_subcommand("diff", "Dit ce qui change entre deux versions d'un enregistrement");
  add_record_options(*command, *options);
  add_version_number(*command, "V1", options->from, "Le numéro de la première ; sinon l'avant-dernière");
  add_version_number(*command, "V2", options->to, "Le numéro de la seconde ; sinon la dernière");
  command->footer(
      "Une fiche (VELANORO) est dite dans les mots de l'écran, les autres fichiers par position.");
  command->callback([options, &status] { status = tell_changes(*options); });
}

}  // namespace velanor::app
