// Two clerks and one card: what each changed is in it, and nobody's change is lost unseen.
#include "card/record/merge.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <tuple>

#include "card/record/amendment_columns.h"
#include "support/office.h"

namespace velanor::card {
namespace {

class MergeTest : public testing::Test {
 protected:
  MergeTest() {
    test::load(database_, "lib/cards.play");
    procedure_.OuvrirFichiers();
  }
  Draft draft(const store::DbRecord& record) { return Draft(reading_, record); }
  store::DbRecord stored() { return database_.OpenFile("VELANORO")->Read("000100012026"); }
  // "name: before | theirs | mine", a line each.
  std::string clashes(const Merge& merge) {
    std::string text;
    for (const Clash& clash : merge.clashes())
      text += clash.name + ": " + clash.before + " | " + clash.theirs + " | " + clash.mine + "\n";
    return text;
  }

  store::MemoryDatabase database_;
  control::Procedure procedure_{database_};
  std::unique_ptr<entry::UtilSaisie> entry_ = entry::make_util_saisie();
  Reading reading_{Codec(*entry_), Labels(procedure_)};
};

// ---- Against a model: a card as a flat list of places, each with a text.

// Attribute; effective date and item code where it stands on a line.
using Place = std::tuple<int, std::string, std::string>;
using Model = std::map<Place, std::string>;

store::DbRecord record_of(const Model& model) {
  std::set<std::string> dates;
  for (const auto& [place, text] : model) dates.insert(std::get<1>(place));
  dates.erase("");
  store::DbRecord card;
  const auto text_at = [&](int attribute, const std::string& date, const std::string& item) {
    const auto found = model.find({attribute, date, item});
    return found == model.end() ? std::string() : found->second;
  };
  for (const auto& [place, text] : model) {
    if (std::get<1>(place).empty()) card.set(std::get<0>(place), text);
  }
  int value = 0;
  for (const std::string& date : dates) {
    ++value;
    int subvalue = 0;
    for (const auto& [place, text] : model) {
      const auto& [attribute, own_date, item] = place;
      if (own_date != date) continue;
      if (item.empty()) card.set(attribute, value, text);
      if (attribute != kItemCode.number) continue;
      ++subvalue;
      for (const Field& column : kItemColumns)
        card.set(column.number, value, subvalue, text_at(column.number, date, item));
    }
  }
  return card;
}

Model model_of(const store::DbRecord& card) {
  Model model;
  for (const int field : {kName.number, kTown.number, kCeiling.number, kSector.number, kContractEnd.number}) {
    if (!card(field).empty()) model[{field, "", ""}] = card(field);
  }
  for (int v = 1; !card(kEffective.number, v).empty(); ++v) {
    const std::string date(card(kEffective.number, v));
    for (const Field& column : kAmendmentColumns) {
      if (!card(column.number, v).empty()) model[{column.number, date, ""}] = card(column.number, v);
    }
    for (int s = 1; !card(kItemCode.number, v, s).empty(); ++s) {
      const std::string item(card(kItemCode.number, v, s));
      for (const Field& column : kItemColumns) {
        if (!card(column.number, v, s).empty())
          model[{column.number, date, item}] = card(column.number, v, s);
      }
    }
  }
  return model;
}

class Clerk {
 public:
  explicit Clerk(unsigned seed) : random_(seed) {}
  int up_to(int bound) { return static_cast<int>(random_() % static_cast<unsigned>(bound)); }
  std::string figure() { return std::to_string(100 + up_to(5)); }

  Model first_card() {
    Model card;
    for (const int field : {kName.number, kTown.number, kCeiling.number}) card[{field, "", ""}] = figure();
    for (int line = 0; line < 1 + up_to(4); ++line) add_line(card);
    return card;
  }
  void change(Model& card) {
    const std::string date = some_date(), item = some_item();
    switch (up_to(7)) {
      case 0:
      case 1:
        put(card, {up_to(2) ? kSector.number : kCeiling.number, "", ""}, up_to(4) ? figure() : "");
        break;
      case 2:
        add_line(card);
        break;
      case 3:
        std::erase_if(card, [&](const auto& entry) { return std::get<1>(entry.first) == date; });
        break;
      case 4:
        if (has(card, date)) put(card, {kHourlyRate.number, date, ""}, figure());
        break;
      case 5:
        if (card.contains({kItemCode.number, date, item}))
          put(card, {kItemBase.number, date, item}, figure());
        break;
      default:
        if (has(card, date) && up_to(2)) {
          put(card, {kItemCode.number, date, item}, item);
        } else {
          std::erase_if(card, [&](const auto& entry) {
            return std::get<1>(entry.first) == date && std::get<2>(entry.first) == item;
          });
        }
    }
  }

