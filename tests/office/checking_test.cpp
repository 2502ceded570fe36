// All cards of an entity and year: what is told of them, and what is set aside.
#include "office/checking.h"

#include <gtest/gtest.h>

#include "app/velanorctl/open_store.h"
#include "velanor/wrapped_database.h"

namespace velanor::office {
namespace {

using store::DbRecord;

constexpr std::string_view kCard = "000010012026";

class CheckingOfAYear : public testing::Test {
 protected:
  std::vector<Finding> findings(std::string_view suffix = "0012026") {
    Checking checking(*database_, suffix, [] { return entry::Date{1, 3, 2026}; });
    while (checking.step()) {
    }
    completeness_ = completeness(checking.complete(), checking.cards());
    return checking.take_findings();
  }
  std::vector<Finding> findings_of(std::string_view id) {
    std::vector<Finding> all = findings();
    std::erase_if(all, [&](const Finding& finding) { return finding.id != id; });
    return all;
  }
  void change(const std::function<void(DbRecord&)>& what, std::string_view id = kCard) {
    const auto cards = database_->OpenFile("VELANORO");
    DbRecord card = cards->Read(id);
    what(card);
    cards->write(id, card);
  }
  DbRecord remarks() { return database_->OpenFile(kAsidesFile)->find(kCard).value_or(DbRecord()); }

