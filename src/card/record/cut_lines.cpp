#include "card/record/cut_lines.h"

#include <algorithm>
#include <span>

#include "card/record/amendment_columns.h"
#include "card/record/record_compare.h"

namespace velanor::card {
namespace {

bool goes_on(const store::DbRecord& card, std::span<const Field> columns) {
  const int lines = lines_of(card, columns.front());
  return std::any_of(columns.begin(), columns.end(),
                     [&](const Field& column) { return card.Count(column.number) > lines; });
}

}  // namespace

std::vector<Fault> faults_of_cut_lines(const store::DbRecord& card) {
  std::vector<Fault> faults;
  if (goes_on(card, kActivityColumns))
    faults.push_back(about(
        kActivity, Fault("Des lignes d'activité suivent une activité vide : l'écran ne les montre pas.")));
  if (goes_on(card, kAmendmentAttributes))
    faults.emplace_back("Des lignes d'avenant suivent une date d'effet vide : l'écran ne les montre pas.",
                        "");
  return faults;
}

}  // namespace velanor::card
