// velanorctl select: runs a selection and prints what it finds as a table.
#include <CLI/CLI.hpp>
#include <iostream>
#include <sstream>

#include "app/velanorctl/commands.h"
#include "app/velanorctl/open_store.h"
#include "app/velanorctl/table.h"

namespace velanor::app {
namespace {

struct Options {
  StoreOptions store;
  std::string statement;
  std::vector<std::string> attributes{"0", "1"};
};

// The request names its file beside the statement, where it is the second word.
std::string file_of(const std::string& statement) {
  std::istringstream words(statement);
  std::string verb, file;
  words >> verb >> file;
  return file;
}

// "0 1 7" and 0 1 7 are the same list.
std::vector<std::string> numbers_of(const std::vector<std::string>& words) {
  std::istringstream list(CLI::detail::join(words, " "));
  return {std::istream_iterator<std::string>(list), {}};
}

std::vector<std::string> titles_of(std::vector<std::string> numbers) {
  for (std::string& number : numbers) {
    if (number == "0") number = "id";
  }
  return numbers;
}

int select(const Options& options) {
  const auto database = open_named_store(options.store);
  const auto numbers = numbers_of(options.attributes);
  const store::DbQuery query(options.statement, file_of(options.statement), CLI::detail::join(numbers, " "));
  const store::DbResult found = database->Select(query.encoded());
  TextTable table(titles_of(numbers));
  for (int i = 1; i <= found.DCount(); ++i) {
    std::vector<std::string> row;
    for (int k = 1; k <= static_cast<int>(numbers.size()); ++k) row.push_back(printable(found(i, k)));
    table.add(std::move(row));
  }
  table.print(std::cout);
  std::cout << found.DCount() << (found.DCount() > 1 ? " enregistrements\n" : " enregistrement\n");
  return 0;
}

}  // namespace

void add_select(CLI::App& program, int& status) {
  const auto options = std::make_shared<Options>();
  CLI::App* command = program.add_subcommand("select", "Affiche en tableau ce qu'une sélection trouve");
  add_store_options(*command, options->store);
  command->add_option("SELECTION", options->statement, "La sélection, par exemple \"SSELECT SECTEUR PAR 1\"")
      ->required()
      ->type_name("");
  command
      ->add_option("ATTRIBUTS", options->attributes,
                   "Numéros des attributs à afficher, 0 pour l'id ; sinon 0 1")
      ->type_name("");
  command->callback([options, &status] { status = select(*options); });
}

}  // namespace velanor::app
