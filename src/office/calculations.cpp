#include "office/calculations.h"

#include <algorithm>

#include "control/session/card_id.h"
#include "exchange/columns.h"

namespace velanor::office {
namespace {

constexpr int kIdLength = card::kEmployeeCodeLength + card::kEntityCodeLength + card::kYearLength;

// Nothing but the ids is read.
std::vector<std::string> ids_of(store::Database& database, const std::string& file) {
  const store::DbResult found =
      database.Select(store::DbQuery("SSELECT " + file + " PAR 0", file, "0").encoded());
  std::vector<std::string> ids;
  ids.reserve(static_cast<std::size_t>(found.DCount()));
  for (int i = 1; i <= found.DCount(); ++i) ids.emplace_back(found(i));
  return ids;
}

}  // namespace

std::vector<std::string> calculations_without_card(store::Database& database) {
  auto known = ids_of(database, std::string(exchange::kCardFile));
  std::sort(known.begin(), known.end());
  std::vector<std::string> sentences;
  for (const char* file : {"BUDGETHISTORCUMUL", "BUDGETDETAILCALCUL"}) {
    for (const std::string& id : ids_of(database, file)) {
      if (!std::binary_search(known.begin(), known.end(), text::left(id, kIdLength)))
        sentences.push_back(std::string(file) + " " + id + " : ce calcul n'a pas de fiche.");
    }
  }
  return sentences;
}

}  // namespace velanor::office
