// velanorctl employees: the cards of an entity and year, or of all, as a table.
#include "office/employees.h"

#include <CLI/CLI.hpp>
#include <iostream>

#include "app/velanorctl/commands.h"
#include "app/velanorctl/employees_sheet.h"
#include "app/velanorctl/open_store.h"
#include "app/velanorctl/progress.h"
#include "app/velanorctl/table.h"
#include "office/employee_filter.h"

namespace velanor::app {
namespace {

using office::Employees;

struct Options {
  StoreOptions store;
  std::string entity, year, sort, workbook;
  std::vector<std::string> words;
};

std::vector<office::Column> columns_of(const Employees& employees) {
  std::vector<office::Column> columns;
  for (std::size_t c = 0; c < office::kColumns; ++c) columns.push_back(office::Column(c));
  // The same on every line.
  if (!employees.reach().is_all()) columns.resize(index_of(office::Column::kEntity));
  return columns;
}

void read(Employees& employees, const Employees::Reach& reach) {
  employees.read(reach);
  Progress progress("Lecture des fiches", static_cast<std::size_t>(employees.count()));
  while (employees.examine(1)) progress.step();
}

void print(const Employees& employees, const std::vector<int>& rows) {
  const auto columns = columns_of(employees);
  std::vector<std::string> titles;
  titles.reserve(columns.size());
  for (const office::Column column : columns) titles.emplace_back(office::kTitles[index_of(column)].title);
  TextTable table(std::move(titles));
  for (const int row : rows) {
    std::vector<std::string> cells;
    cells.reserve(columns.size());
    for (const office::Column column : columns) cells.push_back(printable(employees.at(row, column).shown));
    table.add(std::move(cells));
  }
  table.print(std::cout);
  std::cout << rows.size() << " sur " << employees.count()
            << (employees.count() > 1 ? " fiches\n" : " fiche\n");
}

office::Sorting sorting_of(const std::string& named) {
  office::Sorting sorting;
  sorting.descending = named.starts_with('-');
  const auto column = office::column_named(std::string_view(named).substr(sorting.descending ? 1 : 0));
  if (!named.empty() && !column) {
    throw store::DbError(store::kStoreFailure, "Il n'y a pas de colonne « " + named +
                                                   " ». Donnez le titre d'une colonne du tableau.");
  }
  sorting.column = column.value_or(sorting.column);
  return sorting;
}

int employees(const Options& options) {
  const office::Sorting sorting = sorting_of(options.sort);
  const auto database = open_named_store(options.store);
  Employees employees(*database);
  database->in_one_view([&] { read(employees, {options.entity, options.year}); });
  if (!employees.reach().is_all() && employees.count() == 0) {
    throw store::DbError(store::kStoreFailure, "Il n'y a pas de fiche de l'entité « " + options.entity +
                                                   " » pour l'année « " + options.year +
                                                   " » dans cette base.");
  }
  const office::Filter filter(CLI::detail::join(options.words, " "), employees.today());
  for (const std::string& word : filter.misread()) {
    std::cerr << "Remarque : « " << word
              << " » n'est ni une colonne ni une comparaison, et est cherché comme un texte.\n";
  }
  const auto rows = filter.filtered(employees, employees.sorted(sorting));
  if (options.workbook.empty()) return print(employees, rows), 0;
  if (!is_workbook(options.workbook)) {
    throw store::DbError(store::kStoreFailure,
                         "Le nom du classeur « " + options.workbook + " » doit finir par « .xlsx ».");
  }
  Progress progress("Écriture du classeur");
  write_sheet(options.workbook, sheet_of(employees, rows, columns_of(employees)),
              [&](double part) { progress.part(part); });
  std::cout << "Classeur « " << options.workbook << " » : " << rows.size()
            << (rows.size() > 1 ? " lignes.\n" : " ligne.\n");
  return 0;
}

}  // namespace

void add_employees(CLI::App& program, int& status) {
  const auto options = std::make_shared<Options>();
  CLI::App* command = program.add_subcommand(
      "employees", "Affiche en tableau les salariés d'une entité et d'une année, ou tous");
  add_store_options(*command, options->store);
  auto* entity = command->add_option("--entite", options->entity, "Le code de l'entité")->type_name("CODE");
  auto* year =
      command->add_option("--annee", options->year, "L'année budgétaire")->type_name("AAAA")->needs(entity);
  entity->needs(year);
  command
      ->add_option("--tri", options->sort,
                   "La colonne qui range les lignes, « -COLONNE » à l'envers ; sinon Nom")
      ->type_name("COLONNE");
  command
      ->add_option("--xlsx", options->workbook,
                   "Écrit le tableau dans ce classeur de tableur, au lieu de l'afficher")
      ->type_name("FICHIER")
      ->check(
          [](const std::string& file) { return file.empty() ? "le nom du classeur manque" : std::string(); });
  command
      ->add_option(
          "FILTRE", options->words,
          "Ce que les lignes doivent contenir : « mar », « secteur:nord », « fin<01/09 » ; derrière « -- » "
          "aussi « -cdd » pour celles qui ne le contiennent pas")
      ->type_name("");
  command->callback([options, &status] { status = employees(*options); });
}

}  // namespace velanor::app
