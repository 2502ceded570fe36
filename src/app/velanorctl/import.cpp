// velanorctl import: a table into a file of records.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "app/velanorctl/commands.h"
#include "app/velanorctl/open_store.h"
#include "app/velanorctl/progress.h"
#include "card/record/known_files.h"
#include "control/session/card_id.h"
#include "exchange/import_csv.h"
#include "velanor/memory_database.h"
#include "velanor/sqlite_database.h"

namespace velanor::app {
namespace {

struct Options {
  StoreOptions store;
  std::string table, file;
  exchange::ImportOptions how;
  int megabytes = static_cast<int>(how.limits.bytes >> 20);
};

constexpr std::size_t kLinesShown = 20;

void tell(const Options& options, const exchange::ImportRemark& remark) {
  std::cerr << options.table << ":" << remark.line << ": " << remark.sentence << "\n";
}

int report_faults(const Options& options, const exchange::ImportReport& report) {
  const auto& faults = report.faults;
  const std::size_t shown = std::min(faults.size(), kLinesShown);
  for (std::size_t i = 0; i < shown; ++i) tell(options, faults[i]);
  if (const std::size_t others = faults.size() - shown + report.remarks_left_out; others > 0)
    std::cerr << "et " << others << " autres fautes\n";
  if (report.too_large)
    std::cerr << "Les limites se relèvent par --max-colonnes, --max-lignes et --max-mo.\n";
  if (report.unknown_codes) {
    std::cerr
        << "Importez d'abord les fichiers de référence ; --accepter-inconnus admet les codes qui n'y sont "
           "pas.\n";
  }
  std::cerr << "Rien n'a été importé. Corrigez le tableau, puis recommencez.\n";
  return 1;
}

void report_records(std::string_view verb, const std::vector<exchange::ImportReport::Record>& records) {
  for (std::size_t i = 0; i < std::min(records.size(), kLinesShown); ++i) {
    std::cout << verb << " " << records[i].id;
    const auto& changes = records[i].changes;
    for (std::size_t k = 0; k < changes.size(); ++k) std::cout << (k == 0 ? " : " : ", ") << changes[k];
    std::cout << "\n";
  }
  if (records.size() > kLinesShown)
    std::cout << verb << " encore " << records.size() - kLinesShown << " enregistrements\n";
}

void report_success(const Options& options, const exchange::ImportReport& report) {
  for (const exchange::ImportRemark& remark : report.remarks) {
    std::cerr << "Attention : ";
    tell(options, remark);
  }
  if (options.how.rehearsal) {
    report_records("créerait", report.created);
    report_records("modifierait", report.changed);
    std::cout << "Essai, rien n'a été écrit. ";
  }
  std::cout << options.file << " : enregistrements créés : " << report.created.size()
            << ", modifiés : " << report.changed.size() << ", inchangés : " << report.unchanged << ".\n";
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

exchange::ImportReport import_into(store::Database& database, const Options& options) {
  card::name_id_parts(database);
  std::ifstream in = open_table(options.table);
  Progress progress("Importation");
  return exchange::import_csv(in, database, options.file, options.how, [&] { progress.step(); });
}

// A database that does not exist yet appears with what is imported, or not at all.
exchange::ImportReport import_into_new(const std::string& path, const Options& options) {
  exchange::ImportReport report;
  store::SqliteDatabase::build(path, [&](store::SqliteDatabase& database) {
    report = import_into(database, options);
    return report.faults.empty();
  });
  return report;
}

// The path of a database file that is to be created; "" for any other store.
std::string new_database(const StoreOptions& store) {
  if (!is_file(store)) return {};
  const std::string path = path_of(store.url);
  return std::filesystem::exists(path) ? std::string() : path;
}

exchange::ImportReport import_as_told(const Options& options) {
  const std::string path = new_database(options.store);
  if (path.empty()) return import_into(*open_named_store(options.store), options);
  if (!options.how.rehearsal) return import_into_new(path, options);
  store::MemoryDatabase empty;
  return import_into(empty, options);
}

int import(const Options& options) {
  if (!card::is_known_file(options.file)) {
    std::cerr << "Attention : « " << options.file << " » n'est pas un des fichiers du composant ("
              << card::known_files() << ").\n";
  }
  const exchange::ImportReport report = import_as_told(options);
  if (!report.faults.empty()) return report_faults(options, report);
  report_success(options, report);
  return 0;
}

}  // namespace

void add_import(CLI::App& program, int& status) {
  const auto options = std::make_shared<Options>();
  CLI::App* command = program.add_subcommand("import", "Importe un tableau CSV dans un fichier, ou rien");
  command->footer(
      "La première ligne nomme les colonnes : id, puis des positions (1 ou 30,1,2) ou, dans VELANORO, les\n"
      "noms de la fiche (Nom, Début de contrat, Date d'effet 1, Montant 1.2). Une ligne fausse est signalée\n"
      "avec son numéro, et alors rien n'est gardé. Une base qui n'existe pas est créée. Les codes "
      "retrouvent\n"
      "les zéros qu'un tableur leur a ôtés.");
  command
      ->add_option("FICHIER", options->table,
                   "Le tableau, en UTF-8 ou en Windows-1252, à points-virgules ou à virgules")
      ->required()
      ->type_name("");
  add_store_options(*command, options->store);
  command->add_option("--file", options->file, "Le fichier de la base, par exemple VELANORO")
      ->required()
      ->type_name("NOM");
  command->add_flag("--essai", options->how.rehearsal,
                    "Dit ce qui serait créé ou modifié, et ce qui est faux, sans rien écrire");
  command->add_flag(
      "--accepter-inconnus", options->how.accept_unknown,
      "Dans VELANORO, admet les codes qu'aucun fichier de référence ne contient, et les signale");
  exchange::ImportLimits& limits = options->how.limits;
  const auto limit = [&](const char* name, int& value, const char* what) {
    command->add_option(name, value, what)
        ->check(CLI::Range(1, 100'000'000))
        ->capture_default_str()
        ->type_name("N");
  };
  limit("--max-colonnes", limits.columns, "Colonnes admises");
  limit("--max-lignes", limits.rows, "Lignes admises");
  limit("--max-fautes", limits.remarks, "Fautes gardées en mémoire ; les autres sont comptées");
  limit("--max-mo", options->megabytes, "Taille admise des enregistrements écrits, en Mo");
  command->callback([options, &status] {
    options->how.limits.bytes = static_cast<std::size_t>(options->megabytes) << 20;
    status = import(*options);
  });
}

}  // namespace velanor::app
