// velanorctl show: prints a record as the scenario command "record" does.
#include <CLI/CLI.hpp>
#include <iostream>

#include "app/velanorctl/commands.h"
#include "app/velanorctl/open_store.h"
#include "store/position.h"

namespace velanor::app {
namespace {

struct Options {
  StoreOptions store;
  std::string file, id;
};

int show(const Options& options) {
  const auto database = open_named_store(options.store);
  const auto record = database->OpenFile(options.file)->find(options.id);
  if (record) {
    store::print_elements(*record, std::cout);
  } else {
    std::cout << "absent\n";
  }
  return record ? 0 : 1;
}

}  // namespace

void add_show(CLI::App& program, int& status) {
  const auto options = std::make_shared<Options>();
  CLI::App* command = program.add_subcommand("show", "Affiche un enregistrement, un élément par ligne");
  add_store_options(*command, options->store);
  command->add_option("FICHIER", options->file, "Le fichier, par exemple VELANORO")
      ->required()
      ->type_name("");
  command->add_option("ID", options->id, "L'identifiant de l'enregistrement")->required()->type_name("");
  command->callback([options, &status] { status = show(*options); });
}

}  // namespace velanor::app
