// The faults and warnings of many cards, card by card, so that whoever asks stays awake meanwhile.
#pragma once

#include <map>
#include <memory>
#include <optional>
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

class Checking {
 public:
  // The cards whose ids end so: an entity and a year; "" for all. The database outlives this.
  // Throws store::DbError, as `step` does.
  Checking(store::Database& database, std::string_view id_suffix,
           const entry::Clock& clock = entry::system_clock());

  // What is wrong with the reference files, so that no card could be right.
  const std::vector<card::Fault>& faults_of_references() const { return check_.faults_of_references(); }

  // Looks at one more card; false when there is none left. A card whose reading fails is behind it all the
  // same, and is not complete.
  bool step();
  bool done() const { return next_ > ids_.DCount(); }
  int cards() const { return ids_.DCount(); }
  int looked_at() const { return next_ - 1; }
  // Of those looked at, the cards without a fault.
  int complete() const { return complete_; }
  // When it is done: card by card in the order of their ids, the faults of each before its warnings.
  std::vector<Finding> take_findings();

 private:
  void look_at(const std::string& id, const store::DbRecord& card);
  void warn(const std::string& id, const std::string& name, const Warning& warning);

  CardCheck check_;
  Warnings warnings_;
  Namesakes namesakes_;
  store::DbResult ids_;
  std::unique_ptr<store::DbFile> cards_;
  std::map<std::string, store::DbRecord, std::less<>> asides_;  // what is set aside, by card
  std::vector<Finding> findings_;
  int next_ = 1, complete_ = 0;
};

// "150 sur 158 fiches complètes".
std::string completeness(int complete, int cards);

}  // namespace velanor::office
