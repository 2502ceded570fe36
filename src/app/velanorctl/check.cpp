// velanorctl check: judges every card of a database, and the database itself.
#include <CLI/CLI.hpp>
#include <iostream>
#include <string>
#include <vector>

#include "app/velanorctl/card_check.h"
#include "app/velanorctl/columns.h"
#include "app/velanorctl/commands.h"
#include "app/velanorctl/open_store.h"
#include "app/velanorctl/progress.h"
#include "store/sqlite/sqlite_database.h"

namespace velanor::app {
namespace {

std::vector<std::string> damages_of(store::Database& database) {
  const Progress progress("Examen de la base");
  auto* sqlite = dynamic_cast<store::SqliteDatabase*>(&database);
  return sqlite != nullptr ? sqlite->damages() : std::vector<std::string>();
}

int report_database(store::Database& database, const CardCheck& check) {
  int faults = 0;
  for (const std::string& damage : damages_of(database)) {
    std::cout << "Base endommagée : " << damage << "\n";
    ++faults;
  }
  for (const Fault& fault : check.faults_of_references()) {
    std::cout << fault.sentence() << "\n";
    ++faults;
  }
  return faults;
}

int check_all(store::Database& database) {
  const CardCheck check(database);
  int faults = report_database(database, check);
  const auto cards = database.OpenFile(kCardFile);
  const store::DbResult ids =
      database.Select(store::DbQuery("SSELECT VELANORO PAR 0", kCardFile, "0").encoded());
  int faulty = 0;
  Progress progress("Vérification", static_cast<std::size_t>(ids.DCount()));
  for (int i = 1; i <= ids.DCount(); ++i) {
    progress.step();
    const auto card = cards->find(ids(i));
    if (!card) continue;
    const auto found = check.faults_of(ids(i), *card);
    for (const Fault& fault : found) std::cout << ids(i) << " : " << fault.sentence() << "\n";
    faults += static_cast<int>(found.size());
    faulty += found.empty() ? 0 : 1;
  }
  std::cout << "Fiches vérifiées : " << ids.DCount() << ", fiches en faute : " << faulty
            << ", fautes : " << faults << ".\n";
  return faults == 0 ? 0 : 1;
}

int check(const StoreOptions& options) {
  const auto database = open_named_store(options);
  int status = 0;
  in_one_view(*database, [&] { status = check_all(*database); });
  return status;
}

}  // namespace

void add_check(CLI::App& program, int& status) {
  const auto options = std::make_shared<StoreOptions>();
  CLI::App* command = program.add_subcommand(
      "check", "Vérifie chaque fiche : règles d'enregistrement, codes, et la base elle-même");
  add_store_options(*command, *options);
  command->callback([options, &status] { status = check(*options); });
}

}  // namespace velanor::app
