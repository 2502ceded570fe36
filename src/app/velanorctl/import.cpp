// velanorctl import: a table into a file of records.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <fstream>
#include <iostream>

#include "app/velanorctl/commands.h"
#include "app/velanorctl/import_csv.h"
#include "app/velanorctl/known_files.h"
#include "app/velanorctl/open_store.h"
#include "app/velanorctl/progress.h"

namespace velanor::app {
namespace {

struct Options {
  StoreOptions store;
  std::string table, file;
};

constexpr std::size_t kFaultsShown = 20;

int report_faults(const Options& options, const std::vector<ImportFault>& faults) {
  for (std::size_t i = 0; i < std::min(faults.size(), kFaultsShown); ++i)
    std::cerr << options.table << ":" << faults[i].line << ": " << faults[i].sentence << "\n";
  if (faults.size() > kFaultsShown) std::cerr << "et " << faults.size() - kFaultsShown << " autres fautes\n";
  std::cerr << "Rien n'a été importé. Corrigez le tableau, puis recommencez.\n";
  return 1;
}

std::ifstream open_table(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in || in.peek() == std::ifstream::traits_type::eof()) {
    throw store::DbError(store::kStoreFailure, "Le tableau « " + path +
                                                   " » ne peut pas être lu ou est vide. Vérifiez son nom et "
                                                   "votre droit de le lire.");
  }
  return in;
}

int import(const Options& options) {
  std::ifstream in = open_table(options.table);
  const auto database = open_named_store(options.store, IfMissing::kCreate);
  if (!is_known_file(options.file)) {
    std::cerr << "Attention : « " << options.file << " » n'est pas un des fichiers du composant ("
              << known_files() << ").\n";
  }
  ImportReport report;
  {
    Progress progress("Importation");
    report = import_csv(in, *database, options.file, [&] { progress.step(); });
  }
  if (!report.faults.empty()) return report_faults(options, report.faults);
  std::cout << options.file << " : enregistrements créés : " << report.created
            << ", modifiés : " << report.changed << ".\n";
  return 0;
}

}  // namespace

void add_import(CLI::App& program, int& status) {
  const auto options = std::make_shared<Options>();
  CLI::App* command = program.add_subcommand("import", "Importe un tableau CSV dans un fichier, ou rien");
  command->footer(
      "La première ligne nomme les colonnes : id, puis des positions (1 ou 30,1,2) ou, dans VELANORO, les\n"
      "noms de la fiche (Nom, Début de contrat, Date d'effet 1, Montant 1.2). Une ligne fausse est signalée\n"
      "avec son numéro, et alors rien n'est gardé. Une base qui n'existe pas est créée.");
  command->add_option("FICHIER", options->table, "Le tableau, en UTF-8, à points-virgules ou à virgules")
      ->required()
      ->type_name("");
  add_store_options(*command, options->store);
  command->add_option("--file", options->file, "Le fichier de la base, par exemple VELANORO")
      ->required()
      ->type_name("NAME");
  command->callback([options, &status] { status = import(*options); });
}

}  // namespace velanor::app
