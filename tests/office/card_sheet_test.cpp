// What a card says on paper.
#include "office/card_sheet.h"

#include <gtest/gtest.h>

#include "app/velanorctl/open_store.h"
#include "card/record/named_fields.h"

namespace velanor::office {
namespace {

class SheetOfACard : public testing::Test {
 protected:
  CardSheet sheet(const CardName& name) const { return sheet_of(reading_, name, card_); }
  static const SheetGroup& group(const CardSheet& sheet, std::string_view title) {
    for (const SheetGroup& group : sheet.groups) {
      if (group.title == title) return group;
    }
    throw std::logic_error("there is no such group");
  }
  static std::string line(const std::vector<std::string>& cells) {
    std::string all;
    for (const std::string& cell : cells) all += (all.empty() ? "" : " / ") + cell;
    return all;
  }
  static std::string value(const SheetGroup& group, std::string_view label) {
    for (const SheetField& field : group.fields) {
      if (field.label == label) return field.value;
    }
    return "no such field";
  }

  std::unique_ptr<store::Database> database_ = app::open_store({"", true});
  CardReading reading_{*database_};
  store::DbRecord card_ = reading_.file(control::File::kCards).Read("000010012026");
  CardName name_ = name_of_card("000010012026");
};

TEST_F(SheetOfACard, ReadsAsTheScreenWithCodesBesideTheirLabels) {
  const CardSheet all = sheet(name_);
  EXPECT_EQ(all.entity, "001 Aide aux Familles du Val");
  EXPECT_EQ(all.employee, "00001 HUET FABIENNE");
  const SheetGroup& identity = group(all, "Identité et contrat");
  EXPECT_EQ(value(identity, "Type de contrat"), "CDI");
  EXPECT_EQ(value(identity, "Personnel"), "PRODUCTION");
  EXPECT_EQ(value(identity, "Début de contrat"), "26/11/2019");
  EXPECT_EQ(value(identity, "Horaire de l'établissement"), "151,67");
  EXPECT_EQ(value(identity, "Secteur").substr(0, 4), "003 ");
  EXPECT_GT(value(identity, "Établissement").size(), 4U);
  const SheetTable& activities = group(all, "Répartition des activités").tables.at(0);
  EXPECT_EQ(activities.rows.size(), 4U);
  EXPECT_EQ(activities.rows[0][0], "900");
  EXPECT_EQ(activities.rows[0][2], "17,50");
  EXPECT_EQ(line(activities.total), "Total / 100,00");
}

TEST_F(SheetOfACard, HasEveryAmendmentWithItsItemsAndTheYear) {
  const CardSheet all = sheet(name_);
  const auto& tables = group(all, "Profils et avenants").tables;
  EXPECT_EQ(tables.at(0).rows.size(), 2U);
  EXPECT_EQ(tables[0].rows[1].front(), "01/10/2021");
  EXPECT_EQ(tables[0].rows[1].back(), "100,10") << "the hours of the items";
  EXPECT_EQ(tables.at(1).rows.size(), 12U);
  EXPECT_EQ(tables[1].rows[6][0] + " " + tables[1].rows[6][1] + " " + tables[1].rows[6][3],
            "01/10/2021 001 96,64");
  const SheetTable& year = group(all, "Année 2026").tables.at(0);
  EXPECT_EQ(year.rows.size(), 12U);
  EXPECT_EQ(line(year.total), "Année /  /  / 1201,20 / 0,66 / ");
}

TEST_F(SheetOfACard, LeavesOutNoFieldThatAClerkKnows) {
  std::string names;
  for (const SheetGroup& group : sheet(name_).groups) {
    for (const SheetField& field : group.fields) names += "\n" + field.label;
    for (const SheetTable& table : group.tables) {
      for (const auto& column : table.columns) names += "\n" + column.title;
    }
  }
  for (const card::Field& field : card::card_fields()) {
    if (field == card::kName) continue;  // stands above all groups
    EXPECT_NE(names.find("\n" + std::string(field.name)), std::string::npos) << field.name;
  }
}

// Codes whose files have lost them, a year that is none, a card without a code: all that is there is told.
TEST_F(SheetOfACard, LosesNothingOfAnAwkwardCard) {
  card_.set(4, "9Z9");
  card_.set(40, "001999");
  card_.set(6, "?");
  card_.set(30, 2, 1, "ZZZ");
  const CardSheet all = sheet({"", "009", "x"});
  EXPECT_EQ(all.entity, "009");
  EXPECT_EQ(all.employee, "HUET FABIENNE");
  EXPECT_EQ(all.groups.size(), 4U) << "without a year";
  const SheetGroup& identity = group(all, "Identité et contrat");
  EXPECT_EQ(value(identity, "Secteur"), "9Z9");
  EXPECT_EQ(value(identity, "Établissement"), "999");
  EXPECT_EQ(value(identity, "Type de contrat"), "?");
  EXPECT_EQ(group(all, "Profils et avenants").tables[1].rows[6][1], "ZZZ");
}

}  // namespace
}  // namespace velanor::office
