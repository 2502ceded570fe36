#include "demo/catalogue.h"

#include <algorithm>
#include <stdexcept>

#include "card/record/record_layout.h"
#include "card/record/reference_layout.h"
#include "demo/source.h"

namespace velanor::demo {
namespace {

Row column(std::string_view name, std::size_t index) {
  Row cells;
  for (const Row& row : read_table(source(name)).rows) cells.push_back(row[index]);
  return cells;
}

std::vector<Qualification> read_qualifications() {
  std::vector<Qualification> all;
  for (const Row& row : read_table(source("demo/qualifications.csv")).rows) {
    const Staff staff = row[1] == "A" ? Staff::kAdministration : Staff::kProduction;
    all.push_back({row[0], staff, number_of(row[2]), number_of(row[3]), number_of(row[4]), number_of(row[5]),
                   split(row[6], '|'), split(row[7], '|'), split(row[8], '|')});
  }
  return all;
}

std::vector<EndReason> read_end_reasons() {
  std::vector<EndReason> all;
  for (const Row& row : read_table(source("demo/sorties.csv")).rows) {
    all.push_back({row[0], number_of(row[1]), number_of(row[2])});
  }
  return all;
}

Row offered_natures() {
  Row codes;
  const Table all = read_table(source("reference/TABLES.csv"));
  for (const Row& row : all.rows) {
    if (row[0] == "NATURECONTRAT" && all.cell(row, card::tables::kOffered) == card::kYes)
      codes.push_back(all.cell(row, card::tables::kCodes));
  }
  return codes;
}

bool in_new_generation(std::string_view grid_id) {
  const std::string_view code = grid_id.substr(card::kAgreement.length);
  return code >= card::grids::kFirstNew && code < card::grids::kFirstBehind;
}

bool is_open_to(const Agreement& agreement, const Qualification& qualification) {
  const auto has_it = [&](const Grid& grid) {
    return grid.current && std::find(grid.qualifications.begin(), grid.qualifications.end(),
                                     qualification.code) != grid.qualifications.end();
  };
  return agreement.grids.empty() || std::any_of(agreement.grids.begin(), agreement.grids.end(), has_it);
}

Bounds bounds(const Row& row, std::size_t low) { return {number_of(row[low]), number_of(row[low + 1])}; }

}  // namespace

Catalogue::Catalogue()
    : qualifications(read_qualifications()),
      end_reasons(read_end_reasons()),
      sectors(column("reference/SECTEUR.csv", 0)),
      natures(offered_natures()),
      surnames(column("demo/noms.txt", 0)),
      first_names(column("demo/prenoms.txt", 0)) {
  read_agreements();
  read_items();
}

void Catalogue::read_agreements() {
  const Table all = read_table(source("reference/CONVENTIONCOL.csv"));
  for (const Row& row : all.rows) {
    Agreement& agreement = agreements[row[0]];
    agreement.categories = !all.cell(row, card::agreements::kCategories).empty();
    agreement.two_generations = card::agreements::is_of_the_branch(row[0]);
  }
  const Table grids = read_table(source("reference/GRILLESCCBUDGET.csv"));
  for (const Row& row : grids.rows) {
    Agreement& agreement = agreements.at(row[0].substr(0, card::kAgreement.length));
    const bool current = !agreement.two_generations || in_new_generation(row[0]);
    if (grids.cell(row, card::grids::kNoQualifications) == card::kMarked) continue;
    agreement.grids.push_back({row[0], grids.cell(row, card::grids::kCategory),
                               split(grids.cell(row, card::grids::kQualifications), '|'), current});
  }
  for (auto& [code, agreement] : agreements) {
    for (const Qualification& qualification : qualifications) {
      if (is_open_to(agreement, qualification)) agreement.qualifications.push_back(&qualification);
    }
  }
}

void Catalogue::read_items() {
  std::map<std::string_view, Item::Kind> kinds;
  const Table all = read_table(source("reference/RUBSAISIE.csv"));
  for (const Row& row : all.rows) {
    const auto type = all.cell(row, card::items::kType);
    const bool rated = type == "2" && (all.cell(row, card::items::kRateTyped) == card::kMarked ||
                                       all.cell(row, card::items::kFigures) == "2");
    kinds[row[0]] = card::items::is_hours(type) ? Item::Kind::kHours
                    : rated                     ? Item::Kind::kBaseAndRate
                                                : Item::Kind::kAmount;
  }
  for (const Row& row : read_table(source("demo/rubriques.csv")).rows) {
    items.push_back({row[0], kinds.at(row[0]), number_of(row[1]), number_of(row[2]), bounds(row, 3),
                     bounds(row, 5), bounds(row, 7)});
  }
}

}  // namespace velanor::demo
