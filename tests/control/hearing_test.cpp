// What a component says of the card that is open, and what becomes of it.
#include "control/hearing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "control/user_acts.h"
#include "support/failing_database.h"

namespace velanor::test {
namespace {

using user::Acts, user::after;
using user::choose, user::click, user::edit, user::focus, user::page, user::pick, user::type;
using Told = std::vector<std::string>;

const std::string kMartin = "000100012026 00010 MARTIN JEANNE";

class HearingTest : public testing::Test {
 protected:
  HearingTest() {
    load(memory_, "lib/cards.play");
    office_.component.init();
  }
  void act(const Acts& acts) {
    for (const user::Act& step : acts) step(office_);
  }
  std::string now() const { return standing(office_.component); }

  store::MemoryDatabase memory_;
  store::FailingDatabase failing_{memory_};
  Office office_{failing_};
  Hearing hearing_{office_.component};
};

std::string stored_hours(store::MemoryDatabase& memory) {
  const auto card = memory.find("VELANORO", "000100012026");
  return card ? std::string((*card)(2)) : std::string();
}

const Acts kEntity{type("Txt_Asso", "001")};
const Acts kOpen = after(kEntity, {type("Txt_Aidant", "00010")});
const Acts kNew = after(kEntity, {click("Cmd_Ajout")});
const Acts kItems = after(kOpen, {page(1), pick("Lst_DatEffet", 1), click("Cmd_Detail")});

TEST_F(HearingTest, WhatIsOpenIsToldInEveryMode) {
  const struct {
    Acts acts;
    std::string standing;
  } cases[] = {
      {{}, "none"},
      {kEntity, "none"},
      {after(kEntity, {type("Txt_Aidant", "000")}), "none"},
      {kOpen, "editing " + kMartin},
      {kNew, "creating Nouvelle fiche"},
      {after(kNew, {type("Txt_NomAidant", "Roux")}), "creating Roux *"},
      {after(kNew, {type("Txt_NomAidant", "R"), type("Txt_NomAidant", "")}), "creating Nouvelle fiche"},
      {after(kNew, {click("Cmd_Annul")}), "none"},
      {after(kEntity, {choose("Cbo_Periode", 1), type("Txt_Aidant", "00010")}),
       "reading 000100012025 00010 MARTIN JEANNE"},
      {after(kEntity, {choose("Cbo_Periode", 1), type("Txt_Aidant", "00010"), type("Txt_Aidant", "00")}),
       "none"},
      {after(kOpen, {click("Cmd_OK")}), "none"},
      {after(kOpen, {click("Cmd_Supp")}), "none"},
      {after(kOpen, {click("Cmd_Copier")}), "editing " + kMartin},
      {after(kOpen, {click("Cmd_Annul"), click("Cmd_Sortir")}), "none"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.standing);
    Office office(memory_);
    EXPECT_EQ(standing(office.component), "none");
    office.component.init();
    for (const user::Act& step : test.acts) step(office);
    EXPECT_EQ(standing(office.component), test.standing);
    load(memory_, "lib/cards.play");
  }
}

// Every box of the card that can be typed into.
TEST_F(HearingTest, ABoxThatReadsOtherwiseIsAChangeUntilItReadsAsBefore) {
  for (const Acts& opening : {kOpen, kNew}) {
    Office office(memory_);
    office.component.init();
    for (const user::Act& step : opening) step(office);
    int boxes = 0;
    for (screen::Control* control : office.ui.controls()) {
      auto* box = dynamic_cast<screen::TextControl*>(control);
      if (!box || !box->usable()) continue;
      SCOPED_TRACE(box->name());
      ++boxes;
      const std::string before = box->text();
      box->set_text(before.empty() ? "," : "");
      EXPECT_TRUE(office.component.modified());
      box->set_text(before);
      EXPECT_FALSE(office.component.modified());
    }
    EXPECT_GT(boxes, 20);
  }
}

TEST_F(HearingTest, WhatIsTakenBackIsNoChange) {
  const struct {
    const char* name;
    Acts before;
    bool modified;
  } cases[] = {
      {"another contract type", {click("Opt_CDD")}, true},
      {"and the first one again", {click("Opt_CDD"), click("Opt_CDI")}, false},
      {"half a label", {type("Cbo_Secteur", "Agglo")}, true},
      {"half a date", {type("Txt_DatFin", "12")}, true},
      {"and its end", {type("Txt_DatFin", "12"), type("Txt_DatFin", "")}, false},
      {"a field that is passed through", {focus("Txt_HorMensEtab"), page(1), page(2), page(0)}, false},
      {"a list that is looked at", {page(1), pick("Lst_DatEffet", 1), pick("Lst_DatEffet", 0)}, false},
      {"a new amendment", {page(1), click("Cmd_AjDetail")}, false},
      {"its date", {page(1), click("Cmd_AjDetail"), type("Txt_DatEffet", "0")}, true},
      {"given up",
       {page(1), click("Cmd_AjDetail"), type("Txt_DatEffet", "0"), click("Cmd_AnnulDetail")},
       false},
      {"an amendment under edit", {page(1), edit("Lst_DatEffet", 1)}, false},
      {"its rate", {page(1), edit("Lst_DatEffet", 1), type("Txt_TxHor", "16")}, true},
      {"as it was",
       {page(1), edit("Lst_DatEffet", 1), type("Txt_TxHor", "16"), type("Txt_TxHor", "15,250")},
       false},
      {"confirmed unchanged", {page(1), edit("Lst_DatEffet", 1), click("Cmd_OkDetail")}, false},
      {"confirmed", {page(1), edit("Lst_DatEffet", 1), type("Txt_TxHor", "16"), click("Cmd_OkDetail")}, true},
      {"removed", {page(1), edit("Lst_DatEffet", 1), click("Cmd_SuppDetail")}, true},
      {"a new activity", {click("Cmd_AjAct")}, false},
      {"its share", {click("Cmd_AjAct"), type("Txt_Pourc", "1")}, true},
      {"an activity under edit", {edit("Lst_Activites", 0)}, false},
      {"another share", {edit("Lst_Activites", 0), type("Txt_Pourc", "50")}, true},
      {"confirmed", {edit("Lst_Activites", 0), type("Txt_Pourc", "50"), click("Cmd_OkAct")}, true},
      {"and back",
       {edit("Lst_Activites", 0), type("Txt_Pourc", "50"), click("Cmd_OkAct"), edit("Lst_Activites", 0),
        type("Txt_Pourc", "66,67"), click("Cmd_OkAct")},
       false},
      {"the items", {page(1), pick("Lst_DatEffet", 1), click("Cmd_Detail")}, false},
      {"looked at", {page(1), pick("Lst_DatEffet", 1), click("Cmd_Detail"), click("Cmd_Retour")}, false},
      {"an item under edit",
       after({page(1), pick("Lst_DatEffet", 1), click("Cmd_Detail")}, {edit("Lst_Code", 0)}), false},
      {"its base",
       {page(1), pick("Lst_DatEffet", 1), click("Cmd_Detail"), edit("Lst_Code", 0), type("Txt_Base", "9")},
       true},
      {"confirmed",
       {page(1), pick("Lst_DatEffet", 1), click("Cmd_Detail"), edit("Lst_Code", 0), type("Txt_Base", "9"),
        click("Cmd_OK")},
       true},
      {"confirmed unchanged",
       {page(1), pick("Lst_DatEffet", 1), click("Cmd_Detail"), edit("Lst_Code", 0), click("Cmd_OK")},
       false},
      {"a new item", {page(1), pick("Lst_DatEffet", 1), click("Cmd_Detail"), click("Cmd_Ajouter")}, false},
      {"its code",
       {page(1), pick("Lst_DatEffet", 1), click("Cmd_Detail"), click("Cmd_Ajouter"), type("Txt_Code", "0")},
       true},
      {"a duplicate", {click("Cmd_Copier")}, false},
      {"a duplicate of a card with changes", {type("Txt_HorMensEtab", "140"), click("Cmd_Copier")}, true},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.name);
    Office office(memory_);
    office.component.init();
    for (const user::Act& step : after(kOpen, test.before)) step(office);
    EXPECT_EQ(office.component.modified(), test.modified);
  }
}

// The visit is dropped as a whole, and then nothing is left of it.
TEST_F(HearingTest, AVisitToTheItemsThatIsDroppedIsNoChange) {
  act(after(kItems, {edit("Lst_Code", 0), type("Txt_Base", "9"), click("Cmd_OK")}));
  EXPECT_TRUE(office_.component.modified());
  office_.toolkit.answer = [](const screen::Message&) { return screen::Answer::No; };
  act({click("Cmd_Retour")});
  EXPECT_EQ(office_.component.screen().top().name(), "ControleVelanor");
  EXPECT_FALSE(office_.component.modified());
}

TEST_F(HearingTest, AnotherGridOfTheSameLabelIsAChange) {
  load(memory_, "line_under_edit.play");
  // They dictate one category as well.
  store::DbRecord other = *memory_.find("GRILLESCCBUDGET", "03050");
  other.set(7, "D");
  memory_.put("GRILLESCCBUDGET", "03050", other);
  act({type("Txt_Asso", "001"), type("Txt_Aidant", "00030"), page(1), edit("Lst_DatEffet", 0)});
  const screen::ComboBox& grids = office_.ui.Cbo_Grille;
  const int own = grids.index();
  const int first = grids.find("Cadre");
  ASSERT_TRUE(own > first && grids.line(own) == "Cadre") << "the card has the first grid of its label";
  act({choose("Cbo_Grille", first)});
  EXPECT_TRUE(office_.component.modified());
  act({choose("Cbo_Grille", own)});
  EXPECT_FALSE(office_.component.modified());
}

TEST_F(HearingTest, HoursThatAreTypedAreAChange) {
  store::DbRecord card = *memory_.find("VELANORO", "000100012026");
  for (int attribute = 30; attribute <= 33; ++attribute) card.set(attribute, 1, "");
  memory_.put("VELANORO", "000100012026", card);
  act(after(kOpen, {page(1), pick("Lst_DatEffet", 0), click("Cmd_Detail"), click("Cmd_SaisieAuto")}));
  ASSERT_EQ(office_.component.screen().top().name(), "Frm_SaisieHres");
  EXPECT_FALSE(office_.component.modified());
  act({type("Txt_NbHresPayees", "1")});
  EXPECT_TRUE(office_.component.modified());
  act({type("Txt_NbHresPayees", ""), type("Txt_NbHresTrav", "1")});
  EXPECT_TRUE(office_.component.modified());
  act({click("Cmd_Annuler")});
  EXPECT_FALSE(office_.component.modified());
}

TEST_F(HearingTest, EachActIsToldOfOnceAndInOrder) {
  const std::string kEditing = "now editing " + kMartin;
  const struct {
    const char* name;
    Acts before, acts;
    Told told;
  } cases[] = {
      {"nothing", {}, kEntity, {}},
      {"a card", kEntity, {type("Txt_Aidant", "00010")}, {"opened " + kMartin, kEditing}},
      {"a key that changes nothing", kOpen, {type("Txt_HorMensEtab", "151,67")}, {kEditing + " *", kEditing}},
      {"a change", kOpen, {type("Txt_PlafSecu", "9")}, {kEditing + " *"}},
      {"a change more", after(kOpen, {type("Txt_PlafSecu", "9")}), {type("Txt_AssSS", "9")}, {}},
      {"saving",
       after(kOpen, {type("Txt_PlafSecu", "9")}),
       {click("Cmd_OK")},
       {"saved " + kMartin, "closed " + kMartin, "now none"}},
      {"a refusal", after(kOpen, {type("Txt_HorMensEtab", "")}), {click("Cmd_OK")}, {}},
      {"giving up", kOpen, {click("Cmd_Annul")}, {"closed " + kMartin, "now none"}},
      {"deleting", kOpen, {click("Cmd_Supp")}, {"deleted " + kMartin, "closed " + kMartin, "now none"}},
      {"copying", kOpen, {click("Cmd_Copier")}, {"copied " + kMartin + " to 999990012026"}},
      {"copying what was deleted",
       after(kOpen, {click("Cmd_Supp")}),
       {click("Cmd_Copier")},
       {"copied " + kMartin + " to 999990012026"}},
      {"a new card",
       kEntity,
       {click("Cmd_Ajout")},
       {"opened  Nouvelle fiche", "now creating Nouvelle fiche"}},
      {"given up", kNew, {click("Cmd_Annul")}, {"closed  Nouvelle fiche", "now none"}},
      {"a past year",
       after(kEntity, {choose("Cbo_Periode", 1)}),
       {type("Txt_Aidant", "00010")},
       {"opened 000100012025 00010 MARTIN JEANNE", "now reading 000100012025 00010 MARTIN JEANNE"}},
      {"another code over it",
       after(kEntity, {choose("Cbo_Periode", 1), type("Txt_Aidant", "00010")}),
       {[](Office& office) { EXPECT_EQ(office.hand.replace_text(office.ui.Txt_Aidant, "00099"), ""); }},
       {"closed 000100012025 00010 MARTIN JEANNE", "now none"}},
      {"another card over it",
       after(kEntity, {choose("Cbo_Periode", 1), type("Txt_Aidant", "00010")}),
       {[](Office& office) { EXPECT_EQ(office.hand.replace_text(office.ui.Txt_Aidant, "00020"), ""); }},
       {"closed 000100012025 00010 MARTIN JEANNE", "opened 000200012025 00020 DURAND PAUL",
        "now reading 000200012025 00020 DURAND PAUL"}},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.name);
    store::MemoryDatabase memory;
    load(memory, "lib/cards.play");
    memory.put("VELANORO", "000200012025", *memory.find("VELANORO", "000200012026"));
    Office office(memory);
    office.component.init();
    for (const user::Act& step : test.before) step(office);
    Hearing hearing(office.component);
    for (const user::Act& step : test.acts) step(office);
    EXPECT_EQ(hearing.take(), test.told);
  }
}

