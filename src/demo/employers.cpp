#include "demo/employers.h"

#include <stdexcept>

#include "card/record/reference_layout.h"
#include "control/session/card_id.h"
#include "demo/source.h"
#include "text/utf8.h"

namespace velanor::demo {
namespace {

constexpr int kMostEntities = 999;

struct Model {
  Employer employer;
  int share;
};

std::vector<Model> read_models() {
  std::vector<Model> models;
  const Table towns = read_table(source("communes.csv"));
  for (const Row& row : read_table(source("demo/entites.csv")).rows) {
    Model model{{std::string(row[0]), row[0], 0, split(row[3], '|'), {}, {}, {}}, number_of(row[1])};
    for (const Row& town : towns.rows) {
      if (town[0].starts_with(row[2])) model.employer.towns.push_back(town[1]);
    }
    models.push_back(std::move(model));
  }
  return models;
}

void read_establishments(Employer& employer) {
  const Table all = read_table(source("reference/ETABLISSEMENT.csv"));
  for (const Row& row : all.rows) {
    if (row[0].starts_with(employer.model)) {
      employer.establishments.push_back(
          {card::own_code_of(row[0]), number_of(all.cell(row, card::establishments::kMonthlyHours))});
    }
  }
}

void read_activities(Employer& employer) {
  for (const Row& row : read_table(source("reference/ACTIVITES.csv")).rows) {
    if (row[0].starts_with(employer.model)) {
      employer.activities.push_back(employer.code + std::string(card::own_code_of(row[0])));
    }
  }
}

// Spreads the employees by weight; what the division leaves goes to the last.
void staff(std::vector<Employer>& employers, const std::vector<int>& weights, int employees) {
  long long total = 0;
  for (int weight : weights) total += weight;
  int left = employees;
  for (std::size_t i = 0; i < employers.size(); ++i) {
    employers[i].employees = static_cast<int>(static_cast<long long>(employees) * weights[i] / total);
    left -= employers[i].employees;
  }
  employers.back().employees += left;
}

}  // namespace

std::vector<Employer> read_employers(const Options& options) {
  if (options.entities < 1 || options.entities > kMostEntities) {
    throw std::invalid_argument("between 1 and 999 entities");
  }
  const std::vector<Model> models = read_models();
  std::vector<Employer> employers;
  std::vector<int> weights;
  for (int number = 1; number <= options.entities; ++number) {
    const Model& model = models[static_cast<std::size_t>(number - 1) % models.size()];
    Employer employer = model.employer;
    employer.code = text::pad_left(std::to_string(number), 3, '0');
    read_establishments(employer);
    read_activities(employer);
    employers.push_back(std::move(employer));
    weights.push_back(options.staffing == Staffing::kEven ? 1 : model.share);
  }
  staff(employers, weights, options.employees);
  return employers;
}

}  // namespace velanor::demo
