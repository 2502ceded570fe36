// velanorctl demo: builds the demonstration database.
#include <CLI/CLI.hpp>
#include <iostream>

#include "app/velanorctl/commands.h"
#include "app/velanorctl/open_store.h"
#include "app/velanorctl/progress.h"
#include "velanor/sqlite_database.h"

namespace velanor::app {
namespace {

struct Options {
  std::string path;
  int cards = 0;
};

std::size_t fill(store::SqliteDatabase& database, const demo::Options& options) {
  std::size_t records = 0;
  Progress progress("Données de démonstration");
  StoreSink sink([&](auto file, auto id, const auto& record) {
    database.put(file, id, record);
    ++records;
    progress.step();
  });
  database.in_one_change([&] { demo::fill(sink, options); });
  return records;
}

int build(const Options& options) {
  const std::string path = path_of(options.path);
  std::size_t records = 0;
  store::SqliteDatabase::build(path, [&](store::SqliteDatabase& database) {
    records = fill(database, options.cards > 0 ? demo::of_scale(options.cards) : demo::Options());
    return true;
  });
  std::cout << "Base « " << path << " » : " << records << " enregistrements.\n";
  return 0;
}

}  // namespace

void add_demo(CLI::App& program, int& status) {
  const auto options = std::make_shared<Options>();
  CLI::App* command = program.add_subcommand("demo", "Construit la base de démonstration");
  command->add_option("CHEMIN", options->path, "Le fichier à créer ; il ne doit pas exister")
      ->required()
      ->type_name("");
  command->add_option("--cards", options->cards, "Une grande base d'essai, d'environ N fiches")
      ->type_name("N")
      ->check(CLI::Range(1, 2'000'000));
  command->callback([options, &status] { status = build(*options); });
}

}  // namespace velanor::app
