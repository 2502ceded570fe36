// velanorctl backup: copies a database while others may use it.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>

#include "app/velanorctl/backup_rotation.h"
#include "app/velanorctl/commands.h"
#include "app/velanorctl/open_store.h"
#include "app/velanorctl/progress.h"
#include "velanor/sqlite_database.h"

namespace velanor::app {
namespace {

struct Options {
  std::string url;
  std::string path;
  // 0: a single file.
  int keep = 0;
};

constexpr int kMostKept = 100'000;

void back_up_to_file(store::SqliteDatabase& database, const Options& options) {
  if (std::filesystem::is_directory(options.path)) {
    throw store::DbError(store::kStoreFailure, "« " + options.path +
                                                   " » est un dossier. Donnez le nom du fichier à créer, ou "
                                                   "--garder pour y tenir plusieurs sauvegardes.");
  }
  {
    Progress progress("Sauvegarde");
    database.back_up(options.path, [&](double part) { progress.part(part); });
  }
  std::cout << "Sauvegarde « " << options.path << " » terminée et vérifiée.\n";
}

void back_up_to_folder(store::SqliteDatabase& database, const Options& options) {
  const std::string name = std::filesystem::path(path_of(options.url)).stem().string();
  RotationReport report;
  {
    Progress progress("Sauvegarde");
    report = back_up_in_rotation(database, {options.path, name, options.keep}, system_time(),
                                 [&](double part) { progress.part(part); });
  }
  std::cout << "Sauvegarde « " << report.path << " » terminée et vérifiée.\n";
  for (const std::string& path : report.removed)
    std::cout << "Sauvegarde ancienne ôtée : « " << path << " ».\n";
  for (const std::string& path : report.kept_against_will)
    std::cerr << "Attention : la sauvegarde ancienne « " << path
              << " » n'a pas pu être ôtée. Vérifiez votre droit d'écrire dans ce dossier.\n";
}

int back_up(const Options& options) {
  const auto database = open_to_examine(options.url);
  options.keep > 0 ? back_up_to_folder(*database, options) : back_up_to_file(*database, options);
  return 0;
}

}  // namespace

void add_backup(CLI::App& program, int& status) {
  const auto options = std::make_shared<Options>();
  CLI::App* command = program.add_subcommand("backup", "Sauvegarde la base, même pendant qu'elle sert");
  command->add_option("--store", options->url, "Base à sauvegarder : un chemin ou sqlite:CHEMIN")
      ->required()
      ->type_name("URL");
  command
      ->add_option("CHEMIN", options->path,
                   "Le fichier à créer, qui ne doit pas exister ; avec --garder, le dossier des sauvegardes")
      ->required()
      ->type_name("");
  command
      ->add_option("--garder", options->keep,
                   "Écrit BASE-AAAAMMJJ-HHMMSS.db dans le dossier CHEMIN et n'y garde que les N dernières "
                   "sauvegardes de cette base")
      ->type_name("N")
      ->check(CLI::Range(1, kMostKept).description(""));
  command->footer(
      "La copie est vérifiée avant de prendre son nom. Une base endommagée est refusée, au statut 3.");
  command->callback([options, &status] { status = back_up(*options); });
}

}  // namespace velanor::app
