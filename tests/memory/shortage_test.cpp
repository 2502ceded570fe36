// What runs out of memory anywhere leaves the old state or the new one, and goes on when there is some again.
#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

#include "card/record/merge.h"
#include "exchange/import_csv.h"
#include "memory/failing_new.h"
#include "store/notation.h"
#include "support/office.h"

namespace velanor::test {
namespace {

using store::DbRecord;
using store::record;

// Each allocation of an act fails in turn. `act` makes its own ground and calls what it is handed for the
// part that is short of memory; what it finds afterwards is its own to judge.
using Part = std::function<void(const std::function<void()>&)>;
void each_shortage(const char* name, const std::function<void(const Part&)>& act) {
  for (const Shortage shortage : {Shortage::kOnce, Shortage::kForGood}) {
    long n = 1;
    for (bool failed = true; failed; ++n) {
      SCOPED_TRACE(std::string(name) + ", allocation " + std::to_string(n));
      failed = false;
      act([&](const std::function<void()>& part) { failed |= short_of_memory(n, shortage, part); });
      if (testing::Test::HasFailure()) return;
    }
    if (shortage == Shortage::kOnce) std::cout << name << ": " << n - 1 << " allocations\n";
  }
}

const std::string kStatement =
    "SSELECT F AVEC 1 = \"[a\" AND AVEC 2 >= \"2\" AND < \"9\" OR AVEC 0 # \"x\" PAR 1 PAR-DECR 2";

TEST(ShortOfMemory, ARecordIsDecodedChangedAndEncoded) {
  const DbRecord before = record("Martin Jeanne of Albi^a|b~c|d^^^a text that is longer than a small one");
  each_shortage("decode and encode", [&](const Part& part) {
    std::string encoded;
    part([&] {
      const DbRecord read = DbRecord::from_encoded(before.encoded());
      for (int a = 1; a <= read.DCount(); ++a) EXPECT_EQ(read(a), before(a));
      DbRecord changed = read;
      changed.set(3, 4, 5, "another text that is longer than a small one");
      encoded = changed.encoded();
    });
    EXPECT_TRUE(encoded.empty() || DbRecord::from_encoded(encoded)(3, 4, 5).starts_with("another"));
  });
  each_shortage("change", [&](const Part& part) {
    DbRecord changed = before;
    part([&] { changed.set(2, 1, 2, "another text that is longer than a small one"); });
    EXPECT_TRUE(changed == before || changed(2, 1, 2).starts_with("another"));
    EXPECT_EQ(changed(1), before(1));
    changed.set(2, 1, 2, "C");
    EXPECT_EQ(store::shown(changed),
              "Martin Jeanne of Albi^a~C|b~c|d^^^a text that is longer than a small one");
  });
}

TEST(ShortOfMemory, ASelectionIsAnsweredRightAfterOneThatWasNot) {
  const std::string request = store::DbQuery(kStatement, "F", "0 1 2").encoded();
  const auto fill = [](store::MemoryDatabase& database) {
    for (int i = 0; i < 40; ++i)
      database.put("F", std::to_string(i),
                   record("a long enough text " + std::to_string(i % 7) + "a^" + std::to_string(i % 11)));
  };
  const auto shown = [&](store::MemoryDatabase& database) {
    const store::DbResult result = database.Select(request);
    std::string text;
    for (int i = 1; i <= result.DCount(); ++i) text += std::string(result(i)) + "\n";
    return text;
  };
  store::MemoryDatabase plenty;
  fill(plenty);
  const std::string before = shown(plenty);
  plenty.put("F", "3", record("changed^5"));
  const std::string after = shown(plenty);
  ASSERT_NE(before, after);
  each_shortage("selection", [&](const Part& part) {
    store::MemoryDatabase database;
    fill(database);
    part([&] { shown(database); });
    EXPECT_EQ(shown(database), before);
    part([&] { database.put("F", "3", record("changed^5")); });
    EXPECT_EQ(shown(database), (*database.find("F", "3"))(1) == "changed" ? after : before);
    database.put("F", "3", record("changed^5"));
    EXPECT_EQ(shown(database), after);
  });
}

TEST(ShortOfMemory, AnImportWritesAllOrNothing) {
  each_shortage("import", [&](const Part& part) {
    store::MemoryDatabase database;
    database.put("SECTEUR", "001", record("Ville"));
    part([&] {
      std::istringstream table(
          "id;1;2\n001;Bourg-en-Bresse et alentours;b\n002;Lac;\n003;Mer et Montagne;a|b|c\n");
      exchange::import_csv(table, database, "SECTEUR");
    });
    const auto first = database.find("SECTEUR", "001"), last = database.find("SECTEUR", "003");
    EXPECT_EQ((*first)(1) == "Ville", !last);
    EXPECT_EQ(database.find("SECTEUR", "002").has_value(), last.has_value());
  });
}

TEST(ShortOfMemory, TwoClerksCardsArePutTogetherOrNot) {
  store::MemoryDatabase database;
  load(database, "lib/cards.play");
  control::Procedure procedure(database);
  procedure.OuvrirFichiers();
  const auto entry = entry::make_util_saisie();
  const card::Reading reading{card::Codec(*entry), card::Labels(procedure)};
  const DbRecord before = *database.find("VELANORO", "000100012026");
  DbRecord theirs = before, mine = before;
  theirs.set(5, "Évreux");
  theirs.set(17, 1, "12345");
  mine.set(17, 1, "12400");
  mine.set(17, 2, "13000");
  const auto merged = [&](const card::Side side) {
    const card::Merge merge(card::Draft(reading, before), card::Draft(reading, theirs),
                            card::Draft(reading, mine));
    return merge.merged(std::vector<card::Side>(merge.clashes().size(), side));
  };
  const DbRecord whole = merged(card::Side::kMine);
  each_shortage("merge", [&](const Part& part) {
    std::optional<DbRecord> result;
    part([&] { result = merged(card::Side::kMine); });
    EXPECT_TRUE(!result || *result == whole);
  });
}

// The card on the screen: saved or not, and the clerk can save it then.
TEST(ShortOfMemory, ACardIsSavedOrStaysOnTheScreen) {
  each_shortage("save", [&](const Part& part) {
    store::MemoryDatabase memory;
    load(memory, "lib/cards.play");
    Office office(memory);
    office.component.init();
    ASSERT_EQ(office.hand.type(office.ui.Txt_Asso, "001"), "");
    ASSERT_EQ(office.hand.type(office.ui.Txt_Aidant, "00010"), "");
    ASSERT_EQ(office.hand.replace_text(office.ui.Txt_HorMensEtab, "140"), "");
    ASSERT_EQ(office.hand.leave(), "");
    const auto stored = [&] { return (*memory.find("VELANORO", "000100012026"))(2) == "14000"; };
    std::string told;
    part([&] {
      try {
        (void)office.hand.click(office.ui.Cmd_OK);
      } catch (const store::DbError& error) {
        told = error.what();
      }
    });
    if (!told.empty()) {
      EXPECT_EQ(told.starts_with("La fiche est enregistrée."), stored()) << told;
    }
    EXPECT_EQ(office.toolkit.hourglasses, 0);
    if (office.component.state() == control::State::kEditing) {
      EXPECT_EQ(office.hand.click(office.ui.Cmd_OK), "");
    }
    EXPECT_TRUE(stored());
    EXPECT_EQ(office.component.state(), control::State::kNone);
    EXPECT_EQ(office.hand.replace_text(office.ui.Txt_Aidant, ""), "");
    EXPECT_EQ(office.hand.type(office.ui.Txt_Aidant, "00020"), "");
    EXPECT_EQ(office.component.card_id(), "000200012026");
  });
}

}  // namespace
}  // namespace velanor::test
