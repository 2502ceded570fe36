#include "velanor/memory_database.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>

#include "store/arena.h"
#include "store/contract.h"
#include "store/memory_backend.h"
#include "store/memory_file.h"
#include "store/notation.h"
#include "store/select/key_table.h"
#include "support/failing_database.h"

namespace velanor::store {
namespace {

// Offers no narrowing and no order: the engine must not lean on either.
class ContraryBackend : public MemoryBackend {
 public:
  void scan(std::string_view file, const Narrowing&, Content, const Visit& visit) override {
    std::vector<std::pair<std::string, std::string>> rows;
    MemoryBackend::scan(file, {}, Content::kRecords,
                        [&](const Row& row) { rows.emplace_back(row.id, row.encoded); });
    std::reverse(rows.begin(), rows.end());
    for (const auto& [id, text] : rows) visit({id, text});
  }
};

std::unique_ptr<Database> contrary_database() {
  return std::make_unique<StoreDatabase>(std::make_unique<ContraryBackend>());
}

INSTANTIATE_TEST_SUITE_P(Memory, StoreContract,
                         testing::Values(StoreFactory{"Memory",
                                                      [] { return std::make_unique<MemoryDatabase>(); }},
                                         StoreFactory{"Contrary", contrary_database}),
                         [](const auto& factory) { return factory.param.name; });

TEST(MemoryDatabase, ListsItsFilesAndWalksThemInOrderOfIds) {
  MemoryDatabase database;
  for (const char* id : {"3", "1", "2"}) database.put("SECTEUR", id, record(std::string("Secteur ") + id));
  database.put("PROFIL", "1", record("x"));
  database.remove("PROFIL", "1");
  EXPECT_EQ(database.files(), std::vector<std::string>{"SECTEUR"});
  std::string walked;
  database.for_each("SECTEUR", [&](std::string_view id, const DbRecord& found) {
    walked += std::string(id) + "=" + shown(found) + " ";
  });
  EXPECT_EQ(walked, "1=Secteur 1 2=Secteur 2 3=Secteur 3 ");
  database.for_each("ABSENT", [](std::string_view, const DbRecord&) { ADD_FAILURE(); });
}

// Short ids, ids that are told apart only by their middle, and long ones.
std::string id_of(unsigned number) {
  std::string digits = std::to_string(number);
  if (number % 4 == 1) return "card " + digits + " of some year";
  if (number % 4 == 2) return "a very long id, " + digits + ", and some more behind it, ending in " + digits;
  return digits;
}

// Every way into a file must show the same records, whatever was written before.
TEST(MemoryFile, AgreesWithAPlainMapThroughRandomWrites) {
  std::mt19937 random(7);
  MemoryFile file;
  std::map<std::string, std::string> plain;
  const auto scanned = [&](Narrowing::Kind kind, const std::string& text) {
    std::map<std::string, std::string> found;
    file.scan({kind, text}, Content::kRecords, [&](const Row& row) {
      const std::string id(row.id);
      const bool admitted = kind == Narrowing::Kind::kId         ? id == text
                            : kind == Narrowing::Kind::kIdPrefix ? id.starts_with(text)
                                                                 : id.ends_with(text);
      EXPECT_TRUE(!admitted || found.emplace(id, row.encoded).second) << "visited twice";
    });
    return found;
  };
  const auto expected = [&](auto admits) {
    std::map<std::string, std::string> found;
    for (const auto& [id, text] : plain) {
      if (admits(id)) found.emplace(id, text);
    }
    return found;
  };
  for (int step = 0; step < 60'000; ++step) {
    const std::string id = id_of(random() % 4000);
    if (random() % 3 == 0) {
      file.erase(id);
      plain.erase(id);
    } else {
      const std::string text(random() % 300, static_cast<char>('a' + random() % 26));
      file.put(id, text);
      plain[id] = text;
    }
    if (step % 3000 != 0) continue;
    ASSERT_EQ(file.size(), plain.size());
    ASSERT_EQ(scanned(Narrowing::Kind::kNone, ""), plain);
    std::set<std::string> ids;
    file.scan({}, Content::kIdsOnly, [&](const Row& row) { ids.emplace(row.id); });
    ASSERT_EQ(ids.size(), plain.size());
    ASSERT_TRUE(std::equal(ids.begin(), ids.end(), plain.begin(),
                           [](const std::string& told, const auto& known) { return told == known.first; }));
    for (const std::string text : {"7", "12", "999", "3999", "card", "ending in 3", "a very long id, 12"}) {
      ASSERT_EQ(scanned(Narrowing::Kind::kId, text), expected([&](auto& known) { return known == text; }));
      ASSERT_EQ(scanned(Narrowing::Kind::kIdPrefix, text),
                expected([&](auto& known) { return known.starts_with(text); }));
      ASSERT_EQ(scanned(Narrowing::Kind::kIdSuffix, text),
                expected([&](auto& known) { return known.ends_with(text); }));
    }
  }
}

// What was changed since any moment, against the states that a map was in.
TEST(MemoryFile, TellsWhatHasChangedSinceAsFarBackAsItRemembers) {
  constexpr std::size_t kRemembered = RevisionLog::kRevisions;
  std::mt19937 random(11);
  MemoryFile file;
  std::map<std::string, std::string> plain;
  std::map<std::uint64_t, std::map<std::string, std::string>> states{{0, {}}};
  for (int step = 0; step < 5000; ++step) {
    const std::string id = std::to_string(random() % 300);
    if (random() % 3 == 0) {
      file.erase(id);
      plain.erase(id);
    } else {
      file.put(id, plain[id] = std::to_string(step));
    }
    if (step % 97 == 0) states[file.revision()] = plain;
    if (step % 499 != 0) continue;
    for (const auto& [seen, then] : states) {
      auto followed = then;
      std::map<std::string, int> visits;
      const auto told = file.changes_since(seen, [&](const ChangedRow& change) {
        const std::string changed(change.id);
        EXPECT_EQ(++visits[changed], 1) << changed;
        if (change.encoded) {
          followed[changed] = *change.encoded;
        } else {
          followed.erase(changed);
        }
      });
      ASSERT_EQ(told.has_value(), file.revision() - seen <= kRemembered) << seen;
      if (!told) {
        EXPECT_TRUE(visits.empty());
        continue;
      }
      EXPECT_EQ(*told, file.revision());
      EXPECT_EQ(followed, plain) << "since " << seen;
      EXPECT_LE(visits.size(), file.revision() - seen);
    }
  }
  EXPECT_EQ(file.changes_since(file.revision() + 1, [](const ChangedRow&) { ADD_FAILURE(); }), std::nullopt);
}

TEST(MemoryBackend, TellsOfAChangeThatWasUndone) {
  MemoryBackend backend;
  EXPECT_EQ(backend.changes_since("SECTEUR", 0, [](const ChangedRow&) { ADD_FAILURE(); }), 0u);
  EXPECT_EQ(backend.changes_since("SECTEUR", 1, [](const ChangedRow&) { ADD_FAILURE(); }), std::nullopt);
  backend.put("SECTEUR", "1", record("Aide"), Expected::anything());
  const std::uint64_t seen = backend.revision("SECTEUR");
  EXPECT_THROW(backend.in_one_change([&] {
    backend.put("SECTEUR", "1", record("Soins"), Expected::anything());
    backend.put("SECTEUR", "2", record("Jardin"), Expected::anything());
    throw DbError(kStoreFailure, "?");
  }),
               DbError);
  std::map<std::string, std::string> changes;
  const auto now = backend.changes_since("SECTEUR", seen, [&](const ChangedRow& change) {
    changes[std::string(change.id)] = change.encoded.value_or("gone");
  });
  EXPECT_EQ(now, backend.revision("SECTEUR"));
  EXPECT_EQ(changes, (std::map<std::string, std::string>{{"1", "Aide"}, {"2", "gone"}}));
}

// An owner of strings in an arena, with a copy of each; tidies a little with each change, as its users do.
class Strings {
 public:
  explicit Strings(std::size_t count) : texts_(count), places_(count) {}

