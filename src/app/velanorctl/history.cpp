// velanorctl history: lists the versions of a record.
#include <CLI/CLI.hpp>
#include <iostream>

#include "app/velanorctl/commands.h"
#include "app/velanorctl/table.h"
#include "app/velanorctl/versions.h"

namespace velanor::app {
namespace {

int list(const RecordOptions& options) {
  const auto database = open_named_store(options.store);
  const auto versions = versions_of(*database, options);
  TextTable table({"numéro", "date", "auteur", "sorte"});
  for (std::size_t i = 0; i < versions.size(); ++i) {
    const store::Version& version = versions[i];
    table.add({std::to_string(version.number), office::moment_of(version), author_of(version),
               office::kind_of(versions, i)});
  }
  table.print(std::cout);
  return 0;
}

}  // namespace

void add_history(CLI::App& program, int& status) {
  const auto options = std::make_shared<RecordOptions>();
  CLI::App* command = program.add_subcommand(
      "history", "Liste les versions d'un enregistrement : numéro, date, auteur, sorte");
  add_record_options(*command, *options);
  command->footer(
      "La dernière version est celle qui est stockée. « diff » dit ce qui change de l'une à l'autre,\n"
      "« restore-version » en rétablit une.");
  command->callback([options, &status] { status = list(*options); });
}

}  // namespace velanor::app