  std::unique_ptr<store::Database> database_ = app::open_store({.url = "", .demo = true});
  std::string completeness_;
};

TEST_F(CheckingOfAYear, CardsWithoutAFaultAreCompleteWhateverTheyAreWarnedOf) {
  for (const Finding& finding : findings()) EXPECT_FALSE(finding.is_fault()) << finding.fault.sentence();
  const std::string all = completeness_;
  const int cards = std::stoi(all);
  EXPECT_EQ(all, std::to_string(cards) + " sur " + std::to_string(cards) + " fiches complètes");
  change([](DbRecord& card) {
    card.set(4, "");
    card.set(19, "");
  });
  const auto found = findings_of(kCard);
  ASSERT_GE(found.size(), 2u);
  EXPECT_EQ(found[0].fault.sentence(), "Le secteur est obligatoire.");
  EXPECT_EQ(found[0].name, database_->OpenFile("VELANORO")->Read(kCard)(1));
  EXPECT_EQ(completeness_, std::to_string(cards - 1) + " sur " + std::to_string(cards) + " fiches complètes");
}

// What the check of the cards knows is a fault, with the field and the line on which it is mended, and no
// warning besides.
TEST_F(CheckingOfAYear, WhatIsAFaultIsToldOnceAndKnowsItsPlace) {
  const DbRecord good = database_->OpenFile("VELANORO")->Read(kCard);
  const struct {
    int attribute, value;
    std::string text, told;
    int field, line;
  } cases[] = {
      {15, 1, "99999", "La grille « 99999 » n'existe pas dans GRILLESCCBUDGET.", 15, 1},
      {10, 1, "001999", "L'activité « 001999 » n'existe pas dans ACTIVITES.", 10, 1},
      {11, 1, "1", "Le total de la répartition des activités est différent de 100.", 11, 0},
      {23, 1, std::to_string(*entry::day_number({31, 12, 2030})),
       "Un motif de fin de contrat est obligatoire.", 24, 0},
      {9, 1, "99999", "La date de naissance est après la date de début de contrat.", 9, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.told);
    change([&](DbRecord& card) {
      card = good;
      card.set(c.attribute, c.value, c.text);
    });
    int told = 0;
    for (const Finding& finding : findings_of(kCard)) {
      if (!finding.is_fault()) {
        EXPECT_NE(finding.fault.field.number, c.field) << finding.fault.sentence();
        continue;
      }
      ++told;
      EXPECT_EQ(finding.fault.sentence(), c.told);
      EXPECT_EQ(finding.fault.field.number, c.field);
      EXPECT_EQ(finding.fault.line, c.line);
    }
    EXPECT_EQ(told, 1);
  }
}

// Whatever becomes of a card, one that was looked at already and one whose turn is yet to come: what is told
// in the end is what a check from the start tells.
TEST_F(CheckingOfAYear, ACardThatIsWrittenMeanwhileIsLookedAtAgain) {
  const std::string twin = "000000012026", late = "999990012026";
  const auto cards = database_->OpenFile("VELANORO");
  for (const int looked_at : {0, 50, 10'000}) {
    SCOPED_TRACE(looked_at);
    Checking checking(*database_, "0012026", [] { return entry::Date{1, 3, 2026}; });
    for (int i = 0; i < looked_at && checking.step(); ++i) {
    }
    const auto agrees = [&] {
      Checking all = Checking(*database_, "0012026", [] { return entry::Date{1, 3, 2026}; });
      Checking& other = checking;
      while (all.step()) {
      }
      if (!other.done()) return true;
      const auto expected = all.findings(), told = other.findings();
      return other.complete() == all.complete() && other.cards() == all.cards() &&
             std::equal(expected.begin(), expected.end(), told.begin(), told.end(),
                        [](const Finding& a, const Finding& b) {
                          return a.id == b.id && a.fault.sentence() == b.fault.sentence() &&
                                 a.aside.has_value() == b.aside.has_value();
                        });
    };
    const auto renew = [&](std::string_view id) {
      checking.renew(id);
      EXPECT_TRUE(agrees()) << id;
    };
    change([](DbRecord& card) { card.set(19, ""), card.set(24, "01"), card.set(23, ""); });
    renew(kCard);
    for (const std::string& id : {twin, late}) {
      cards->write(id, cards->Read(kCard));
      renew(id);
      renew(kCard);  // the same person
    }
    set_aside(*database_, kCard, {WarningKind::kReasonWithoutEnd, "anne", 21000});
    renew(kCard);
    while (checking.step()) {
    }
    EXPECT_TRUE(agrees());
    for (const std::string& id : {twin, late}) {
      cards->DeleteRecord(id);
      renew(id);
    }
    renew(late);
    renew("999990022026");
    EXPECT_TRUE(checking.is_stale());
  }
}

class SettingAside : public CheckingOfAYear {
 protected:
  void SetUp() override {
    change([](DbRecord& card) {
      card.set(24, "01");
      card.set(23, "");
      card.set(9, std::to_string(std::stoi(std::string(card(8))) - 3000));
    });
  }
  // "name who day" of what is set aside, "name" of what is not.
  std::string told(std::string_view id = kCard) {
    std::string all;
    for (const Finding& finding : findings_of(id)) {
      if (!finding.warning) continue;
      all.append(name_of(*finding.warning).name);
      if (finding.aside) all.append(" " + finding.aside->who + " " + std::to_string(finding.aside->day));
      all.append("\n");
    }
    return all;
  }
};

TEST_F(SettingAside, IsOneKindOnOneCardAndIsTakenBack) {
  ASSERT_EQ(told(), "motif-sans-fin\nnaissance\n");
  set_aside(*database_, kCard, {WarningKind::kBirth, "anne", 21000});
  EXPECT_EQ(told(), "motif-sans-fin\nnaissance anne 21000\n");
  set_aside(*database_, kCard, {WarningKind::kReasonWithoutEnd, "paul", 21001});
  set_aside(*database_, kCard, {WarningKind::kBirth, "paul", 21002});
  EXPECT_EQ(told(), "motif-sans-fin paul 21001\nnaissance paul 21002\n");
  take_back(*database_, kCard, WarningKind::kReasonWithoutEnd);
  EXPECT_EQ(told(), "motif-sans-fin\nnaissance paul 21002\n");
  take_back(*database_, kCard, WarningKind::kBirth);
  take_back(*database_, kCard, WarningKind::kBirth);
  EXPECT_EQ(told(), "motif-sans-fin\nnaissance\n");
  EXPECT_FALSE(database_->OpenFile(kAsidesFile)->find(kCard)) << "nothing is left of it";
}

TEST_F(SettingAside, IsNotInheritedByWhoComesUnderTheCodeLater) {
  set_aside(*database_, kCard, {WarningKind::kBirth, "anne", 21000});
  change([](DbRecord& card) { card.set(1, "QUELQU'UN D'AUTRE"); });
  EXPECT_EQ(told(), "motif-sans-fin\nnaissance\n");
}

TEST_F(SettingAside, OfACardThatIsGoneIsRefused) {
  database_->OpenFile("VELANORO")->DeleteRecord(kCard);
  EXPECT_THROW(set_aside(*database_, kCard, {WarningKind::kBirth, "anne", 1}), store::DbError);
  EXPECT_FALSE(database_->OpenFile(kAsidesFile)->find(kCard));
}

TEST_F(SettingAside, KeepsWhatALaterVersionSetAside) {
  DbRecord record;
  record.set(1, 1, "nouveauté");
  record.set(4, 1, database_->OpenFile("VELANORO")->Read(kCard)(1));
  database_->OpenFile(kAsidesFile)->write(kCard, record);
  EXPECT_EQ(told(), "motif-sans-fin\nnaissance\n");
  set_aside(*database_, kCard, {WarningKind::kBirth, "anne", 1});
  take_back(*database_, kCard, WarningKind::kBirth);
  EXPECT_EQ(remarks(), record);
}

// Another clerk sets something aside between our reading and our writing.
class Meanwhile : public store::WrappedDatabase {
 public:
  using WrappedDatabase::WrappedDatabase;
  std::function<void()> act;

 protected:
  void before(const store::DatabaseCall& call) override {
    if (call.kind == store::DatabaseCall::Kind::kWrite && act) std::exchange(act, {})();
  }
};

TEST_F(SettingAside, TwoClerksAtOnceLoseNothing) {
  Meanwhile two(*database_);
  two.act = [this] { set_aside(*database_, kCard, {WarningKind::kReasonWithoutEnd, "paul", 2}); };
  set_aside(two, kCard, {WarningKind::kBirth, "anne", 1});
  EXPECT_EQ(told(), "motif-sans-fin paul 2\nnaissance anne 1\n");
}

}  // namespace
}  // namespace velanor::office
