// velanorctl purge-history: forgets old versions.
#include <CLI/CLI.hpp>
#include <ctime>
#include <iostream>

#include "app/velanorctl/commands.h"
#include "app/velanorctl/versions.h"
#include "velanor/date.h"

namespace velanor::app {
namespace {

struct Options {
  StoreOptions store;
  std::string before;
  bool agreed = false;
};

store::DbError error(const std::string& sentence) { return {store::kStoreFailure, sentence}; }

// The local midnight at which the day begins.
std::int64_t start_of(const std::string& day) {
  const auto date = entry::parse_date(day);
  if (!date) throw error("« " + day + " » n'est pas une date. Donnez-la comme 31/12/2024.");
  std::tm local{};
  local.tm_mday = date->day;
  local.tm_mon = date->month - 1;
  local.tm_year = date->year - 1900;
  local.tm_isdst = -1;
  return std::mktime(&local);
}

int purge(const Options& options) {
  const std::int64_t before = start_of(options.before);
  if (!options.agreed) {
    throw error("Rien n'a été oublié. Les versions remplacées avant le " + options.before +
                " seraient perdues pour toujours ; ajoutez --oui si c'est ce que vous voulez.");
  }
  const auto database = open_named_store(options.store);
  const std::size_t gone = office::history_of(*database).purge(before);
  std::cout << "Versions oubliées : " << gone << ". Ce qui est stocké n'a pas changé.\n";
  return 0;
}

}  // namespace

void add_purge_history(CLI::App& program, int& status) {
  const auto options = std::make_shared<Options>();
  CLI::App* command =
      program.add_subcommand("purge-history", "Oublie les versions remplacées avant une date");
  add_store_options(*command, options->store);
  command->add_option("--before", options->before, "La date : ce qui a été remplacé avant ce jour est oublié")
      ->required()
      ->type_name("JJ/MM/AAAA");
  command->add_flag("--oui", options->agreed, "Confirme : ce qui est oublié est perdu pour toujours");
  command->callback([options, &status] { status = purge(*options); });
}

}  // namespace velanor::app
