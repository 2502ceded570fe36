#include "app/velanorctl/open_store.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>

#include "control/session/card_id.h"
#include "control/session/variable.h"
#include "exchange/columns.h"
#include "store/sqlite/failure.h"
#include "velanor/memory_database.h"
#include "velanor/postgres_database.h"

namespace velanor::app {
namespace {

using Server = store::PostgresDatabase;

constexpr std::string_view kSqlite = "sqlite:";

// The reference files change seldom and are read at every step; the cards are always read anew.
Server::Options server_options() {
  Server::Options options;
  for (const std::string_view file : control::kFileNames) {
    if (file != exchange::kCardFile) options.kept_files.emplace_back(file);
  }
  options.kept_files.emplace_back("ETABLISSEMENT");
  return options;
}

std::unique_ptr<store::Database> demonstration() {
  auto database = std::make_unique<store::MemoryDatabase>();
  StoreSink sink([&](auto file, auto id, const auto& record) { database->put(file, id, record); });
  demo::fill(sink);
  return database;
}

}  // namespace

void add_store_options(CLI::App& command, StoreOptions& options) {
  auto* url =
      command
          .add_option(
              "--store", options.url,
              "Base à ouvrir : un chemin, sqlite:CHEMIN, l'URL postgresql:// d'un serveur, ou memory: "
              "(vide, en mémoire)")
          ->type_name("URL");
  command.add_flag("--demo", options.demo, "Données de démonstration, en mémoire")->excludes(url);
}

std::string path_of(std::string_view url) {
  if (url == kSqlite)
    throw store::DbError(store::kStoreFailure,
                         "Il manque le chemin de la base derrière « sqlite: ». Donnez-le.");
  if (Server::is_url(url)) {
    throw store::DbError(store::kStoreFailure,
                         "La base « " + Server::without_password(url) +
                             " » est sur un serveur : cette commande ne travaille que sur "
                             "un fichier. Employez les outils du serveur (docs/server.md).");
  }
  if (url.starts_with(kSqlite)) return std::string(url.substr(kSqlite.size()));
  // A single letter may be a drive; more before a colon is the name of a kind.
  const std::size_t colon = url.find(':');
  const bool plain = colon == url.npos || colon < 2 || url.find('/') < colon;
  if (plain) return std::string(url);
  throw store::DbError(store::kStoreFailure, "La base « " + std::string(url) +
                                                 " » n'est pas d'une sorte connue : donnez un chemin, "
                                                 "sqlite:CHEMIN, postgresql://… ou memory:.");
}

bool is_file(const StoreOptions& options) {
  return !options.demo && !options.url.empty() && options.url != kMemoryStore && !Server::is_url(options.url);
}

namespace {

std::unique_ptr<store::Database> open_kind(const StoreOptions& options, IfMissing if_missing) {
  if (options.demo) return demonstration();
  if (options.url.empty() || options.url == kMemoryStore) return std::make_unique<store::MemoryDatabase>();
  if (Server::is_url(options.url)) return std::make_unique<Server>(options.url, server_options());
  using Sqlite = store::SqliteDatabase;
  Sqlite::Options sqlite;
  if (if_missing == IfMissing::kCreate) sqlite.missing = Sqlite::Missing::kCreate;
  auto database = std::make_unique<Sqlite>(path_of(options.url), sqlite);
  if (const std::string remark = database->remark(); !remark.empty())
    std::cerr << "Attention : " << remark << "\n";
  return database;
}

}  // namespace

std::unique_ptr<store::Database> open_store(const StoreOptions& options, IfMissing if_missing) {
  auto database = open_kind(options, if_missing);
  card::name_id_parts(*database);
  return database;
}

std::unique_ptr<store::Database> open_named_store(const StoreOptions& options, IfMissing if_missing) {
  if (options.url.empty() && !options.demo) throw CLI::RequiredError("--store");
  return open_store(options, if_missing);
}

std::unique_ptr<store::SqliteDatabase> open_to_examine(std::string_view url) {
  const std::string path = path_of(url);
  std::error_code absent;
  if (std::filesystem::file_size(path, absent) == 0 && !absent) {
    throw store::sqlite::DamagedError(store::kStoreFailure,
                                      "La base « " + path +
                                          " » est endommagée : son fichier est vide. Reprenez la "
                                          "dernière sauvegarde.");
  }
  return std::make_unique<store::SqliteDatabase>(path);
}

}  // namespace velanor::app
