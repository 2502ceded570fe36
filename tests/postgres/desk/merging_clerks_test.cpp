// Several clerks at the same cards on one server, each with the whole component on a connection of his own.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <iostream>
#include <map>
#include <random>
#include <set>
#include <thread>

#include "app/velanorctl/open_store.h"
#include "postgres/server.h"
#include "store/notation.h"
#include "support/office.h"
#include "velanor/wrapped_database.h"

namespace velanor::store {
namespace {

constexpr int kClerks = 8, kCards = 10;

bool is_long() { return std::getenv("VELANOR_LONG") != nullptr; }

std::string id_of(int card) { return "0001" + std::to_string(card) + "0012026"; }

// Writes whatever stands there, as if nobody compared.
class Careless : public WrappedDatabase {
 public:
  using WrappedDatabase::WrappedDatabase;
  std::unique_ptr<DbFile> OpenFile(std::string_view name) override {
    return std::make_unique<File>(WrappedDatabase::OpenFile(name));
  }

 private:
  class File : public DbFile {
   public:
    explicit File(std::unique_ptr<DbFile> inner) : inner_(std::move(inner)) {}
    std::optional<DbRecord> find(std::string_view id) override { return inner_->find(id); }
    void write(std::string_view id, const DbRecord& record, const Expected&) override {
      inner_->write(id, record, Expected::anything());
    }
    void remove(std::string_view id, const Expected&) override { inner_->remove(id, Expected::anything()); }

   private:
    std::unique_ptr<DbFile> inner_;
  };
};

// What is typed into one box of a card, and its place in the record.
struct Entry {
  const char* box;
  int attribute;
};
constexpr Entry kEntries[] = {{"Txt_NomAidant", 1}, {"Txt_HorMensEtab", 2}, {"Txt_DatNais", 9}};

std::string typed_into(const Entry& entry, int clerk, int n) {
  const auto two = [](int number) { return std::to_string(100 + number % 100).substr(1); };
  if (entry.attribute == 1) return "NOM " + std::to_string(clerk) + " " + std::to_string(n);
  if (entry.attribute == 2) return std::to_string(10 + n % 90) + "," + two(clerk);
  return two(1 + n % 28) + two(1 + clerk) + "19" + two(60 + n / 28 % 30);
}

class ClerksAtCards : public testing::Test {
 protected:
  void SetUp() override {
    const auto database = open_base(base_);
    test::load(*database, "lib/cards.play");
    const DbRecord card = database->OpenFile("VELANORO")->Read("000100012026");
    for (int n = 0; n < kCards; ++n) database->put("VELANORO", id_of(n), card);
  }
  std::unique_ptr<Database> open(int clerk) {
    app::StoreOptions options;
    options.url = server_.url(base_);
    auto database = app::open_store(options);
    database->history()->set_author("clerk " + std::to_string(clerk));
    return database;
  }
  static void all_at_once(const std::function<void(int clerk)>& work) {
    std::vector<std::thread> threads;
    for (int clerk = 0; clerk < kClerks; ++clerk) threads.emplace_back([&work, clerk] { work(clerk); });
    for (std::thread& thread : threads) thread.join();
  }

  // Opens a card, changes one thing of it and saves; false where the other's change of the same thing stands
  // against it, and the card is given up.
  static bool save_one(test::Office& office, int card, const Entry& entry, const std::string& text) {
    const auto type = [&](const char* name, const std::string& what) {
      auto& box = dynamic_cast<screen::TextControl&>(office.control(name));
      EXPECT_EQ(office.hand.replace_text(box, what), "");
    };
    type("Txt_Aidant", id_of(card).substr(0, 5));
    type(entry.box, text);
    try {
      EXPECT_EQ(office.hand.click(office.ui.Cmd_OK), "");
    } catch (const DbError& error) {
      EXPECT_EQ(error.number(), kConflict) << error.what();
      EXPECT_EQ(office.hand.click(office.ui.Cmd_Annul), "");
      return false;
    }
    return !office.component.card_id().empty() ? ADD_FAILURE() << "the card is still open", false : true;
  }

