#include "app/velanorctl/open_store.h"

#include <CLI/CLI.hpp>

#include "store/memory_database.h"

namespace velanor::app {

void add_store_options(CLI::App& command, StoreOptions& options) {
  auto* url = command.add_option("--store", options.url, "Base à ouvrir")->type_name("URL");
  command.add_flag("--demo", options.demo, "Données de démonstration, en mémoire")->excludes(url);
}

std::unique_ptr<store::Database> open_store(const StoreOptions& options) {
  if (options.demo)
    throw store::DbError(store::kStoreFailure,
                         "Les données de démonstration ne sont pas encore livrées : ôtez l'option --demo.");
  if (!options.url.empty())
    throw store::DbError(store::kStoreFailure,
                         "La base « " + options.url +
                             " » ne peut pas être ouverte : seule la base vide en mémoire "
                             "est connue, ôtez l'option --store.");
  return std::make_unique<store::MemoryDatabase>();
}

}  // namespace velanor::app
