#include "control/session/years.h"

#include "control/session/card_id.h"
#include "text/utf8.h"

namespace velanor::control {

void YearTable::ChargerExtractions(const Procedure& procedure) {
  constexpr int kLongestYear = 6;
  const store::DbResult ids =
      procedure.select("SSELECT VELANORO PAR CodeAsso PAR-DECR Annee", "VELANORO", "0");
  table_ = {};
  int n = 0;
  // The statement's order brings the entities together, each with its most recent year first; one id tells
  // of all that have both alike.
  for (int i = 1; i <= ids.DCount(); i = ids.run_end(i)) {
    const std::string_view entity = card::entity_of(ids(i));
    const std::string_view year = text::left(card::year_of(ids(i)), kLongestYear);
    // An id that is no card's would end the table, which every reader takes up to its first empty value.
    if (entity.empty() || year.empty()) continue;
    if (n == 0 || entity != table_(n, 1)) {
      ++n;
      table_.set(n, 1, entity);
      table_.set(n, 2, year);
    } else if (table_(n).find(year) == std::string_view::npos) {
      table_.set(n, store::kAppend, year);
    }
  }
}

int YearTable::position(std::string_view entity) const {
  int n = 1;
  while (table_(n, 1) != entity && !table_(n, 1).empty()) ++n;
  return n;
}

std::vector<std::string> YearTable::years(std::string_view entity) const {
  std::vector<std::string> years;
  const int n = position(entity);
  for (int value = 2; !table_(n, value).empty(); ++value) years.emplace_back(table_(n, value));
  return years;
}

std::string YearTable::latest(std::string_view entity) const {
  return std::string(table_(position(entity), 2));
}

std::string LireParametres(const Procedure& procedure, std::string current) {
  store::DbRecord parameters;
  try {
    parameters = procedure.file(File::kParameters).Read("1");
  } catch (const store::DbError& error) {
    // Any other failure counts as an empty record.
    if (error.number() == store::kMissingRecord) return current;
  }
  std::string first(parameters(kDefaultAgreements, 1));
  for (int value = 1; !parameters(kDefaultAgreements, value).empty(); ++value) {
    if (parameters(kDefaultAgreements, value) != first) return {};
  }
  return first;
}

std::string reference_date(const Procedure& procedure) {
  const auto parameters = procedure.file(File::kParameters).find("1");
  return parameters ? std::string(reference_date(*parameters)) : std::string();
}

std::string_view reference_date(const store::DbRecord& parameters) {
  return parameters(kReferenceDates, parameters.Count(kReferenceDates));
}

}  // namespace velanor::control