TEST_F(HearingTest, ANewCardIsToldUnderTheCodeThatItWasGiven) {
  act(after(kNew,
            {type("Txt_NomAidant", "Roux Léa"), type("Txt_CodEtab", "001"), type("Txt_ConvCol", "01"),
             type("Txt_Secteur", "001"), choose("Cbo_Com", 0), type("Txt_DatDeb", "01/01/2026"),
             click("Cmd_AjAct"), choose("Cbo_Activites", 0), type("Txt_Pourc", "100"), click("Cmd_OkAct")}));
  act({page(1), type("Txt_Profil1", "001"), click("Cmd_AjDetail"), choose("Cbo_Qualif", 0),
       type("Txt_DatDepGrille", ""), type("Txt_TxHor", "12"), click("Cmd_OkDetail"), click("Cmd_Detail")});
  act({click("Cmd_Ajouter"), type("Txt_Code", "001"), type("Txt_Base", "100"), click("Cmd_OK"),
       click("Cmd_Retour")});
  EXPECT_EQ(now(), "creating Roux Léa *");
  hearing_.take();
  act({click("Cmd_OK")});
  EXPECT_EQ(hearing_.take(),
            (Told{"saved 999990012026 99999 ROUX LÉA", "closed 999990012026 99999 ROUX LÉA", "now none"}));
}

