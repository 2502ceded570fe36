#include "office/checking.h"

#include <algorithm>
#include <tuple>

#include "card/record/element.h"
#include "exchange/columns.h"

namespace velanor::office {

using store::DbRecord;
namespace {

store::DbResult ids_of(store::Database& database, std::string_view file, std::string_view suffix) {
  const std::string these = suffix.empty() ? "" : " AVEC 0 = " + store::quoted_end(suffix);
  return database.Select(
      store::DbQuery("SSELECT " + std::string(file) + these + " PAR 0", file, "0").encoded());
}

}  // namespace

Checking::Checking(store::Database& database, std::string_view id_suffix, const entry::Clock& clock)
    : check_(database, clock),
      warnings_(database, check_.today(), check_.reference_day()),
      ids_(ids_of(database, exchange::kCardFile, id_suffix)),
      cards_(database.OpenFile(exchange::kCardFile)) {
  const auto asides = database.OpenFile(kAsidesFile);
  const store::DbResult with_asides = ids_of(database, kAsidesFile, id_suffix);
  for (int i = 1; i <= with_asides.DCount(); ++i) {
    if (auto record = asides->find(with_asides(i))) asides_.emplace(with_asides(i), std::move(*record));
  }
}

// Behind the card before it is read: a damaged one must not be met again and again.
bool Checking::step() {
  if (done()) return false;
  const std::string id(ids_(next_++));
  if (const auto card = cards_->find(id)) look_at(id, *card);
  return true;
}

void Checking::look_at(const std::string& id, const DbRecord& card) {
  const std::string name(element(card, card::kName));
  const std::vector<card::Fault> faults = check_.faults_of(id, card);
  complete_ += faults.empty() ? 1 : 0;
  for (const card::Fault& fault : faults) findings_.push_back({id, name, fault});
  for (const Warning& warning : warnings_.of(id, card)) warn(id, name, warning);
  namesakes_.note(id, card);
}

void Checking::warn(const std::string& id, const std::string& name, const Warning& warning) {
  Finding finding{id, name, warning.remark, warning.kind, {}};
  if (const auto record = asides_.find(id); record != asides_.end()) {
    for (Aside& aside : asides_in(record->second, name)) {
      if (aside.kind == warning.kind) finding.aside = std::move(aside);
    }
  }
  findings_.push_back(std::move(finding));
}

std::vector<Finding> Checking::take_findings() {
  for (const auto& [id, name, warning] : namesakes_.found()) warn(id, name, warning);
  std::stable_sort(findings_.begin(), findings_.end(), [](const Finding& a, const Finding& b) {
    return std::tie(a.id, a.warning) < std::tie(b.id, b.warning);
  });
  return std::move(findings_);
}

std::string completeness(int complete, int cards) {
  return std::to_string(complete) + " sur " + std::to_string(cards) +
         (cards > 1 ? " fiches complètes" : " fiche complète");
}

}  // namespace velanor::office
