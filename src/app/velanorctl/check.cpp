// velanorctl check: judges every card of a database, and the database itself.
#include <CLI/CLI.hpp>
#include <iostream>
#include <string>
#include <vector>

#include "app/velanorctl/commands.h"
#include "app/velanorctl/open_store.h"
#include "app/velanorctl/progress.h"
#include "exchange/columns.h"
#include "office/card_check.h"
#include "office/fault_list.h"
#include "velanor/sqlite_database.h"

namespace velanor::app {
namespace {

std::vector<std::string> damages_of(store::Database& database) {
  const Progress progress("Examen de la base");
  auto* sqlite = dynamic_cast<store::SqliteDatabase*>(&database);
  return sqlite != nullptr ? sqlite->damages() : std::vector<std::string>();
}

// Nothing more is asked of a base that is damaged: its answers could be wrong.
int report_damages(const std::vector<std::string>& damages) {
  for (const std::string& damage : damages) std::cout << "Base endommagée : " << damage << "\n";
  std::cout << "La base est endommagée. Fermez les programmes et reprenez la dernière sauvegarde.\n";
  return kDamaged;
}

std::string counted(int count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count > 1 ? "s" : "");
}

int check_records(store::Database& database) {
  const office::CardCheck check(database);
  office::FaultList list;
  for (const card::Fault& fault : check.faults_of_references()) std::cout << fault.sentence() << "\n";
  const auto cards = database.OpenFile(exchange::kCardFile);
  const store::DbResult ids =
      database.Select(store::DbQuery("SSELECT VELANORO PAR 0", exchange::kCardFile, "0").encoded());
  {
    Progress progress("Vérification", static_cast<std::size_t>(ids.DCount()));
    for (int i = 1; i <= ids.DCount(); ++i) {
      progress.step();
      if (const auto card = cards->find(ids(i))) list.add(ids(i), check.faults_of(ids(i), *card));
    }
  }
  for (const office::FaultList::Kind* kind : list.most_frequent_first()) {
    std::cout << counted(kind->cards, "fiche") << " : " << kind->sentence << "\n";
    for (const std::string& line : kind->lines) std::cout << line << "\n";
    std::cout << "\n";
  }
  const int faults = list.faults() + static_cast<int>(check.faults_of_references().size());
  std::cout << "Fiches vérifiées : " << ids.DCount() << ", fiches en faute : " << list.cards()
            << ", fautes : " << faults << ".\n";
  return faults == 0 ? 0 : 1;
}

int check(const StoreOptions& options) {
  const std::unique_ptr<store::Database> database =
      is_file(options) ? open_to_examine(options.url) : open_named_store(options);
  int status = 0;
  database->in_one_view([&] {
    const auto damages = damages_of(*database);
    status = damages.empty() ? check_records(*database) : report_damages(damages);
  });
  return status;
}

}  // namespace

void add_check(CLI::App& program, int& status) {
  const auto options = std::make_shared<StoreOptions>();
  CLI::App* command = program.add_subcommand(
      "check", "Vérifie chaque fiche : règles d'enregistrement, codes, et la base elle-même");
  add_store_options(*command, *options);
  command->footer(
      "Les fautes sont rangées par sorte, les plus fréquentes d'abord. Statut de sortie : 0 rien n'est en\n"
      "faute, 1 une fiche ou un fichier de référence est en faute, 3 la base elle-même est endommagée.");
  command->callback([options, &status] { status = check(*options); });
}

}  // namespace velanor::app
