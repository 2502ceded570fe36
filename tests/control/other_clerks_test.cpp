// What a component makes of the news of what others write.
#include <gtest/gtest.h>

#include "control/hearing.h"
#include "control/user_acts.h"
#include "support/failing_database.h"

namespace velanor::test {
namespace {

using user::click, user::type;
using Told = std::vector<std::string>;

const std::string kMartin = "000100012026 00010 MARTIN JEANNE";
constexpr const char* kId = "000100012026";

// Hears of others what a test says.
class TalkativeDatabase : public store::WrappedDatabase {
 public:
  using WrappedDatabase::WrappedDatabase;
  std::unique_ptr<store::News> news() override { return std::make_unique<Reader>(changes); }

  std::vector<store::Change> changes;

 private:
  class Reader : public store::News {
   public:
    explicit Reader(std::vector<store::Change>& changes) : changes_(changes) {}
    int descriptor() const override { return 7; }
    std::vector<store::Change> take() override { return std::exchange(changes_, {}); }

   private:
    std::vector<store::Change>& changes_;
  };
};

class OtherClerksTest : public testing::Test {
 protected:
  OtherClerksTest() {
    load(memory_, "lib/cards.play");
    office_.component.init();
    hearing_.take();
  }
  void act(const user::Acts& acts) {
    for (const user::Act& step : acts) step(office_);
    hearing_.take();
  }
  void name(const char* id, const char* text) {
    store::DbRecord card = memory_.find("VELANORO", id).value_or(store::DbRecord());
    card.set(1, text);
    memory_.put("VELANORO", id, card);
  }
  Told news(const store::Change& change) {
    database_.changes.push_back(change);
    EXPECT_TRUE(office_.component.hear_news());
    return hearing_.take();
  }
  std::vector<std::string> employees() const { return office_.ui.Cbo_Aidant.items(); }

  store::MemoryDatabase memory_;
  store::FailingDatabase failing_{memory_};
  TalkativeDatabase database_{failing_};
  Office office_{database_};
  Hearing hearing_{office_.component};
};

TEST_F(OtherClerksTest, TheListOfEmployeesRenewsItselfUnderWhatIsBeingTyped) {
  EXPECT_EQ(office_.component.news_descriptor(), 7);
  act({type("Txt_Asso", "001"), type("Cbo_Aidant", "mart")});
  const screen::Control* focus = office_.ui.focus();
  name("000300012026", "ADAM ZOE");
  EXPECT_EQ(news({"VELANORO", "000300012026", "anne"}), Told{});
  EXPECT_EQ(employees(), (Told{"ADAM ZOE", "DURAND PAUL", "MARTIN JEANNE"}));
  EXPECT_EQ(office_.ui.Cbo_Aidant.notes(), (Told{"00030", "00020", "00010"}));
  EXPECT_EQ(office_.ui.Cbo_Aidant.text(), "mart");
  EXPECT_EQ(office_.ui.focus(), focus);
}

TEST_F(OtherClerksTest, WhatIsNotInTheListIsNotAskedFor) {
  act({type("Txt_Asso", "001")});
  const int before = failing_.calls();
  EXPECT_EQ(news({"VELANORO", "000100072024", "anne"}), Told{});
  EXPECT_EQ(news({"COMMUNES", "1", "anne"}), Told{});
  EXPECT_EQ(failing_.calls(), before);
  news({});
  EXPECT_GT(failing_.calls(), before) << "anything may have changed";
}

TEST_F(OtherClerksTest, AnOpenCardThatSomebodySavesOrDeletesIsToldOnceAndStaysAsItIs) {
  act({type("Txt_Asso", "001"), type("Txt_Aidant", "00010"), type("Txt_HorMensEtab", "99")});
  name(kId, "MARTIN ANNE");
  EXPECT_EQ(news({"VELANORO", kId, "anne"}), Told{"saved elsewhere " + kMartin + " by anne"});
  EXPECT_EQ(news({"VELANORO", kId, "anne"}), Told{}) << "the same again";
  EXPECT_EQ(news({}), Told{}) << "nothing has changed";
  EXPECT_EQ(office_.ui.Txt_NomAidant.text(), "MARTIN JEANNE");
  EXPECT_EQ(office_.ui.Txt_HorMensEtab.text(), "99");
  memory_.remove("VELANORO", kId);
  EXPECT_EQ(news({"VELANORO", kId, "paul"}), Told{"deleted elsewhere " + kMartin + " by paul"});
  EXPECT_TRUE(office_.toolkit.messages.empty());
}

TEST_F(OtherClerksTest, ACardOpenedAnewIsComparedWithWhatItWasOpenedWith) {
  act({type("Txt_Asso", "001"), type("Txt_Aidant", "00010")});
  name(kId, "B");
  EXPECT_EQ(news({"VELANORO", kId, "anne"}).size(), 1u);
  act({click("Cmd_Annul")});
  name(kId, "C");
  act({type("Txt_Aidant", "00010")});
  EXPECT_EQ(news({"VELANORO", kId, "anne"}), Told{}) << "it was opened so";
  name(kId, "B");
  EXPECT_EQ(news({"VELANORO", kId, "anne"}).size(), 1u);
}

TEST_F(OtherClerksTest, NothingIsHeardWhileAMessageWaits) {
  act({type("Txt_Asso", "001"), type("Txt_Aidant", "00010")});
  name(kId, "B");
  database_.changes.push_back({"VELANORO", kId, "anne"});
  office_.toolkit.answer = [&](const screen::Message&) {
    EXPECT_FALSE(office_.component.hear_news());
    return screen::Answer::No;
  };
  EXPECT_EQ(office_.hand.click(office_.ui.Cmd_Annul), "");
  EXPECT_EQ(hearing_.take(), Told{});
  EXPECT_TRUE(office_.component.hear_news());
  EXPECT_EQ(hearing_.take().size(), 1u);
}

TEST_F(OtherClerksTest, WhatCannotBeReadIsHeardTheNextTime) {
  act({type("Txt_Asso", "001"), type("Txt_Aidant", "00010")});
  name(kId, "B");
  failing_.fail_at(1);
  EXPECT_EQ(news({"VELANORO", kId, "anne"}), Told{});
  EXPECT_EQ(failing_.failures(), 1);
  EXPECT_TRUE(office_.component.hear_news());
  EXPECT_EQ(hearing_.take(), Told{"saved elsewhere " + kMartin + " by anne"});
}

}  // namespace
}  // namespace velanor::test
