// A host leads the component to a card, from wherever it stands.
#include <gtest/gtest.h>

#include "card/record/named_fields.h"
#include "control/hearing.h"
#include "control/user_acts.h"
#include "support/failing_database.h"

namespace velanor::test {
namespace {

using control::Opening;
using Outcome = Opening::Outcome;
using screen::Answer;
using user::Acts, user::after;
using user::choose, user::click, user::edit, user::page, user::pick, user::type;
using Texts = std::vector<std::string>;

const std::string kQuestion = "Voulez-vous quitter cette création ?";
const Acts kEntity{type("Txt_Asso", "001")};
const Acts kOpen = after(kEntity, {type("Txt_Aidant", "00010")});
const Acts kPast = after(kEntity, {choose("Cbo_Periode", 1), type("Txt_Aidant", "00010")});
const Acts kItems = after(kOpen, {page(1), pick("Lst_DatEffet", 1), click("Cmd_Detail")});

struct From {
  const char* name;
  Acts acts;
  bool asks;  // something would be lost
};

// Everything that can stand on the screen.
std::vector<From> everywhere() {
  const user::Act change = type("Txt_HorMensEtab", "140");
  const user::Act remove_items = [](Office& office) {
    auto& codes = dynamic_cast<screen::ListBox&>(office.control("Lst_Code"));
    while (codes.count() > 0) {
      EXPECT_EQ(office.hand.double_click(codes, 0), "");
      EXPECT_EQ(office.hand.click(office.control("Cmd_Supprimer")), "");
    }
  };
  return {
      {"nothing", {}, false},
      {"an entity", kEntity, false},
      {"another entity", {type("Txt_Asso", "007")}, false},
      {"half an employee's code", after(kEntity, {type("Txt_Aidant", "0001")}), false},
      {"a code that leaving would complete", after(kEntity, {type("Txt_Aidant", "10")}), false},
      {"half an entity's name", after(kEntity, {type("Cbo_Asso", "xyz")}), false},
      {"half an employee's name", after(kEntity, {type("Cbo_Aidant", "xyz")}), false},
      {"a card", kOpen, false},
      {"a card with a change", after(kOpen, {change}), true},
      {"a box that cannot be left", after(kOpen, {type("Txt_DatNais", "99/99/99")}), true},
      {"half a label", after(kOpen, {type("Cbo_Secteur", "xyz")}), true},
      {"a new card", after(kEntity, {click("Cmd_Ajout")}), false},
      {"a new card with a name", after(kEntity, {click("Cmd_Ajout"), type("Txt_NomAidant", "R")}), true},
      {"a past year", kPast, false},
      {"a new amendment", after(kOpen, {page(1), click("Cmd_AjDetail")}), false},
      {"its date", after(kOpen, {page(1), click("Cmd_AjDetail"), type("Txt_DatEffet", "1")}), true},
      {"an amendment under edit", after(kOpen, {page(1), edit("Lst_DatEffet", 0)}), false},
      {"an activity", after(kOpen, {click("Cmd_AjAct")}), false},
      {"its share", after(kOpen, {click("Cmd_AjAct"), type("Txt_Pourc", "1")}), true},
      {"the items", kItems, false},
      {"an item under edit", after(kItems, {edit("Lst_Code", 0)}), false},
      {"its base", after(kItems, {edit("Lst_Code", 0), type("Txt_Base", "9")}), true},
      {"an item changed", after(kItems, {edit("Lst_Code", 0), type("Txt_Base", "9"), click("Cmd_OK")}), true},
      {"the hours form",
       after(kOpen, {page(1), pick("Lst_DatEffet", 0), click("Cmd_Detail"), remove_items,
                     click("Cmd_SaisieAuto"), type("Txt_NbHresTrav", "1")}),
       true},
      {"the items of a line under edit",
       after(kOpen, {page(1), edit("Lst_DatEffet", 1), click("Cmd_Detail")}), false},
      {"a deleted card", after(kOpen, {click("Cmd_Supp")}), false},
  };
}

class OpenTest : public testing::Test {
 protected:
  struct At {
    explicit At(const Acts& acts) : failing(memory), office(failing) {
      load(memory, "lib/cards.play");
      office.component.init();
      for (const user::Act& step : acts) step(office);
      office.toolkit.messages.clear();
    }
    store::MemoryDatabase memory;
    store::FailingDatabase failing;
    Office office;
  };
};

// What the screen shows, control by control.
Texts picture(Office& office) {
  Texts texts{office.component.screen().top().name()};
  for (screen::Form* form : office.component.screen().open_forms()) {
    for (screen::Control* control : form->controls()) {
      std::string text = control->name() + (control->enabled() ? " on" : " off");
      if (auto* box = dynamic_cast<screen::TextControl*>(control)) text += " <" + box->text() + ">";
      if (auto* list = dynamic_cast<screen::ListBox*>(control)) {
        for (const std::string& line : list->items()) text += "|" + line;
      }
      texts.push_back(text);
    }
  }
  return texts;
}

TEST_F(OpenTest, ACardIsOpenedFromEverywhereAsAClerkWouldHaveIt) {
  const struct {
    const char *entity, *year, *employee;
    Acts by_hand;
  } targets[] = {
      {"001", "2026", "00020", after(kEntity, {type("Txt_Aidant", "00020")})},
      {"1", "2025", "10", kPast},
      {"007", "2024", "00010", {type("Txt_Asso", "007"), type("Txt_Aidant", "00010")}},
  };
  for (const auto& target : targets) {
    SCOPED_TRACE(target.employee);
    for (const From& from : everywhere()) {
      SCOPED_TRACE(from.name);
      At at(from.acts);
      const std::string id = at.office.component.card_id();
      const Opening opening = at.office.component.open(target.entity, target.year, target.employee);
      EXPECT_TRUE(opening.is_open()) << opening.why;
      EXPECT_EQ(opening.why, "");
      EXPECT_EQ(at.office.toolkit.messages, from.asks ? Texts{kQuestion} : Texts());
      if (std::string(from.name) == "a deleted card") continue;
      At by_hand(target.by_hand);
      EXPECT_EQ(standing(at.office.component), standing(by_hand.office.component));
      if (id == at.office.component.card_id()) continue;
      EXPECT_EQ(picture(at.office), picture(by_hand.office));
    }
  }
}

TEST_F(OpenTest, TheOpenCardIsReadAnewAndAChangeIsAskedFor) {
  for (const From& from : everywhere()) {
    SCOPED_TRACE(from.name);
    At at(from.acts);
    const std::string id = at.office.component.card_id();
    const Texts before = picture(at.office);
    if (!id.empty()) {
      store::DbRecord theirs = *at.memory.find("VELANORO", id);
      theirs.set(2, "12345");
      at.memory.put("VELANORO", id, theirs);
    }
    const Opening opening = at.office.component.reload();
    EXPECT_EQ(opening.outcome, id.empty() ? Outcome::kUnknown : Outcome::kOpen) << opening.why;
    EXPECT_EQ(at.office.toolkit.messages, from.asks && !id.empty() ? Texts{kQuestion} : Texts());
    EXPECT_EQ(at.office.component.card_id(), id);
    if (id.empty()) {
      EXPECT_EQ(picture(at.office), before);
    } else {
      EXPECT_EQ(at.office.ui.Txt_HorMensEtab.text(), "123,45");
      EXPECT_FALSE(at.office.component.modified());
    }
  }
  At at(kOpen);
  at.memory.remove("VELANORO", at.office.component.card_id());
  EXPECT_EQ(at.office.component.reload().outcome, Outcome::kUnknown);
  EXPECT_EQ(at.office.component.card_id(), "000100012026") << "it stays on the screen";
}

TEST_F(OpenTest, WhoAnswersNoKeepsEverythingThatWasBegun) {
  for (const From& from : everywhere()) {
    if (!from.asks) continue;
    SCOPED_TRACE(from.name);
    At at(from.acts);
    const Texts before = picture(at.office);
    const std::string stood = standing(at.office.component);
    const screen::Control* focus = at.office.component.screen().top().focus();
    at.office.toolkit.answer = [](const screen::Message& message) {
      EXPECT_EQ(message.preset, Answer::No) << "Enter would throw work away";
      return Answer::No;
    };
    Hearing hearing(at.office.component);
    const Opening opening = at.office.component.open("001", "2026", "00020");
    EXPECT_EQ(opening.outcome, Outcome::kKept);
    EXPECT_EQ(opening.why, "La fiche ouverte est restée à l'écran.");
    EXPECT_EQ(picture(at.office), before);
    EXPECT_EQ(standing(at.office.component), stood);
    EXPECT_EQ(at.office.component.screen().top().focus(), focus);
  }
}

// But for the places that are out of use on this card.
TEST_F(OpenTest, EveryFieldOfACardHasAPlaceOnItsPages) {
  At at(kOpen);
  for (const card::Field& field : card::card_fields()) {
    SCOPED_TRACE(field.name);
    screen::Control* place = at.office.component.place_of(field.number);
    ASSERT_NE(place, nullptr);
    EXPECT_EQ(dynamic_cast<screen::CommandButton*>(place), nullptr) << "it would begin something";
    if (!place->usable()) continue;
    EXPECT_EQ(at.office.hand.focus(*place), "");
    EXPECT_EQ(at.office.component.screen().top().focus(), place);
  }
  EXPECT_EQ(at.office.component.place_of(card::kHourlyRate.number), &at.office.ui.Lst_TxHor);
  EXPECT_EQ(at.office.component.place_of(card::kItemBase.number), &at.office.ui.Lst_DatEffet);
  EXPECT_EQ(at.office.component.place_of(card::kResult1.number), nullptr);
  EXPECT_FALSE(at.office.component.modified());
}

TEST_F(OpenTest, WhatDoesNotExistChangesNothingAndIsSaid) {
  const struct {
    const char *entity, *year, *employee, *why;
  } cases[] = {
      {"999", "2026", "00010", "L'entité « 999 » n'existe pas."},
      {"", "2026", "00010", "L'entité «  » n'existe pas."},
      {"009", "2026", "00010", "L'entité 009 n'a pas de fiches de l'année « 2026 »."},
      {"001", "2031", "00010", "L'entité 001 n'a pas de fiches de l'année « 2031 »."},
      {"001", "", "00010", "L'entité 001 n'a pas de fiches de l'année «  »."},
      {"001", "2026", "00099", "L'entité 001 n'a pas de fiche « 00099 » pour l'année 2026."},
      {"001", "2026", "", "L'entité 001 n'a pas de fiche «  » pour l'année 2026."},
      {"001", "2026", "000100", "L'entité 001 n'a pas de fiche « 000100 » pour l'année 2026."},
  };
  for (const From& from : everywhere()) {
    SCOPED_TRACE(from.name);
    At at(from.acts);
    const Texts before = picture(at.office);
    for (const auto& test : cases) {
      const Opening opening = at.office.component.open(test.entity, test.year, test.employee);
      EXPECT_EQ(opening.outcome, Outcome::kUnknown);
      EXPECT_EQ(opening.why, test.why);
    }
    EXPECT_EQ(picture(at.office), before);
    EXPECT_EQ(at.office.toolkit.messages, Texts());
  }
}

TEST_F(OpenTest, TheCardThatIsOpenStaysAsItIs) {
  At at(after(kItems, {edit("Lst_Code", 0), type("Txt_Base", "9")}));
  const Texts before = picture(at.office);
  EXPECT_TRUE(at.office.component.open("001", "2026", "00010").is_open());
  EXPECT_EQ(picture(at.office), before);
  EXPECT_EQ(at.office.toolkit.messages, Texts());
}

TEST_F(OpenTest, WhileAMessageWaitsNothingIsOpened) {
  At at(kOpen);
  int asked = 0;
  at.office.toolkit.answer = [&](const screen::Message&) {
    ++asked;
    EXPECT_EQ(at.office.component.open("001", "2026", "00020").outcome, Outcome::kBusy);
    return Answer::No;
  };
  EXPECT_EQ(at.office.hand.click(at.office.ui.Cmd_Supp), "");
  EXPECT_EQ(asked, 1);
  EXPECT_EQ(at.office.component.card_id(), "000100012026");
}

TEST_F(OpenTest, BeforeTheStartAndAfterTheEndThereIsNothingToOpen) {
  store::MemoryDatabase memory;
  load(memory, "lib/cards.play");
  Office office(memory);
  EXPECT_EQ(office.component.open("001", "2026", "00010").outcome, Outcome::kNotStarted);
  office.component.init();
  EXPECT_EQ(office.hand.click(office.ui.Cmd_Sortir), "");
  EXPECT_EQ(office.component.open("001", "2026", "00010").outcome, Outcome::kNotStarted);
}

class ReadOnly : public store::WrappedDatabase {
 public:
  using WrappedDatabase::WrappedDatabase;
  bool read_only() const override { return true; }
};

TEST_F(OpenTest, InADatabaseThatTakesNoWritesCardsAreOpenedForReading) {
  store::MemoryDatabase memory;
  load(memory, "lib/cards.play");
  ReadOnly database(memory);
  Office office(database);
  office.component.init();
  EXPECT_TRUE(office.component.open("001", "2026", "00020").is_open());
  EXPECT_TRUE(office.component.open("001", "2026", "00010").is_open());
  EXPECT_EQ(standing(office.component), "reading 000100012026 00010 MARTIN JEANNE");
  EXPECT_EQ(office.toolkit.messages, Texts());
}

// Another clerk removes it between the look and the opening.
TEST_F(OpenTest, ACardThatGoesOnTheWayIsNotOpen) {
  At at(after(kOpen, {type("Txt_HorMensEtab", "140")}));
  at.office.toolkit.answer = [&](const screen::Message&) {
    at.memory.remove("VELANORO", "000200012026");
    return Answer::Yes;
  };
  const Opening opening = at.office.component.open("001", "2026", "00020");
  EXPECT_EQ(opening.outcome, Outcome::kFailed);
  EXPECT_EQ(opening.why, "La fiche 00020 n'a pas pu être ouverte.");
  EXPECT_EQ(at.office.toolkit.messages, (Texts{kQuestion, "Cet aidant n'existe pas."}));
  EXPECT_EQ(standing(at.office.component), "none");
}

// Whichever call of the store fails: the host hears of it, and a second try succeeds.
TEST_F(OpenTest, AFailureOnTheWayLeavesAScreenThatCanBeLedOn) {
  for (const From& from : everywhere()) {
    bool finished = false;
    for (int n = 1; !finished; ++n) {
      SCOPED_TRACE(std::string(from.name) + ", call " + std::to_string(n));
      ASSERT_LT(n, 200);
      At at(from.acts);
      const Texts before = picture(at.office);
      at.failing.fail_at(n);
      try {
        EXPECT_TRUE(at.office.component.open("001", "2026", "00020").is_open());
        finished = at.failing.failures() == 0;
      } catch (const store::DbError&) {
        const bool open = at.office.component.state() != control::State::kNone;
        EXPECT_EQ(at.office.ui.Cmd_Sortir.enabled(), !open);
      }
      at.failing.fail_at(0);
      EXPECT_TRUE(at.office.component.open("001", "2026", "00020").is_open());
      EXPECT_EQ(standing(at.office.component), "editing 000200012026 00020 DURAND PAUL");
    }
  }
}

}  // namespace
}  // namespace velanor::test
