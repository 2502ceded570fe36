// velanorctl play: plays a scenario on the component without a window.
#include <CLI/CLI.hpp>
#include <iostream>

#include "app/velanorctl/commands.h"
#include "app/velanorctl/headless_stage.h"
#include "app/velanorctl/open_store.h"

namespace velanor::app {
namespace {

struct Options {
  StoreOptions store;
  std::string file = "-";
};

play::Scenario read(const std::string& file) {
  return file == "-" ? play::read_scenario(std::cin, "-", ".") : play::read_scenario(file);
}

int play_scenario(const Options& options) {
  const play::Scenario scenario = read(options.file);
  const auto store = open_store(options.store);
  play::RecordingDatabase database(*store);
  play::MessageBoxes boxes;
  return play::run(scenario,
                   {database, boxes, [&] { return start_headless(database, boxes); }, std::cout, std::cerr});
}

}  // namespace

void add_play(CLI::App& program, int& status) {
  const auto options = std::make_shared<Options>();
  CLI::App* command = program.add_subcommand("play", "Joue un scénario sur le composant, sans fenêtre");
  add_store_options(*command, options->store);
  command->add_option("FICHIER", options->file, "Le scénario ; « - » ou rien : l'entrée standard")
      ->type_name("");
  command->callback([options, &status] { status = play_scenario(*options); });
}

}  // namespace velanor::app
