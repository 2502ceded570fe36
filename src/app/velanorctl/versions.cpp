#include "app/velanorctl/versions.h"

#include <CLI/CLI.hpp>

#include "app/velanorctl/table.h"

namespace velanor::app {

void add_record_options(CLI::App& command, RecordOptions& options) {
  add_store_options(command, options.store);
  command.add_option("FICHIER", options.file, "Le fichier, par exemple VELANORO")->required()->type_name("");
  command.add_option("ID", options.id, "L'identifiant de l'enregistrement")->required()->type_name("");
}

std::vector<store::Version> versions_of(store::Database& database, const RecordOptions& record) {
  return office::versions_of(database, record.file, record.id);
}

CLI::Option* add_version_number(CLI::App& command, const char* name, std::uint64_t& number,
                                const char* what) {
  constexpr std::uint64_t kMost = 999'999'999;
  return command.add_option(name, number, what)
      ->type_name("")
      ->check(CLI::Range(std::uint64_t{1}, kMost).description(""));
}

std::string author_of(const store::Version& version) { return printable(office::author_of(version)); }

}  // namespace velanor::app
