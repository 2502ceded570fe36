#include "app/velanorctl/versions.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <ctime>

#include "app/velanorctl/table.h"

namespace velanor::app {

void add_record_options(CLI::App& command, RecordOptions& options) {
  add_store_options(command, options.store);
  command.add_option("FICHIER", options.file, "Le fichier, par exemple VELANORO")->required()->type_name("");
  command.add_option("ID", options.id, "L'identifiant de l'enregistrement")->required()->type_name("");
}

store::History& history_of(store::Database& database) {
  if (store::History* history = database.history()) return *history;
  throw store::DbError(store::kStoreFailure,
                       "Cette base ne garde pas d'historique. Donnez un fichier ou un serveur.");
}

std::vector<store::Version> versions_of(store::Database& database, const RecordOptions& record) {
  auto versions = history_of(database).versions(record.file, record.id);
  if (!versions.empty()) return versions;
  throw store::DbError(store::kStoreFailure, "L'enregistrement « " + record.id + " » du fichier " +
                                                 record.file +
                                                 " n'a jamais existé dans cette base. Vérifiez le fichier et "
                                                 "l'identifiant.");
}

const store::Version& version_numbered(const std::vector<store::Version>& versions, std::uint64_t number) {
  const auto found = std::find_if(versions.begin(), versions.end(),
                                  [=](const store::Version& version) { return version.number == number; });
  if (found != versions.end()) return *found;
  throw store::DbError(store::kStoreFailure,
                       "Il n'y a pas de version " + std::to_string(number) +
                           " de cet enregistrement. « velanorctl history » donne celles "
                           "qui sont gardées.");
}

std::string moment_of(const store::Version& version) {
  if (version.time == 0) return "avant l'historique";
  const std::time_t time = version.time;
  std::tm local{};
  localtime_r(&time, &local);
  char text[64];
  return {text, std::strftime(text, sizeof text, "%d/%m/%Y %H:%M:%S", &local)};
}

std::string author_of(const store::Version& version) {
  return version.author.empty() ? "inconnu" : printable(version.author);
}

}  // namespace velanor::app
