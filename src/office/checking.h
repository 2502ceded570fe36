// The faults and warnings of many cards, card by card, so that whoever asks stays awake meanwhile.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "office/asides.h"
#include "office/card_check.h"
#include "office/warnings.h"
#include "velanor/database.h"

namespace velanor::office {

struct Finding {
  std::string id, name;
  card::Fault fault;  // or the remark of a warning
  std::optional<WarningKind> warning = {};
  std::optional<Aside> aside = {};  // a warning that was set aside

  bool is_fault() const { return !warning; }
};

// What is looked for.
enum class Search { kFaults, kFaultsAndWarnings };

class Checking {
 public:
  // The cards whose ids end so: an entity and a year; "" for all. The database outlives this.
  // Throws store::DbError, as `step` and `renew` do. `days_ahead`: see Warnings.
  Checking(store::Database& database, std::string_view id_suffix,
           const entry::Clock& clock = entry::system_clock(), int days_ahead = Warnings::kDaysAhead,
           Search search = Search::kFaultsAndWarnings);

  // What is wrong with the reference files, so that no card could be right.
  const std::vector<card::Fault>& faults_of_references() const { return check_.faults_of_references(); }

  // Looks at one more card; false when there is none left. A card whose reading fails is behind it all the
  // same, and is not complete.
  bool step();
  bool done() const { return next_ >= ids_.size(); }
  // A card was written or deleted, or what is set aside of it: what was looked at is looked at again. Nothing
  // for a card that is none of these.
  void renew(std::string_view id);
  // Whether cards may have been written since, as far as the store can tell at little cost.
  bool is_stale() const;

  int cards() const { return static_cast<int>(ids_.size()); }
  int looked_at() const { return static_cast<int>(next_); }
  // Of those looked at, the cards without a fault, and those that could not be read.
  int complete() const { return static_cast<int>(next_ - incomplete_.size()); }
  int unread() const { return static_cast<int>(unread_.size()); }
  // Card by card in the order of their ids, the faults of each before its warnings; the second leaves none.
  std::vector<Finding> findings() const { return in_order(findings_); }
  std::vector<Finding> take_findings() { return in_order(std::move(findings_)); }

 private:
  using Ids = std::set<std::string, std::less<>>;

  store::DbResult select(std::string_view file) const;
  void read_asides(std::string_view id);
  void look_at(const std::string& id);
  void forget(std::string_view id);
  Finding finding(const std::string& id, const std::string& name, const Warning& warning) const;
  std::vector<Finding> in_order(std::vector<Finding> findings) const;

  store::Database& database_;
  std::string suffix_;
  Search search_;
  CardCheck check_;
  Warnings warnings_;
  Namesakes namesakes_;
  store::DbResult found_;
  std::vector<std::string> ids_;  // in their order
  std::unique_ptr<store::DbFile> cards_, aside_file_;
  std::map<std::string, store::DbRecord, std::less<>> asides_;  // what is set aside, by card
  std::vector<Finding> findings_;
  Ids incomplete_, unread_;
  std::size_t next_ = 0;  // the first card that was not looked at
};

// "150 sur 158 fiches complètes".
std::string completeness(int complete, int cards);

}  // namespace velanor::office
