// velanorctl year: the budget year of a card, month by month.
#include <CLI/CLI.hpp>
#include <iostream>

#include "app/velanorctl/commands.h"
#include "app/velanorctl/open_store.h"
#include "app/velanorctl/table.h"
#include "exchange/card_import.h"
#include "exchange/columns.h"
#include "office/card_reading.h"
#include "office/card_year.h"

namespace velanor::app {
namespace {

using office::CardYear;

struct Options {
  StoreOptions store;
  std::vector<std::string> card;
};

std::string id_of(const std::vector<std::string>& named) {
  std::string wrong = "Donnez l'identifiant de la fiche, ou son code, son entité et son année.", id;
  if (named.size() == 1) id = exchange::card_id(named[0], wrong);
  if (named.size() == 3) id = exchange::card_id({named[0], named[1], named[2]}, wrong);
  if (id.empty()) throw store::DbError(store::kStoreFailure, wrong);
  return id;
}

void print(const CardYear& year) {
  std::vector<std::string> row{"Mois"};
  for (const std::string_view title : office::kYearLines) row.emplace_back(title);
  TextTable table(row);
  const auto add = [&](std::string_view first, const auto& text) {
    row.assign(1, std::string(first));
    for (std::size_t line = 0; line < office::kYearLines.size(); ++line)
      row.push_back(printable(text(office::YearLine(line))));
    table.add(row);
  };
  for (int month = 0; month < office::kMonths; ++month)
    add(office::month_name(month), [&](auto line) { return office::text_of(year, line, month); });
  add("Année", [&](auto line) { return office::total_of(year, line); });
  table.print(std::cout);
  if (const std::string remark = office::remark(year); !remark.empty()) std::cout << remark << "\n";
}

int year(const Options& options) {
  const auto database = open_named_store(options.store);
  const std::string id = id_of(options.card);
  const office::CardReading reading(*database);
  const auto record = reading.file(control::File::kCards).find(id);
  const auto year = office::budget_year(card::year_of(id));
  if (!record || !year)
    throw store::DbError(store::kStoreFailure, "Il n'y a pas de fiche « " + id + " » dans cette base.");
  std::cout << printable(element(*record, card::kName)) << ", " << *year << "\n\n";
  print(office::year_of(reading.draft(*record), *year));
  return 0;
}

}  // namespace

void add_year(CLI::App& program, int& status) {
  const auto options = std::make_shared<Options>();
  CLI::App* command = program.add_subcommand(
      "year", "Affiche mois par mois les avenants, les heures et l'ETP d'une fiche dans son année");
  add_store_options(*command, options->store);
  command->add_option("FICHE", options->card, "L'identifiant de la fiche, ou son code, son entité, son année")
      ->required()
      ->expected(1, 3)
      ->type_name("");
  command->callback([options, &status] { status = year(*options); });
}

}  // namespace velanor::app