 private:
  std::string some_date() { return std::to_string(20000 + 31 * up_to(6)); }
  std::string some_item() { return "00" + std::to_string(1 + up_to(4)); }
  static bool has(const Model& card, const std::string& date) {
    return card.contains({kEffective.number, date, ""});
  }
  static void put(Model& card, const Place& place, const std::string& text) {
    if (text.empty()) {
      card.erase(place);
    } else {
      card[place] = text;
    }
  }
  void add_line(Model& card) {
    const std::string date = some_date(), item = some_item();
    card[{kEffective.number, date, ""}] = date;
    put(card, {kHourlyRate.number, date, ""}, figure());
    card[{kItemCode.number, date, item}] = item;
  }

  std::mt19937 random_;
};

// What is to be at a place when those that both have changed go to `first`. A line that one has removed and
// the other changed is a place by itself.
class Expectation {
 public:
  Expectation(const Model& before, const Model& first, const Model& second)
      : before_(before), first_(first), second_(second) {}

  Model card() const {
    Model card;
    for (const Place& place : places()) {
      const std::string text = at(side_for(place), place);
      if (!text.empty()) card[place] = text;
    }
    return card;
  }
  bool clashes() const {
    for (const Place& place : places()) {
      if (is_torn(place) ||
          (at(first_, place) != at(before_, place) && at(second_, place) != at(before_, place) &&
           at(first_, place) != at(second_, place)))
        return true;
    }
    return false;
  }

 private:
  std::set<Place> places() const {
    std::set<Place> places;
    for (const Model* model : {&before_, &first_, &second_}) {
      for (const auto& [place, text] : *model) places.insert(place);
    }
    return places;
  }
  static std::string at(const Model& model, const Place& place) {
    const auto found = model.find(place);
    return found == model.end() ? std::string() : found->second;
  }
  static Model line(const Model& model, const std::string& date, const std::string& item) {
    Model line;
    for (const auto& [place, text] : model) {
      if (std::get<1>(place) == date && (item.empty() || std::get<2>(place) == item)) line[place] = text;
    }
    return line;
  }
  // Removed by one, changed by the other: an amendment, or an item of an amendment that both have.
  bool is_torn(const std::string& date, const std::string& item) const {
    const Model b = line(before_, date, item), f = line(first_, date, item), s = line(second_, date, item);
    return !b.empty() && f.empty() != s.empty() && (f.empty() ? s : f) != b;
  }
  bool is_torn(const Place& place) const {
    const auto& [attribute, date, item] = place;
    if (date.empty()) return false;
    return is_torn(date, "") || (!item.empty() && is_torn(date, item));
  }
  const Model& side_for(const Place& place) const {
    if (is_torn(place)) return first_;
    return at(first_, place) == at(before_, place) ? second_ : first_;
  }