// Whichever call of the store fails: what is told is what has happened.
TEST_F(HearingTest, OfAnActThatFailsIsToldWhatWasDone) {
  const struct {
    const char* name;
    Acts before;
    user::Act act;
  } stories[] = {
      {"opening", kEntity, type("Txt_Aidant", "00010")},
      {"creating", kEntity, click("Cmd_Ajout")},
      {"saving", after(kOpen, {type("Txt_HorMensEtab", "140")}), click("Cmd_OK")},
      {"deleting", kOpen, click("Cmd_Supp")},
      {"copying", kOpen, click("Cmd_Copier")},
      {"giving up", kOpen, click("Cmd_Annul")},
  };
  for (const auto& story : stories) {
    bool finished = false;
    for (int n = 1; !finished; ++n) {
      SCOPED_TRACE(std::string(story.name) + ", call " + std::to_string(n));
      ASSERT_LT(n, 100);
      store::MemoryDatabase memory;
      load(memory, "lib/cards.play");
      store::FailingDatabase failing(memory);
      Office office(failing);
      office.component.init();
      for (const user::Act& step : story.before) step(office);
      Hearing hearing(office.component);
      const std::string before = standing(office.component);
      failing.fail_at(n);
      try {
        story.act(office);
        finished = failing.failures() == 0;
      } catch (const store::DbError&) {
      }
      failing.fail_at(0);
      const Told told = hearing.take();
      const auto count = [&](const char* event) {
        return std::count_if(told.begin(), told.end(),
                             [&](const auto& one) { return one.rfind(event, 0) == 0; });
      };
      const std::string now = standing(office.component);
      EXPECT_EQ(count("now"), now != before);
      EXPECT_EQ(count("deleted"), memory.find("VELANORO", "000100012026") ? 0 : 1);
      // A code that could not be looked up counts as taken.
      const bool copied = memory.find("VELANORO", "999990012026") || memory.find("VELANORO", "999980012026");
      EXPECT_EQ(count("copied"), copied ? 1 : 0);
      EXPECT_EQ(count("saved"), stored_hours(memory) == "14000" ? 1 : 0);
      EXPECT_EQ(count("opened") - count("closed"), (now != "none") - (before != "none"));
      EXPECT_EQ(office.ui.Cmd_Sortir.enabled(), now == "none");
    }
  }
}

