// velanorctl check: judges every card of a database, and the database itself.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "app/velanorctl/commands.h"
#include "app/velanorctl/open_store.h"
#include "app/velanorctl/progress.h"
#include "office/calculations.h"
#include "office/checking.h"
#include "office/fault_list.h"
#include "store/sqlite/failure.h"
#include "velanor/sqlite_database.h"

namespace velanor::app {
namespace {

// Nothing more is asked of a base that is damaged: its answers could be wrong.
int report_damages(const std::vector<std::string>& damages) {
  for (const std::string& damage : damages) std::cout << "Base endommagée : " << damage << "\n";
  std::cout << "La base est endommagée. Fermez les programmes, essayez « velanorctl check --reparer », sinon "
               "reprenez la dernière sauvegarde.\n";
  return kDamaged;
}

int report_disagreements(const std::vector<std::string>& found) {
  for (const std::string& part : found) std::cout << "Structure de la base : " << part << ".\n";
  if (!found.empty())
    std::cout << "« velanorctl check --reparer » refait ce qui se déduit des enregistrements.\n";
  return found.empty() ? 0 : kDamaged;
}

int report_records(const std::vector<store::SqliteDatabase::DamagedRecord>& damaged) {
  for (const auto& record : damaged) std::cout << record.sentence << "\n";
  return damaged.empty() ? 0 : kDamaged;
}

struct Options {
  StoreOptions store;
  bool repair = false, warnings = false;
  int days_ahead = office::Warnings::kDaysAhead;
};

std::string counted(int count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count > 1 ? "s" : "");
}

// A damaged card has been told already.
void look_at_all(office::Checking& checking) {
  Progress progress("Vérification", static_cast<std::size_t>(checking.cards()));
  while (!checking.done()) {
    progress.step();
    try {
      checking.step();
    } catch (const store::sqlite::DamagedRecord&) {
    }
  }
}

void print(const office::FaultList& list) {
  for (const office::FaultList::Kind* kind : list.most_frequent_first()) {
    std::cout << counted(kind->cards, "fiche") << " : " << kind->sentence << "\n";
    for (const std::string& line : kind->lines) std::cout << line << "\n";
    std::cout << "\n";
  }
}

// The faults, or the warnings that nobody has set aside.
office::FaultList list_of(const std::vector<office::Finding>& findings, bool faults) {
  office::FaultList list;
  std::map<std::string, std::vector<card::Fault>> by_card;
  for (const office::Finding& finding : findings) {
    if (finding.is_fault() == faults && !finding.aside) by_card[finding.id].push_back(finding.fault);
  }
  for (const auto& [id, told] : by_card) list.add(id, told);
  return list;
}

void print_warnings(const office::Checking& checking, const std::vector<office::Finding>& findings) {
  const office::FaultList warnings = list_of(findings, false);
  std::cout << "Avertissements\n\n";
  print(warnings);
  const auto aside = std::count_if(findings.begin(), findings.end(),
                                   [](const office::Finding& finding) { return finding.aside.has_value(); });
  std::cout << "Avertissements : " << warnings.faults() << ", mis de côté : " << aside << ".\n"
            << office::completeness(checking.complete(), checking.cards()) << ".\n";
}

int check_records(store::Database& database, const Options& options) {
  const auto search = options.warnings ? office::Search::kFaultsAndWarnings : office::Search::kFaults;
  office::Checking checking(database, {}, entry::system_clock(), options.days_ahead, search);
  for (const card::Fault& fault : checking.faults_of_references()) std::cout << fault.sentence() << "\n";
  look_at_all(checking);
  const std::vector<office::Finding> findings = checking.take_findings();
  const office::FaultList list = list_of(findings, true);
  print(list);
  const auto lost = office::calculations_without_card(database);
  for (const std::string& sentence : lost) std::cout << sentence << "\n";
  if (options.warnings) print_warnings(checking, findings);
  const int faults = list.faults() + static_cast<int>(checking.faults_of_references().size() + lost.size());
  std::cout << "Fiches vérifiées : " << checking.cards() << ", fiches en faute : " << list.cards()
            << ", fautes : " << faults << ".\n";
  return faults == 0 ? 0 : 1;
}

std::vector<std::string> damages_of(store::SqliteDatabase& database) {
  const Progress progress("Examen de la base");
  return database.damages();
}

void repair(store::SqliteDatabase& database) {
  {
    const Progress progress("Réparation");
    database.repair();
  }
  std::cout << "Ce qui se déduit des enregistrements a été refait.\n";
}

int check_all(store::Database& database, const Options& options) {
  auto* file = dynamic_cast<store::SqliteDatabase*>(&database);
  int status = 0;
  database.in_one_view([&] {
    if (file != nullptr) {
      const auto damages = damages_of(*file);
      if (!damages.empty()) return void(status = report_damages(damages));
      status = std::max(report_disagreements(file->disagreements()), report_records(file->damaged_records()));
    }
    // A damaged reference file ends it: every card would seem wrong.
    try {
      status = std::max(status, check_records(database, options));
    } catch (const store::sqlite::DamagedRecord&) {
      std::cout
          << "Les fiches n'ont pas été vérifiées : rétablissez d'abord les enregistrements endommagés.\n";
    }
  });
  return status;
}

int check(const Options& options) {
  const StoreOptions& store = options.store;
  if (!is_file(store)) return check_all(*open_named_store(store), options);
  const auto database = open_to_examine(store.url);
  if (options.repair) repair(*database);
  return check_all(*database, options);
}

}  // namespace

void add_check(CLI::App& program, int& status) {
  const auto options = std::make_shared<Options>();
  CLI::App* command = program.add_subcommand(
      "check", "Vérifie chaque fiche : règles d'enregistrement, codes, et la base elle-même");
  add_store_options(*command, options->store);
  command->add_flag(
      "--reparer", options->repair,
      "Refait d'abord, d'un seul tenant, ce qui se déduit des enregistrements : index, déclencheurs");
  auto* warnings = command->add_flag(
      "--warnings", options->warnings,
      "Dit aussi les avertissements, qui ne changent pas le statut de sortie, et combien de fiches sont "
      "complètes");
  command
      ->add_option("--jours", options->days_ahead,
                   "Avec --warnings : avertit des CDD qui finissent dans les N jours, de 1 à 366 ; 60 sinon")
      ->type_name("N")
      ->needs(warnings)
      ->check(CLI::Range(office::Warnings::kLeastAhead, office::Warnings::kMostAhead));
  command->footer(
      "Les fautes sont rangées par sorte, les plus fréquentes d'abord. Statut de sortie : 0 rien n'est en\n"
      "faute, 1 une fiche ou un fichier de référence est en faute, 3 la base elle-même est endommagée.");
  command->callback([options, &status] { status = check(*options); });
}

}  // namespace velanor::app
