// Whoever adds a field to the card runs this: it names the places that were forgotten.
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

#include "card/record/amendment_columns.h"
#include "card/record/element.h"
#include "card/record/record_compare.h"
#include "card/record/references.h"
#include "exchange/export_csv.h"
#include "exchange/import_csv.h"
#include "office/card_check.h"
#include "support/office.h"
#include "text/utf8.h"

namespace velanor::test {
namespace {

using card::Field;
using card::Group;

// ---- What stands in attributes.def.

TEST(FieldPlaces, EveryAttributeButThoseOfTheCalculationHasNames) {
  std::set<int> numbers;
  std::set<std::string> names;
  for (const Field& field : card::kAttributes) {
    const std::string row = "src/card/record/attributes.def, number " + std::to_string(field.number);
    const auto is_it = [&](const Field& result) { return result == field; };
    const bool of_calculation =
        field == card::kStatus || std::any_of(card::kResults.begin(), card::kResults.end(), is_it);
    EXPECT_EQ(field.name.empty(), of_calculation) << row << ": the name by which a clerk knows the column";
    EXPECT_EQ(field.noun.empty(), of_calculation) << row << ": the noun with which sentences about it begin";
    EXPECT_TRUE(numbers.insert(field.number).second) << row << ": another attribute has this number";
    EXPECT_TRUE(of_calculation || names.insert(text::upper(field.name)).second)
        << row << ": another attribute is called " << field.name;
    EXPECT_EQ(card::card_field(field.number) != nullptr, !of_calculation)
        << row << ": rows without a name stand behind those with one";
  }
}

TEST(FieldPlaces, EveryNameIsInTheManual) {
  std::ifstream file(VELANOR_TEST_DATA "/../docs/velanorctl.md");
  std::stringstream manual;
  manual << file.rdbuf();
  for (const Field& field : card::card_fields()) {
    const std::string quoted = "`" + std::string(field.name);
    const auto told = [&](const char* numbers) {
      return manual.str().find(quoted + numbers + "`") != std::string::npos;
    };
    EXPECT_TRUE(told("") || told(" 1") || told(" 1.2"))
        << "docs/velanorctl.md does not name the column " << field.name;
  }
}

// ---- The demonstration.

TEST(FieldPlaces, TheDemonstrationHasCardsWithEveryField) {
  store::MemoryDatabase database;
  MemorySink sink(database, Towns::kSome);
  demo::fill(sink, {.employees = 200});
  std::map<int, int> most;
  database.for_each("VELANORO", [&](std::string_view, const store::DbRecord& card) {
    for (const Field& field : card::kAttributes)
      most[field.number] = std::max(most[field.number], card.Count(field.number));
  });
  const auto in = [](const auto& columns, const Field& field) {
    return std::find(columns.begin(), columns.end(), field) != columns.end();
  };
  for (const Field& field : card::card_fields()) {
    EXPECT_GT(most[field.number], 0) << "src/demo/card_record.cpp puts no " << field.name << " on any card";
    const bool column = in(card::kActivityColumns, field) || in(card::kAmendmentAttributes, field);
    EXPECT_EQ(most[field.number] > 1, column)
        << "src/card/record/amendment_columns.h: does a card have several of " << field.name
        << "? Then it is a column of its list, and goes with its lines";
  }
}

// ---- A card with something in every box, entered by hand in the shortest form.

const entry::Clock kToday = [] { return entry::Date{15, 3, 2026}; };

struct Step {
  std::string control, text = {};
};

const std::vector<Step> kCard{
    {"Txt_Asso", "001"},
    {"Cmd_Ajout"},
    {"Txt_NomAidant", "PETIT ZOE"},
    {"Txt_CodEtab", "002"},
    {"Txt_HorMensEtab", "150"},
    {"Txt_ConvCol", "01"},
    {"Txt_Secteur", "007"},
    {"Cbo_Com", "Albi"},
    {"Opt_CDD"},
    {"Opt_Admin"},
    {"Txt_DatDeb", "1/1/2024"},
    {"Txt_DatNais", "1/2/1980"},
    {"Txt_DateBranche", "1/3/2015"},
    {"Cbo_NatureContrat", "02 Apprentissage"},
    {"Cbo_EtudeAidant", "3 CAP, BEP"},
    {"Txt_Profil1", "001"},
    {"Txt_Profil2", "002"},
    {"Txt_HresExo", "50"},
    {"Txt_DatFin", "31/12/27"},
    {"Cbo_MotifFin", "Démission"},
    {"Txt_MutSalContrat", "12,3"},
    {"Txt_MutPatContrat", "43,2"},
    {"Txt_ChargMutContrat", "402"},
    {"Txt_PlafSecu", "3464"},
    {"Txt_AssSS", "2000"},
    // An activity.
    {"Cmd_AjAct"},
    {"Cbo_Activites", "Encadrement"},
    {"Txt_Pourc", "100"},
    {"Cmd_OkAct"},
    // An amendment by a grid and one by a rate, each with its items.
    {"Cmd_AjDetail"},
    {"Txt_DatEffet", "1/1/2024"},
    {"Txt_DatDepGrille", "1/2/2024"},
    {"Cbo_Grille", "Employé degré 1"},
    {"Cbo_Qualif", "AD"},
    {"Cbo_NouvMes", "OUI"},
    {"Txt_DureMens", "120"},
    {"Cmd_OkDetail"},
    {"Cmd_AjDetail"},
    {"Txt_DatEffet", "1/6/2024"},
    {"Txt_DatDepGrille", ""},
    {"Cbo_Qualif", "RS"},
    {"Txt_Categorie", "B"},
    {"Txt_TxHor", "15,25"},
    {"Txt_DureMens", "100"},
    {"Cmd_OkDetail"},
};
const std::vector<Step> kItem{
    {"Cmd_Detail"}, {"Cmd_Ajouter"}, {"Txt_Code", "004"}, {"Txt_Base", "10"}, {"Txt_Taux", "2,5"}, {"Cmd_OK"},
};

class WholeCard : public testing::Test {
 protected:
  static constexpr const char* kId = "999990012026";

