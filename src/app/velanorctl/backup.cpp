// velanorctl backup: copies a database while others may use it.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>

#include "app/velanorctl/age.h"
#include "app/velanorctl/commands.h"
#include "app/velanorctl/open_store.h"
#include "app/velanorctl/progress.h"
#include "store/sqlite/backups.h"
#include "velanor/sqlite_database.h"

namespace velanor::app {
namespace {

struct Options {
  std::string url;
  std::string path;
  // 0: a single file.
  int keep = 0;
  // Whom to encrypt it for; "": nobody.
  std::string recipient = {};
};

constexpr int kMostKept = 100'000;

void refuse_folder(const std::string& path) {
  if (!std::filesystem::is_directory(path)) return;
  throw store::DbError(store::kStoreFailure, "« " + path +
                                                 " » est un dossier. Donnez le nom du fichier à créer, ou "
                                                 "--garder pour y tenir plusieurs sauvegardes.");
}

void back_up_to_file(store::SqliteDatabase& database, const Options& options) {
  refuse_folder(options.path);
  {
    Progress progress("Sauvegarde");
    database.back_up(options.path, [&](double part) { progress.part(part); });
  }
  std::cout << "Sauvegarde « " << options.path << " » terminée et vérifiée.\n";
}

void back_up_to_folder(store::SqliteDatabase& database, const Options& options) {
  const std::string name = std::filesystem::path(path_of(options.url)).stem().string();
  const store::sqlite::Backups backups(options.path, name, options.keep);
  store::sqlite::Backups::Report report;
  {
    Progress progress("Sauvegarde");
    report = backups.make(database, [&](double part) { progress.part(part); });
  }
  std::cout << "Sauvegarde « " << report.path << " » terminée et vérifiée.\n";
  for (const std::string& path : report.removed)
    std::cout << "Sauvegarde ancienne ôtée : « " << path << " ».\n";
  for (const std::string& path : report.kept_against_will)
    std::cerr << "Attention : la sauvegarde ancienne « " << path
              << " » n'a pas pu être ôtée. Vérifiez votre droit d'écrire dans ce dossier.\n";
}

// In clear it stands beside the base, where the same is in clear anyway, and no longer than needed.
void back_up_encrypted(store::SqliteDatabase& database, const Options& options) {
  refuse_folder(options.path);
  auto progress = std::make_unique<Progress>("Sauvegarde");
  database.with_copy(
      [&](const std::string& copy) {
        progress.reset();
        encrypt_for(options.recipient, copy, options.path);
      },
      [&](double part) { progress->part(part); });
  std::cout << "Sauvegarde « " << options.path << " » terminée, vérifiée et chiffrée.\n";
}

int back_up(const Options& options) {
  const auto database = open_to_examine(options.url);
  if (!options.recipient.empty()) {
    back_up_encrypted(*database, options);
  } else {
    options.keep > 0 ? back_up_to_folder(*database, options) : back_up_to_file(*database, options);
  }
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
      ->check(CLI::Range(1, kMostKept).description(""))
      ->excludes(command
                     ->add_option("--to-age", options->recipient,
                                  "Chiffre la copie pour ce destinataire (une clé publique « age1… »), par "
                                  "le programme age")
                     ->type_name("CLE"));
  command->footer(
      "La copie est vérifiée avant de prendre son nom. Une base endommagée est refusée, au statut 3.");
  command->callback([options, &status] { status = back_up(*options); });
}

}  // namespace velanor::app