// ---- What is entered.

TEST_F(HearingTest, TheCardAsItReadsIsThereBeforeItIsConfirmed) {
  class Following : public control::CardListener {
   public:
    explicit Following(ControleVelanor& component) : component_(component) { component.listen(*this); }
    void act_over() override { card = component_.card_as_entered(); }
    store::DbRecord card;

   private:
    ControleVelanor& component_;
  } following(office_.component);
  const auto dates = [&] { return std::string(following.card(12)); };
  act(kOpen);
  EXPECT_EQ(following.card.encoded(), office_.component.card_in_hand().encoded());
  const std::string lines = dates();
  act({type("Txt_NomAidant", "ROUX")});
  EXPECT_EQ(following.card(1), "ROUX");
  act({page(1), click("Cmd_AjDetail"), type("Txt_DatEffet", "15/0")});
  EXPECT_EQ(dates(), lines) << "no date yet";
  act({type("Txt_DatEffet", office_.ui.Lst_DatEffet.items().front().c_str())});
  EXPECT_EQ(dates(), lines) << "another line stands there";
  act({type("Txt_DatEffet", "15/11/2026"), type("Txt_TxHor", "14,5")});
  EXPECT_EQ(following.card.Count(12), office_.component.card_in_hand().Count(12) + 1);
  EXPECT_EQ(following.card(17, following.card.Count(17)), "14500");
  act({click("Cmd_AnnulDetail"), edit("Lst_DatEffet", 0), type("Txt_TxHor", "13")});
  EXPECT_EQ(dates(), lines);
  EXPECT_EQ(following.card(17, 1), "13000");
  act({click("Cmd_AnnulDetail"), click("Cmd_Annul")});
  EXPECT_EQ(following.card.encoded(), "");
  office_.component.ignore(following);
}

