// Any text in any column: it comes back as it was given, or is refused, and nothing else changes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <sstream>

#include "app/velanorctl/open_store.h"
#include "demo/demo.h"
#include "exchange/columns.h"
#include "exchange/csv.h"
#include "exchange/export_csv.h"
#include "exchange/import_csv.h"
#include "support/hostile.h"
#include "velanor/memory_database.h"

namespace velanor::exchange {
namespace {

using store::DbRecord, store::MemoryDatabase;

constexpr const char* kId = "000010012026";

class HostileImport : public testing::Test {
 protected:
  // The many towns only take time.
  HostileImport() {
    app::StoreSink sink([this](auto file, auto id, const auto& record) {
      if (file != "COMMUNES") database_.put(file, id, record);
    });
    demo::fill(sink);
    before_ = stored();
  }
  DbRecord stored() { return database_.OpenFile(kCardFile)->Read(kId); }

  // The headings of all columns, by position and by name, of several alike the first.
  std::vector<std::string> headings() {
    std::vector<std::string> found;
    for (const Headings kind : {Headings::kPositions, Headings::kNames}) {
      std::stringstream table;
      export_csv(table, database_, kCardFile, {.headings = kind});
      CsvReader reader(table);
      CsvRow row;
      EXPECT_TRUE(reader.next(row));
      for (const std::string& heading : row.fields) {
        const auto column = column_of(heading, kCardFile);
        if (column->id == IdPart::kNone && column->position.value <= 1 && column->position.subvalue <= 1)
          found.push_back(heading);
      }
    }
    return found;
  }
  // Whether it was taken.
  bool import(const std::string& heading, const std::string& text) {
    std::ostringstream table;
    write_row(table, {"id", heading}, ';');
    write_row(table, {kId, text}, ';');
    std::istringstream in(table.str());
    ImportOptions options;
    options.accept_unknown = true;
    return import_csv(in, database_, kCardFile, options).faults.empty();
  }
  void check(const std::string& heading, const std::string& text) {
    SCOPED_TRACE(heading + " <" + text.substr(0, 60) + ">");
    database_.OpenFile(kCardFile)->write(kId, before_);
    const bool taken = import(heading, text);
    const DbRecord after = stored();
    ++(taken ? taken_ : refused_);
    if (!taken) {
      EXPECT_EQ(after, before_);
      return;
    }
    EXPECT_EQ(DbRecord::from_encoded(after.encoded()), after);
    const auto column = column_of(heading, kCardFile);
    const int attribute = column->position.attribute;
    for (int a = 1; a <= std::max(before_.DCount(), after.DCount()); ++a) {
      const bool result = std::any_of(card::kResults.begin(), card::kResults.end(),
                                      [=](const card::Field& field) { return field.number == a; });
      if (a != attribute && !result) {
        EXPECT_EQ(after(a), before_(a)) << a;
      }
    }
    check_selection(attribute, after);
  }
  // What a plain loop finds.
  void check_selection(int attribute, const DbRecord& record) {
    const std::string value(record(attribute, 1, 1));
    const auto found = database_.Select(
        store::DbQuery("SSELECT VELANORO AVEC " + std::to_string(attribute) + " = " + store::quoted(value),
                       kCardFile, "0")
            .encoded());
    bool is_among = false;
    for (int i = 1; i <= found.DCount(); ++i) {
      const DbRecord other = database_.OpenFile(kCardFile)->Read(found(i));
      bool has = other(attribute).empty() && value.empty();
      for (int v = 1; v <= other.Count(attribute); ++v)
        for (int s = 1; s <= std::max(1, other.Count(attribute, v)); ++s)
          has |= other(attribute, v, s) == value;
      EXPECT_TRUE(has) << found(i);
      is_among |= found(i) == kId;
    }
    EXPECT_TRUE(is_among);
  }

  MemoryDatabase database_;
  DbRecord before_;
  int taken_ = 0, refused_ = 0;
};

TEST_F(HostileImport, OfAnyTextInAnyColumn) {
  const auto all = headings();
  EXPECT_GT(all.size(), 60U);
  for (const std::string& heading : all) {
    for (const std::string& text : test::hostile_texts()) check(heading, text);
  }
  std::mt19937 random(2026);
  const int mixes = std::getenv("VELANOR_LONG") ? 100'000 : 400;
  for (int i = 0; i < mixes; ++i) check(all[random() % all.size()], test::hostile_mix(random));
  std::cout << taken_ << " texts taken, " << refused_ << " refused\n";
  EXPECT_GT(taken_, 0);
  EXPECT_GT(refused_, 0);
}

}  // namespace
}  // namespace velanor::exchange