  void store(std::size_t i, std::string text) {
    if (places_[i] == 0) {
      places_[i] = arena_.allocate(static_cast<std::uint32_t>(i), text.size());
    } else if (!arena_.resize(places_[i], text.size())) {
      arena_.release(places_[i]);
      places_[i] = arena_.allocate(static_cast<std::uint32_t>(i), text.size());
    }
    std::copy(text.begin(), text.end(), arena_.bytes(places_[i]));
    stored_ += text.size() - texts_[i].size();
    texts_[i] = std::move(text);
    tidy();
  }
  void release(std::size_t i) {
    if (places_[i] != 0) arena_.release(places_[i]);
    places_[i] = 0;
    stored_ -= texts_[i].size();
    texts_[i].clear();
    tidy();
  }
  void expect_all() const {
    for (std::size_t i = 0; i < texts_.size(); ++i) {
      if (places_[i] == 0) continue;
      ASSERT_EQ(std::string_view(arena_.bytes(places_[i]), arena_.size(places_[i])), texts_[i]) << i;
    }
  }
  // Of each byte, where each string costs some bytes more.
  double memory_of_each_byte() const {
    const auto strings =
        texts_.size() - static_cast<std::size_t>(std::count(places_.begin(), places_.end(), 0u));
    return static_cast<double>(arena_.allocated()) / static_cast<double>(stored_ + 16 * strings);
  }
  std::size_t allocated() const { return arena_.allocated(); }

