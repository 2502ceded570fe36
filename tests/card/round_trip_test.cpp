// A card that is opened and saved untouched is the card that was read.
#include <gtest/gtest.h>

#include "card/record/element.h"
#include "card/record/record_compare.h"
#include "support/office.h"

namespace velanor::test {
namespace {

std::vector<std::string> card_ids(store::MemoryDatabase& database) {
  std::vector<std::string> ids;
  database.for_each("VELANORO", [&](std::string_view id, const store::DbRecord&) { ids.emplace_back(id); });
  return ids;
}

std::string differences(const store::DbRecord& before, const store::DbRecord& after) {
  std::string text;
  for (int a = 1; a <= std::max(before.DCount(), after.DCount()); ++a) {
    if (!card::same_attribute(before, after, a))
      text += std::to_string(a) + ": <" + std::string(before(a)) + "> <" + std::string(after(a)) + "> ";
  }
  return text;
}

// Opens the card of an id and saves it; the messages that came are its answer.
std::vector<std::string> save_untouched(Office& office, const std::string& id) {
  office.toolkit.messages.clear();
  if (office.ui.Txt_Asso.text() != id.substr(5, 3)) {
    EXPECT_EQ(office.hand.replace_text(office.ui.Txt_Asso, ""), "");
    EXPECT_EQ(office.hand.type(office.ui.Txt_Asso, id.substr(5, 3)), "");
  }
  EXPECT_EQ(office.hand.type(office.ui.Txt_Aidant, id.substr(0, 5)), "");
  EXPECT_EQ(office.hand.click(office.ui.Cmd_OK), "");
  return office.toolkit.messages;
}

TEST(RoundTrip, TenThousandGeneratedCardsComeBackAsTheyWere) {
  store::MemoryDatabase database;
  MemorySink sink(database, Towns::kSome);
  demo::fill(sink, {.entities = 40, .employees = 10'000, .years = {2026}, .staffing = demo::Staffing::kEven});
  const auto ids = card_ids(database);
  ASSERT_GE(ids.size(), 10'000U);
  Office office(database);
  office.component.init();
  for (const std::string& id : ids) {
    const store::DbRecord before = *database.find("VELANORO", id);
    ASSERT_EQ(save_untouched(office, id), std::vector<std::string>{}) << id;
    ASSERT_EQ(office.component.screen().base().focus(), &office.ui.Txt_Aidant) << id;
    ASSERT_EQ(differences(before, *database.find("VELANORO", id)), "") << id;
  }
}

// What has left its reference file, and what no box of the screen could have taken.
TEST(RoundTrip, UnknownCodesAndOversizedValuesAreKept) {
  const std::string id = "000100012026";
  const struct {
    const char* what;
    std::vector<std::tuple<card::Field, int, const char*>> elements;
  } cases[] = {
      {"a town", {{card::kTown, store::kWhole, "Atlantide"}}},
      {"an activity", {{card::kActivity, 1, "001999"}}},
      {"the same activity twice", {{card::kActivity, 2, "001010"}}},
      {"an end reason",
       {{card::kContractEnd, store::kWhole, "22000"}, {card::kEndReason, store::kWhole, "77"}}},
      {"an end reason that is listed no more",
       {{card::kContractEnd, store::kWhole, "22000"}, {card::kEndReason, store::kWhole, "03"}}},
      {"a nature", {{card::kContractNature, store::kWhole, "88"}}},
      {"a nature that is offered no more", {{card::kContractNature, store::kWhole, "03"}}},
      {"a diploma", {{card::kEducation, store::kWhole, "9"}}},
      {"a grid", {{card::kGrid, 1, "01999"}}},
      {"an agreement", {{card::kAgreement, store::kWhole, "55"}}},
      {"the reserved agreement", {{card::kAgreement, store::kWhole, "02"}}},
      {"a sector", {{card::kSector, store::kWhole, "555"}}},
      {"a profile of a mandate",
       {{card::kProfile1, store::kWhole, "003"}, {card::kProfile2, store::kWhole, "999"}}},
      {"a charge item", {{card::kMutualCharge, store::kWhole, "999"}}},
      {"a ceiling too long for its box", {{card::kCeiling, store::kWhole, "1234567890"}}},
      {"figures that are no numbers",
       {{card::kSocialBase, store::kWhole, "abc"}, {card::kHourlyRate, 2, "x1"}}},
      {"dates that are no day numbers",
       {{card::kBirth, store::kWhole, "hier"}, {card::kGridStart, 2, "99999999"}}},
      {"shares with leading zeros", {{card::kShare, 1, "06667"}}},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.what);
    store::MemoryDatabase database;
    load(database, "lib/cards.play");
    store::DbRecord before = *database.find("VELANORO", id);
    for (const auto& [field, value, text] : test.elements) {
      value == store::kWhole ? set_element(before, field, text) : set_element(before, field, value, text);
    }
    database.put("VELANORO", id, before);
    Office office(database);
    office.component.init();
    EXPECT_EQ(save_untouched(office, id), std::vector<std::string>{});
    EXPECT_EQ(differences(before, *database.find("VELANORO", id)), "");
  }
}

// The rules of saving that do change an untouched card: the name goes to upper case, a flag is
// written out, production staff have no monthly time, a reason needs an end, lists end at the
// first empty value.
TEST(RoundTrip, WhatSavingAltersByRule) {
  store::MemoryDatabase database;
  load(database, "lib/cards.play");
  const std::string id = "000100012026";
  store::DbRecord card = *database.find("VELANORO", id);
  set_element(card, card::kName, "Martin Élodie");
  set_element(card, card::kNewMeasure, 2, "");
  set_element(card, card::kMonthlyTime, 1, "10000");
  set_element(card, card::kEndReason, "01");
  set_element(card, card::kActivity, 4, "001030");
  set_element(card, card::kShare, 4, "5000");
  database.put("VELANORO", id, card);
  Office office(database);
  office.component.init();
  EXPECT_EQ(save_untouched(office, id), std::vector<std::string>{});
  const store::DbRecord after = *database.find("VELANORO", id);
  EXPECT_EQ(element(after, card::kName), "MARTIN ÉLODIE");
  EXPECT_EQ(element(after, card::kNewMeasure, 2), "N");
  EXPECT_EQ(element(after, card::kMonthlyTime), "");
  EXPECT_EQ(element(after, card::kEndReason), "");
  EXPECT_EQ(after.Count(card::kActivity.number), 2);
  EXPECT_EQ(after.Count(card::kShare.number), 2);
}

}  // namespace
}  // namespace velanor::test