  // Saves of all clerks; what of them was undone by somebody who never saw it.
  int lost_of(int saves_each, bool careless) {
    std::atomic<int> acknowledged = 0, clashes = 0, merged = 0;
    all_at_once([&](int clerk) {
      const auto store = open(clerk);
      Careless blind(*store);
      test::Office office(careless ? blind : *store);
      office.component.init();
      EXPECT_EQ(office.hand.replace_text(office.ui.Txt_Asso, "001"), "");
      std::mt19937 random(static_cast<unsigned>(clerk));
      for (int n = 0; n < saves_each; ++n) {
        const Entry& entry = kEntries[random() % std::size(kEntries)];
        const int card = static_cast<int>(random() % kCards);
        const bool saved = save_one(office, card, entry, typed_into(entry, clerk, n));
        ++(saved ? acknowledged : clashes);
      }
      for (const std::string& message : office.toolkit.messages)
        merged += message.find("sont réunies") != message.npos ? 1 : 0;
    });
    const int undone = changes_beyond_one();
    std::cout << kClerks << " clerks, " << kCards << " cards" << (careless ? ", nobody compares" : "") << ": "
              << acknowledged << " saves acknowledged, " << merged << " put together, " << clashes
              << " refused as a clash, " << undone << " lost\n";
    merged_ = merged;
    return undone;
  }

  // Each acknowledged save changes one thing: a version that differs in more, or in what another clerk has
  // just typed, has taken something back.
  int changes_beyond_one() {
    const auto database = open_base(base_);
    int beyond = 0;
    for (int card = 0; card < kCards; ++card) {
      const auto versions = database->history()->versions("VELANORO", id_of(card));
      for (std::size_t n = 1; n < versions.size(); ++n) {
        int changed = 0;
        for (const Entry& entry : kEntries)
          changed += (*versions[n].record)(entry.attribute) != (*versions[n - 1].record)(entry.attribute);
        beyond += changed > 1 ? changed - 1 : 0;
      }
    }
    return beyond;
  }

  Server& server_ = Server::instance();
  std::string base_ = server_.new_base();
  int merged_ = 0;
};

TEST_F(ClerksAtCards, LoseNothingAndWhatDoesNotTouchIsPutTogether) {
  EXPECT_EQ(lost_of(is_long() ? 600 : 25, false), 0);
  EXPECT_GT(merged_, 0) << "nobody met anybody";
}

// Else the test above proves nothing.
TEST_F(ClerksAtCards, LoseChangesWhereNobodyCompares) {
  int lost = 0;
  for (int tries = 0; lost == 0 && tries < 10; ++tries) lost = lost_of(25, true);
  EXPECT_GT(lost, 0);
}

TEST_F(ClerksAtCards, WhoDuplicateCardsGetEachCodeOnce) {
  const int each = is_long() ? 200 : 8;
  all_at_once([&](int clerk) {
    const auto store = open(clerk);
    test::Office office(*store);
    office.component.init();
    EXPECT_EQ(office.hand.replace_text(office.ui.Txt_Asso, "001"), "");
    EXPECT_EQ(office.hand.replace_text(office.ui.Txt_Aidant, id_of(clerk).substr(0, 5)), "");
    for (int n = 0; n < each; ++n) EXPECT_EQ(office.hand.click(office.ui.Cmd_Copier), "");
  });
  const auto database = open_base(base_);
  std::set<std::string> codes;
  for (int n = 0; n < kClerks * each; ++n) {
    const std::string id = std::to_string(99999 - n) + "0012026";
    EXPECT_EQ(database->history()->versions("VELANORO", id).size(), 1u) << id << ": written over, or a gap";
    codes.insert(id);
  }
  std::cout << kClerks << " clerks creating cards: " << codes.size() << " codes, each once, without a gap\n";
}

}  // namespace
}  // namespace velanor::store