  WholeCard() {
    load(database_, "lib/cards.play");
    Office office(database_);
    office.component.init();
    go(office, kCard);
    for (const int line : {0, 1}) {
      EXPECT_EQ(office.hand.pick(office.ui.Lst_DatEffet, line), "");
      go(office, kItem);
      entered_ += lists_of(office.component.screen().top());
      go(office, {{"Cmd_Retour"}});
    }
    before_ = sight(office);
    go(office, {{"Cmd_OK"}});
    EXPECT_TRUE(office.ui.Cmd_Sortir.enabled())
        << "the card was not saved: " << testing::PrintToString(office.toolkit.messages);
    stored_ = database_.find("VELANORO", kId).value_or(store::DbRecord());
  }

  static void go(Office& office, const std::vector<Step>& steps) {
    for (const Step& step : steps) {
      screen::Control& control = office.control(step.control);
      if (auto* combo = dynamic_cast<screen::ComboBox*>(&control)) {
        EXPECT_EQ(office.hand.drop_down(*combo), "") << step.control;
        EXPECT_EQ(office.hand.choose(*combo, combo->find(step.text)), "") << step.control;
      } else if (auto* box = dynamic_cast<screen::TextControl*>(&control)) {
        EXPECT_EQ(office.hand.replace_text(*box, ""), "") << step.control;
        EXPECT_EQ(office.hand.type(*box, step.text), "") << step.control;
        EXPECT_EQ(office.hand.leave(), "") << step.control;
      } else {
        EXPECT_EQ(office.hand.click(control), "") << step.control;
      }
    }
  }
  static std::string lists_of(screen::Form& form) {
    std::string lists;
    for (screen::Control* control : form.controls()) {
      if (auto* list = dynamic_cast<screen::ListBox*>(control)) {
        for (const auto& line : list->items()) lists += line + "|";
      }
    }
    return lists;
  }
  // What the card shows, control by control.
  static std::map<std::string, std::string> sight(Office& office) {
    std::map<std::string, std::string> sight;
    for (const Group group :
         {Group::kNameBox, Group::kEstablishmentBoxes, Group::kContractKey, Group::kEmployee,
          Group::kEndReasonBox, Group::kMutual, Group::kActivityLine, Group::kAmendmentList}) {
      for (screen::Control* control : office.ui.group(group)) {
        if (auto* text = dynamic_cast<screen::TextControl*>(control)) sight[text->name()] = text->text();
        if (auto* option = dynamic_cast<screen::OptionButton*>(control))
          sight[option->name()] = option->value() ? "chosen" : "not chosen";
        if (auto* list = dynamic_cast<screen::ListBox*>(control)) {
          for (const auto& line : list->items()) sight[list->name()] += line + "|";
        }
      }
    }
    return sight;
  }