// ---- Listeners.

TEST_F(HearingTest, AListenerMayLeadTheComponentOn) {
  act(kOpen);
  hearing_.take();
  Hearing second(office_.component);
  hearing_.then = [&](const std::string& event) {
    if (event.rfind("saved", 0) != 0) return;
    EXPECT_EQ(office_.component.state(), control::State::kNone) << "the act is not over";
    EXPECT_TRUE(office_.component.open("001", "2025", "00010").is_open());
  };
  act({click("Cmd_OK")});
  const std::string past = "000100012025 00010 MARTIN JEANNE";
  const Told all{"saved " + kMartin, "closed " + kMartin, "opened " + past, "now reading " + past};
  EXPECT_EQ(hearing_.take(), all);
  EXPECT_EQ(second.take(), all) << "what the first one did was told before what it heard";
}

TEST_F(HearingTest, WhatAListenerThrowsReachesWhoActedAndKeepsNobodyFromHearing) {
  Hearing second(office_.component);
  hearing_.then = [](const std::string& event) { throw std::runtime_error(event); };
  act(kEntity);
  try {
    act({type("Txt_Aidant", "00010")});
    ADD_FAILURE() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(error.what(), "opened " + kMartin);
  }
  const Told all{"opened " + kMartin, "now editing " + kMartin};
  EXPECT_EQ(hearing_.take(), all);
  EXPECT_EQ(second.take(), all);
  EXPECT_TRUE(office_.ui.Cmd_OK.enabled());
  hearing_.then = nullptr;
  EXPECT_NO_THROW(act({click("Cmd_OK")}));
  EXPECT_EQ(second.take().size(), 3U);
}

