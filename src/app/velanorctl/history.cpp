// velanorctl history: lists the versions of a record.
#include <CLI/CLI.hpp>
#include <iostream>

#include "app/velanorctl/commands.h"
#include "app/velanorctl/table.h"
#include "app/velanorctl/versions.h"

namespace velanor::app {
namespace {

// What a version did to the one before it.
std::string kind_of(const std::vector<store::Version>& versions, std::size_t i) {
  if (!versions[i].sound) return "endommagée";
  if (!versions[i].record) return "suppression";
  const bool first = versions[i].number == 1;
  if (i == 0) return first ? "création" : "modification";
  const store::Version& before = versions[i - 1];
  return before.sound && !before.record ? "nouvelle création" : "modification";
}

int list(const RecordOptions& options) {
  const auto database = open_named_store(options.store);
  const auto versions = versions_of(*database, options);
  TextTable table({"numéro", "date", "auteur", "sorte"});
  for (std::size_t i = 0; i < versions.size(); ++i) {
    const store::Version& version = versions[i];
    table.add({std::to_string(version.number), moment_of(version), author_of(version), kind_of(versions, i)});
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