  const Model &before_, &first_, &second_;
};

TEST_F(MergeTest, NoChangeOfTwoClerksIsLostAndNoneIsMadeUp) {
  const bool is_long = std::getenv("VELANOR_LONG") != nullptr;
  const int pairs = is_long ? 1'000'000 : 20'000;
  int clashing = 0;
  for (int n = 0; n < pairs && !HasFailure(); ++n) {
    SCOPED_TRACE("pair " + std::to_string(n));
    Clerk clerk(static_cast<unsigned>(n));
    const Model before = clerk.first_card();
    Model theirs = before, mine = before;
    for (Model* side : {&theirs, &mine}) {
      for (int change = clerk.up_to(5); change > 0; --change) clerk.change(*side);
    }
    const Draft b = draft(record_of(before)), t = draft(record_of(theirs)), m = draft(record_of(mine));
    const Merge merge(b, t, m), swapped(b, m, t);
    const std::size_t count = merge.clashes().size();
    EXPECT_EQ(count > 0, Expectation(before, mine, theirs).clashes());
    EXPECT_EQ(swapped.clashes().size(), count);
    const auto with_mine = merge.merged(std::vector(count, Side::kMine));
    EXPECT_EQ(model_of(with_mine), Expectation(before, mine, theirs).card());
    EXPECT_EQ(model_of(merge.merged(std::vector(count, Side::kTheirs))),
              Expectation(before, theirs, mine).card());
    EXPECT_EQ(with_mine, swapped.merged(std::vector(count, Side::kTheirs))) << "whoever of the two is me";
    clashing += count > 0;
  }
  EXPECT_GT(clashing, pairs / 20);
  RecordProperty("pairs", pairs);
  RecordProperty("clashing", clashing);
}

// ---- In the words of the screen.

TEST_F(MergeTest, WhatBothChangedIsNamedAndShownAsOnTheScreen) {
  const Draft before = draft(stored());
  Draft theirs = before, mine = before;
  theirs.put(kContractEnd, "31/12/2026");
  mine.put(kContractEnd, "30/11/2026");
  theirs.put(kTown, "Nîmes");
  mine.put(kCeiling, "3000,00");
  theirs.remove_amendment(0);
  AmendmentText line = mine.amendment(0);
  line.shown[column_of(kHourlyRate)] = "12,345";
  mine.change_amendment(0, line);
  const Merge merge(before, theirs, mine);
  EXPECT_EQ(clashes(merge),
            "Fin de contrat:  | 31/12/2026 | 30/11/2026\n"
            "Avenant du 01/01/2024: 01/01/2024 ; 01/01/2024 ; AD ; Employé degré 1 ; OUI ; 2 rubriques | "
            "supprimé | "
            "01/01/2024 ; 01/01/2024 ; AD ; Employé degré 1 ; 12,345 ; OUI ; 2 rubriques\n");
  const auto together = draft(merge.merged({Side::kTheirs, Side::kMine}));
  EXPECT_EQ(together.shown(kContractEnd), "31/12/2026");
  EXPECT_EQ(together.shown(kTown), "Nîmes");
  EXPECT_EQ(together.shown(kCeiling), "3000,00");
  EXPECT_EQ(together.amendments(), before.amendments());
}

TEST_F(MergeTest, ASplitThatNoLongerMakesAWholeIsOneOrTheOther) {
  store::DbRecord before = stored();
  before.set(kActivity.number, "001010");
  before.set(kShare.number, "10000");
  const auto split = [&](std::string_view other) {
    Draft card = draft(before);
    card.change_share(0, "60,00");
    card.add_activity(other, "40,00");
    return card;
  };
  const Merge merge(draft(before), split("001020"), split("001900"));
  ASSERT_EQ(merge.clashes().size(), 1u);
  EXPECT_EQ(merge.clashes().front().name, "Répartition des activités");
  EXPECT_EQ(draft(merge.merged({Side::kTheirs})).activity(1).code, "001020");
  EXPECT_EQ(draft(merge.merged({Side::kMine})).activity(1).code, "001900");
  EXPECT_EQ(draft(merge.merged({Side::kMine})).activities(), 2);
}

TEST_F(MergeTest, ResultsStayWithWhatTheyWereComputedFrom) {
  const store::DbRecord before = stored();
  const auto result = [](const store::DbRecord& card) { return std::string(card(kResult1.number)); };
  store::DbRecord computed = before;
  computed.set(kResult1.number, "9999");
  Draft renamed_town = draft(before);
  renamed_town.put(kTown, "Nîmes");
  EXPECT_EQ(result(Merge(draft(before), draft(computed), renamed_town).merged({})), "9999")
      << "a save that changes nothing they are computed from leaves them";
  Draft other_ceiling = draft(before);
  other_ceiling.put(kCeiling, "1,00");
  for (const Field& field : kResults) other_ceiling.put_stored(field, "");
  EXPECT_EQ(result(Merge(draft(before), draft(computed), other_ceiling).merged({})), "");
}

}  // namespace
}  // namespace velanor::card