TEST_F(HearingTest, AFailureOfTheActGoesBeforeThatOfAListener) {
  act(kOpen);
  hearing_.then = [](const std::string& event) { throw std::runtime_error(event); };
  failing_.fail_at(1);
  EXPECT_THROW(act({click("Cmd_Annul")}), store::DbError) << "the list of the employees was read";
  EXPECT_EQ(hearing_.take().back(), "now none");
}

TEST_F(HearingTest, WhoNoLongerListensHearsNothing) {
  Hearing second(office_.component);
  hearing_.then = [&](const std::string&) { office_.component.ignore(second); };
  act(kOpen);
  EXPECT_EQ(second.take(), Told());
}

TEST_F(HearingTest, AListenerMayDestroyTheComponent) {
  auto office = std::make_unique<Office>(memory_);
  office->component.init();
  Hearing hearing(office->component);
  Hearing second(office->component);
  hearing.then = [&](const std::string&) { office.reset(); };
  EXPECT_EQ(office->hand.type(office->ui.Txt_Asso, "001"), "");
  screen::Hand hand(office->component.screen());
  EXPECT_EQ(hand.type(office->ui.Txt_Aidant, "00010"), "");
  EXPECT_EQ(office, nullptr);
  EXPECT_EQ(hearing.take().size(), 1U);
  EXPECT_EQ(second.take(), Told());
}

TEST_F(HearingTest, AClockOfTheHostsCompletesDates) {
  Office office(memory_);
  office.component.set_clock([] { return entry::Date{15, 3, 2031}; });
  office.component.init();
  for (const user::Act& step : after(kOpen, {page(1), type("Txt_DatFin", "7"), focus("Txt_HresExo")}))
    step(office);
  EXPECT_EQ(office.ui.Txt_DatFin.text(), "07/03/2031");
}

}  // namespace
}  // namespace velanor::test