 private:
  void tidy() {
    for (int moves = 0; moves < 6; ++moves) {
      const auto moved = arena_.move_one();
      if (!moved) return;
      places_[moved->owner] = moved->place;
    }
  }

  Arena arena_;
  std::vector<std::string> texts_;
  std::vector<Arena::Place> places_;
  std::size_t stored_ = 0;
};

TEST(Arena, StaysNearWhatIsStoredWhateverIsRewritten) {
  constexpr std::size_t kStrings = 6000;
  std::mt19937 random(3);
  Strings strings(kStrings);
  // Sizes of cards, with longer strings among them, and strings of any size from none on.
  const std::function<std::size_t()> kSizes[] = {
      [&] { return random() % 500 == 0 ? 200'000 : 900 + random() % 300; },
      [&] { return random() % (std::size_t{1} << random() % 13); },
      [&] { return random() % 1000 == 0 ? 3'000'000 : random() % 100; },
  };
  for (const auto& size : kSizes) {
    for (int step = 0; step < 60'000; ++step) {
      const std::size_t i = random() % kStrings;
      if (random() % 10 == 0) {
        strings.release(i);
      } else {
        strings.store(i, std::string(size(), static_cast<char>('a' + step % 26)));
      }
      if (step % 10'000 == 0) strings.expect_all();
    }
    strings.expect_all();
    EXPECT_LT(strings.memory_of_each_byte(), 1.25);
  }
}

TEST(Arena, StaysNearWhatIsStoredWhenEachTextGrowsTwice) {
  Strings strings(6000);
  for (std::size_t i = 0; i < 6000; ++i) {
    for (const std::size_t size : {1000u, 1010u, 1020u}) strings.store(i, std::string(size, 'x'));
  }
  EXPECT_LT(strings.memory_of_each_byte(), 1.1);
}

TEST(Arena, GivesBackWhatIsNotNeededAnyMore) {
  Strings strings(6000);
  for (std::size_t i = 0; i < 6000; ++i) strings.store(i, std::string(1000 + i % 100, 'x'));
  for (std::size_t i = 0; i < 6000; ++i) {
    if (i % 10 != 0) strings.release(i);
  }
  strings.expect_all();
  EXPECT_LT(strings.memory_of_each_byte(), 1.25);
  for (std::size_t i = 0; i < 6000; ++i) strings.release(i);
  EXPECT_LT(strings.allocated(), 16'384u);
}

TEST(KeyTable, NumbersEveryKeyOnceHoweverMany) {
  select::KeyTable table;
  for (int round = 0; round < 2; ++round) {
    for (std::uint32_t i = 0; i < 300'000; ++i) ASSERT_EQ(table.number_of("key " + std::to_string(i)), i);
  }
}

TEST(FailingDatabase, FailsOnceAtThePlannedCallAndChangesNothing) {
  MemoryDatabase inner;
  inner.put("SECTEUR", "1", record("Aide"));
  for (int call = 1; call <= 5; ++call) {
    SCOPED_TRACE(call);
    FailingDatabase database(inner);
    database.fail_at(call);
    const auto work = [&] {
      const auto file = database.OpenFile("SECTEUR");
      file->Read("1");
      database.Select(DbQuery("SSELECT SECTEUR", "SECTEUR", "0").encoded());
      file->Record("2").DBWrite();
      file->DeleteRecord("2");
    };
    EXPECT_THROW(work(), DbError);
    EXPECT_EQ(database.calls(), call);
    EXPECT_EQ(inner.find("SECTEUR", "2").has_value(), call == 5);
    EXPECT_NO_THROW(work());
  }
}

}  // namespace
}  // namespace velanor::store
