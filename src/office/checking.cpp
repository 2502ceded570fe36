#include "office/checking.h"

#include <algorithm>
#include <tuple>

#include "card/record/element.h"
#include "exchange/columns.h"

namespace velanor::office {

using store::DbRecord;

Checking::Checking(store::Database& database, std::string_view id_suffix, const entry::Clock& clock,
                   int days_ahead, Search search)
    : database_(database),
      suffix_(id_suffix),
      search_(search),
      check_(database, clock),
      warnings_(database, check_.today(), check_.reference_day(), days_ahead),
      found_(select(exchange::kCardFile)),
      cards_(database.OpenFile(exchange::kCardFile)),
      aside_file_(database.OpenFile(kAsidesFile)) {
  ids_.reserve(static_cast<std::size_t>(found_.DCount()));
  for (int i = 1; i <= found_.DCount(); ++i) ids_.emplace_back(found_(i));
  std::sort(ids_.begin(), ids_.end());
  const store::DbResult with_asides = select(kAsidesFile);
  for (int i = 1; i <= with_asides.DCount(); ++i) read_asides(with_asides(i));
}

store::DbResult Checking::select(std::string_view file) const {
  const std::string these = suffix_.empty() ? "" : " AVEC 0 = " + store::quoted_end(suffix_);
  return database_.Select(
      store::DbQuery("SSELECT " + std::string(file) + these + " PAR 0", file, "0").encoded());
}

bool Checking::is_stale() const { return !select(exchange::kCardFile).same_state(found_); }

void Checking::read_asides(std::string_view id) {
  if (auto record = aside_file_->find(id)) asides_.insert_or_assign(std::string(id), std::move(*record));
}

// Behind the card before it is read: a damaged one must not be met again and again.
bool Checking::step() {
  if (done()) return false;
  look_at(ids_[next_++]);
  return true;
}

// A card that has come among those looked at is looked at, and one behind them when its turn comes.
void Checking::renew(std::string_view id) {
  if (!card::is_record_id(id) || !id.ends_with(suffix_)) return;
  const auto place = std::lower_bound(ids_.begin(), ids_.end(), id);
  const auto at = static_cast<std::size_t>(place - ids_.begin());
  const bool known = place != ids_.end() && *place == id, behind = at >= next_;
  forget(id);
  read_asides(id);
  // One that cannot be read is behind it as well.
  if (known && !behind) incomplete_.emplace(id), unread_.emplace(id);
  const bool stands = cards_->find(id).has_value();
  if (known && !stands) ids_.erase(place), forget(id);
  if (!known && stands) ids_.emplace(place, id);
  if (behind) return;
  if (known != stands) stands ? ++next_ : --next_;
  if (stands) look_at(std::string(id));
}

void Checking::forget(std::string_view id) {
  std::erase_if(findings_, [&](const Finding& finding) { return finding.id == id; });
  namesakes_.forget(id);
  for (Ids* ids : {&incomplete_, &unread_}) {
    if (const auto old = ids->find(id); old != ids->end()) ids->erase(old);
  }
  if (const auto old = asides_.find(id); old != asides_.end()) asides_.erase(old);
}

void Checking::look_at(const std::string& id) {
  incomplete_.insert(id);
  unread_.insert(id);
  const auto card = cards_->find(id);
  unread_.erase(id);
  if (!card) return;
  const std::string name(element(*card, card::kName));
  const std::vector<card::Fault> faults = check_.faults_of(id, *card);
  if (faults.empty()) incomplete_.erase(id);
  for (const card::Fault& fault : faults) findings_.push_back({id, name, fault});
  if (search_ == Search::kFaults) return;
  for (const Warning& warning : warnings_.of(id, *card)) findings_.push_back(finding(id, name, warning));
  namesakes_.note(id, *card);
}

Finding Checking::finding(const std::string& id, const std::string& name, const Warning& warning) const {
  Finding finding{id, name, warning.remark, warning.kind, {}};
  if (const auto record = asides_.find(id); record != asides_.end()) {
    for (Aside& aside : asides_in(record->second, name)) {
      if (aside.kind == warning.kind) finding.aside = std::move(aside);
    }
  }
  return finding;
}

std::vector<Finding> Checking::in_order(std::vector<Finding> findings) const {
  for (const auto& [id, name, warning] : namesakes_.found()) findings.push_back(finding(id, name, warning));
  std::stable_sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) {
    return std::tie(a.id, a.warning) < std::tie(b.id, b.warning);
  });
  return findings;
}

std::string completeness(int complete, int cards) {
  return std::to_string(complete) + " sur " + std::to_string(cards) +
         (cards > 1 ? " fiches complètes" : " fiche complète");
}

}  // namespace velanor::office