  store::MemoryDatabase database_;
  std::map<std::string, std::string> before_;
  std::string entered_;  // the lists of the item forms
  store::DbRecord stored_;
};

TEST_F(WholeCard, HasSomethingInEveryBox) {
  for (const auto& [control, text] : before_)
    EXPECT_FALSE(text.empty()) << control
                               << ": tests/card/field_places_test.cpp does not say what a clerk enters there";
  std::set<std::string> entered;
  for (const auto& steps : {kCard, kItem}) {
    for (const Step& step : steps) entered.insert(step.control);
  }
  Office office(database_);
  forms::ItemScreen items;
  const auto expect_entered = [&](const std::vector<screen::Control*>& controls) {
    for (screen::Control* control : controls) {
      if (!dynamic_cast<screen::TextBox*>(control)) continue;
      const bool by_its_item = control->name() == "Txt_Montant";
      EXPECT_TRUE(by_its_item || entered.contains(control->name()))
          << control->name() << ": tests/card/field_places_test.cpp does not say what a clerk enters there";
    }
  };
  expect_entered(office.ui.group(Group::kActivityEntry));
  expect_entered(office.ui.group(Group::kAmendmentEntry));
  expect_entered(items.controls());
}

TEST_F(WholeCard, IsShownAsItWasEntered) {
  Office office(database_);
  office.component.init();
  go(office, {{"Txt_Asso", "001"}, {"Txt_Aidant", "99999"}});
  const auto after = sight(office);
  for (const auto& [control, text] : before_) {
    EXPECT_EQ(after.at(control), text)
        << control
        << " shows something else than was left there: src/card/commands/card_fields.cpp binds what "
        << "may be typed, src/card/commands/card_record.cpp loads and saves the boxes in fields_, "
        << "src/card/record/amendment_columns.h has the columns, src/card/record/draft.cpp what has a label";
  }
  std::string items;
  for (const int line : {0, 1}) {
    EXPECT_EQ(office.hand.pick(office.ui.Lst_DatEffet, line), "");
    go(office, {{"Cmd_Detail"}});
    items += lists_of(office.component.screen().top());
    go(office, {{"Cmd_Retour"}});
  }
  EXPECT_EQ(items, entered_)
      << "src/card/record/amendment_columns.h has the figures of an item in kItemFigures";
}

TEST_F(WholeCard, HasEveryFieldInItsRecord) {
  for (const Field& field : card::card_fields()) {
    EXPECT_FALSE(element(stored_, field).empty())
        << field.name
        << " is not stored: CardRecord::entered in src/card/commands/card_record.cpp saves the boxes, "
        << "src/card/record/draft.cpp the lines; what is in no box, kCard of "
           "tests/card/field_places_test.cpp must enter";
  }
}

TEST_F(WholeCard, FindsItsCodesInTheReferenceFiles) {
  const card::References references(database_);
  for (const Field& field : card::card_fields()) {
    const std::string code(element(stored_, field, 1, 1));
    if (field.list.empty() || code.empty()) continue;
    EXPECT_TRUE(references.has(field.list, code))
        << field.name << " is stored as " << code
        << ": src/card/record/references.cpp does not read the list " << field.list
        << ", or src/card/record/draft.cpp stores its label";
  }
  for (const card::Fault& fault : office::CardCheck(database_, [] {
                                    return entry::Date{15, 3, 2026};
                                  }).faults_of(kId, stored_))
    ADD_FAILURE() << "the check refuses what the screen took: " << fault.sentence();
}

TEST_F(WholeCard, GoesOutByItsNamesAndComesBack) {
  std::stringstream table;
  exchange::export_csv(table, database_, "VELANORO", {.headings = exchange::Headings::kNames});
  const std::string titles = ";" + table.str().substr(0, table.str().find('\n'));
  database_.remove("VELANORO", kId);
  const auto report = exchange::import_csv(table, database_, "VELANORO", {.clock = kToday});
  ASSERT_TRUE(report.faults.empty()) << "the import refuses what the export wrote: "
                                     << report.faults[0].sentence;
  const store::DbRecord back = database_.find("VELANORO", kId).value_or(store::DbRecord());
  for (const Field& field : card::card_fields()) {
    if (element(stored_, field).empty()) continue;
    EXPECT_NE(titles.find(";" + std::string(field.name)), std::string::npos)
        << field.name << " is no column of export --names: name_of in src/exchange/columns.cpp";
    EXPECT_TRUE(card::same_attribute(back, stored_, field.number))
        << field.name << " does not come back: read_field and write_field in src/exchange/columns.cpp";
  }
}

}  // namespace
}  // namespace velanor::test
