// velanorctl copy: a whole base from one store into another.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>

#include "app/velanorctl/base_copy.h"
#include "app/velanorctl/commands.h"
#include "app/velanorctl/open_store.h"
#include "app/velanorctl/progress.h"

namespace velanor::app {
namespace {

struct Options {
  StoreOptions from, to;
};

BaseCopyReport copy_into(store::Database& target, const StoreOptions& from) {
  const auto source = open_named_store(from);
  Progress progress("Copie");
  return copy_base(*source, target, [&] { progress.step(); });
}

// A file that does not exist yet appears with all that is copied, or not at all.
BaseCopyReport copy_as_told(const Options& options) {
  const bool new_file = is_file(options.to) && !std::filesystem::exists(path_of(options.to.url));
  if (!new_file) return copy_into(*open_named_store(options.to), options.from);
  BaseCopyReport report;
  store::SqliteDatabase::build(path_of(options.to.url), [&](store::SqliteDatabase& target) {
    report = copy_into(target, options.from);
    return true;
  });
  return report;
}

int copy(const Options& options) {
  const BaseCopyReport report = copy_as_told(options);
  std::cout << "Fichiers copiés : " << report.files << ", enregistrements : " << report.records;
  if (report.versions > 0) {
    std::cout << ", supprimés : " << report.deleted << ", versions : " << report.versions << ".\n";
  } else {
    std::cout << ", sans leurs versions antérieures.\n";
  }
  return 0;
}

}  // namespace

void add_copy(CLI::App& program, int& status) {
  const auto options = std::make_shared<Options>();
  CLI::App* command =
      program.add_subcommand("copy", "Copie une base entière dans une autre, vide, en une seule fois");
  command->add_option("--from", options->from.url, "La base à copier : un chemin ou l'URL d'un serveur")
      ->required()
      ->type_name("URL");
  command->add_option("--to", options->to.url, "La base à remplir, sans aucun enregistrement")
      ->required()
      ->type_name("URL");
  command->footer(
      "Les versions de chaque enregistrement viennent avec lui si les deux bases en gardent. Sur un serveur\n"
      "il faut pour cela le rôle velanor_owner.");
  command->callback([options, &status] { status = copy(*options); });
}

}  // namespace velanor::app
