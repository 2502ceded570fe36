// velanorctl export: a file of records as a table.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <iostream>

#include "app/velanorctl/commands.h"
#include "app/velanorctl/export_target.h"
#include "app/velanorctl/guarded_output.h"
#include "app/velanorctl/open_store.h"
#include "app/velanorctl/progress.h"
#include "card/record/known_files.h"
#include "exchange/csv.h"
#include "exchange/export_csv.h"

namespace velanor::app {
namespace {

struct Options {
  StoreOptions store;
  std::string file, table = "-";
  bool names = false;
  std::string separator = ";";
};

// A name that is misspelt would pass for a file without records.
void refuse_unknown(store::Database& database, const std::string& file) {
  if (card::is_known_file(file)) return;
  if (database.Select(store::DbQuery("SSELECT " + file, file, "0").encoded()).DCount() > 0) return;
  throw store::DbError(store::kStoreFailure, "Le fichier « " + file +
                                                 " » n'est pas dans la base. Le composant connaît " +
                                                 card::known_files() + ".");
}

void write(const Options& options, std::ostream& out) {
  const auto database = open_named_store(options.store);
  refuse_unknown(*database, options.file);
  Progress progress("Exportation");
  out << exchange::kByteOrderMark;
  database->in_one_view([&] {
    exchange::export_csv(
        out, *database, options.file,
        {.headings = options.names ? exchange::Headings::kNames : exchange::Headings::kPositions,
         .separator = options.separator.front()},
        [&] { progress.step(); });
  });
  out.flush();
  if (!out) {
    throw store::DbError(store::kStoreFailure,
                         "Le tableau « " + options.table +
                             " » n'a pas pu être écrit. Vérifiez la place sur le disque "
                             "et votre droit d'écrire dans ce dossier.");
  }
}

// Exactly as it is stored, unless somebody looks at it.
void write_to_output(const Options& options) {
  auto* guard = dynamic_cast<GuardedOutput*>(std::cout.rdbuf());
  if (guard != nullptr && ::isatty(STDOUT_FILENO) == 0) guard->let_all_through();
  write(options, std::cout);
}

void write_table(const Options& options) {
  write_export(options.table, [&](std::ostream& out) { write(options, out); });
}

}  // namespace

void add_export(CLI::App& program, int& status) {
  const auto options = std::make_shared<Options>();
  CLI::App* command =
      program.add_subcommand("export", "Exporte un fichier en un tableau CSV que import relit");
  command->add_option("FICHIER", options->table, "Le tableau à écrire ; « - » ou rien : la sortie standard")
      ->type_name("");
  add_store_options(*command, options->store);
  command->add_option("--file", options->file, "Le fichier de la base, par exemple VELANORO")
      ->required()
      ->type_name("NOM");
  command->add_flag("--names", options->names,
                    "Pour VELANORO : colonnes par leur seul nom, dates et montants comme à l'écran");
  command->add_option("--separator", options->separator, "Le séparateur, « ; » ou « , »")
      ->type_name("CAR")
      ->check(CLI::IsMember({";", ","}));
  command->callback([options, &status] {
    options->table == "-" ? write_to_output(*options) : write_table(*options);
    status = 0;
  });
}

}  // namespace velanor::app
