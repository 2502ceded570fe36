// Tables longer than what is read of them at once, and what waits beside the memory.
#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "exchange/card_import.h"
#include "exchange/csv.h"
#include "exchange/import_csv.h"
#include "exchange/judged_texts.h"
#include "exchange/record_builder.h"
#include "exchange/shapes.h"
#include "exchange/spool.h"
#include "store/notation.h"
#include "velanor/memory_database.h"

namespace velanor::exchange {
namespace {

// A stream that cannot go back, such as a pipe.
class OneWay : public std::streambuf {
 public:
  explicit OneWay(std::string text) : text_(std::move(text)) {}

 protected:
  int_type underflow() override {
    if (at_ == text_.size()) return traits_type::eof();
    setg(&text_[at_], &text_[at_], &text_[at_] + 1);
    ++at_;
    return traits_type::to_int_type(*gptr());
  }

 private:
  std::string text_;
  std::size_t at_ = 0;
};

using Table = std::vector<std::vector<std::string>>;

std::string random_field(std::mt19937& random) {
  static const char* const kParts[] = {"",  "a", "12",   "é",  "\"", "\"\"", ";",     "\n",
                                       "=", "'", "\r\n", "\r", " ",  "#",    "l'été", "long enough a text"};
  std::string field;
  for (auto parts = random() % 4; parts > 0; --parts) field += kParts[random() % std::size(kParts)];
  if (random() % 200 == 0) field.append(random() % 3000, 'x');
  return field;
}

Table random_table(std::mt19937& random, std::size_t rows) {
  Table table{{"id", "1", "2"}};
  while (table.size() < rows) {
    table.push_back({"x"});
    for (auto fields = random() % 6; fields > 0; --fields) table.back().push_back(random_field(random));
  }
  return table;
}

Table rows_of(std::istream& in) {
  Table rows;
  CsvReader reader(in);
  for (CsvRowView row; reader.next(row);) {
    EXPECT_EQ(row.fault, "");
    rows.emplace_back(row.fields.begin(), row.fields.end());
  }
  return rows;
}

TEST(Streamed, RowsAreTheSameWhereverAPieceOfTheTableEnds) {
  std::mt19937 random(7);
  const Table table = random_table(random, 40'000);
  std::ostringstream out;
  for (const auto& row : table) write_row(out, row, ';');
  ASSERT_GT(out.str().size(), std::size_t{500'000});
  std::istringstream in(out.str());
  EXPECT_TRUE(rows_of(in) == table);
  OneWay pipe("\xEF\xBB\xBF" + out.str());
  std::istream through(&pipe);
  EXPECT_TRUE(rows_of(through) == table) << "from a stream that cannot go back";
}

// Longer than any piece, with the line that follows it told right.
TEST(Streamed, AFieldMayBeLongerThanAPiece) {
  const std::string lines(300'000, '\n');
  std::istringstream in("id;1\na;\"" + lines + "\"\nb;c\n\"" + lines);
  CsvReader reader(in);
  CsvRow row;
  ASSERT_TRUE(reader.next(row) && reader.next(row));
  EXPECT_TRUE(row.fields.back() == lines);
  ASSERT_TRUE(reader.next(row));
  EXPECT_EQ(row.line, 300'003);
  ASSERT_TRUE(reader.next(row));
  EXPECT_EQ(row.fault, "un guillemet n'est pas refermé");
}

TEST(Streamed, TheEncodingIsKnownByTheWholeTable) {
  std::string table = "id;1\n";
  while (table.size() < 400'000) table += "1;Rene\n";
  const auto line = std::to_string(1 + std::count(table.begin(), table.end(), '\n'));
  const auto last_of = [](const std::string& text) {
    std::istringstream in(text);
    CsvReader reader(in);
    std::string last = std::to_string(reader.fault_line());
    for (CsvRowView row; reader.next(row);) last = row.fields.back();
    return last;
  };
  EXPECT_EQ(last_of(table + "2;Ren\xE9\n"), "René");
  EXPECT_EQ(last_of(table + "2;Ren\x82\n"), line) << "of which nothing is read";
  // A character at every place around the end of a piece.
  for (std::size_t blanks = 0; blanks < 8; ++blanks) {
    std::string text = "id;1\n2;" + std::string((std::size_t{1} << 17) - 12 + blanks, ' ') + "€";
    std::istringstream in(text);
    CsvReader reader(in);
    EXPECT_EQ(reader.fault(), "") << blanks;
    EXPECT_FALSE(reader.was_windows_1252()) << blanks;
  }
}

TEST(Streamed, AnImportFromAPipeIsReadAnewLikeAnyOther) {
  store::MemoryDatabase database;
  OneWay pipe("id;1\n001;Ville\n002;Bourg\n");
  std::istream in(&pipe);
  EXPECT_EQ(import_csv(in, database, "SECTEUR").created.size(), 2U);
  EXPECT_EQ((*database.find("SECTEUR", "002"))(1), "Bourg");
}

TEST(Streamed, WhatIsPutAsideComesBackFewOrMany) {
  std::mt19937 random(3);
  for (const int count : {0, 1, 10, 3000}) {
    SpooledTexts spool;
    std::vector<std::string> texts;
    texts.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) texts.emplace_back(random() % 2000, static_cast<char>(random()));
    for (const std::string& text : texts) spool.add(text);
    for (int times = 0; times < 2; ++times) {
      spool.rewind();
      std::string text;
      std::size_t taken = 0;
      for (; spool.take(text); ++taken) ASSERT_TRUE(text == texts[taken]) << taken << " of " << count;
      EXPECT_EQ(taken, texts.size());
    }
  }
}

TEST(RecordBuilder, MakesWhatSettingTheElementsMakes) {
  std::mt19937 random(11);
  const std::string marked = std::string("a") + store::kAttributeMark + "b", nul(1, '\0');
  const std::string_view texts[] = {"a", "12", "é", "\xFD", marked, nul, "\xC3"};
  RecordBuilder builder;
  for (int times = 0; times < 3000; ++times) {
    store::DbRecord set;
    store::Position at{1 + static_cast<int>(random() % 3), 0, 0};
    for (int elements = static_cast<int>(random() % 8); elements > 0; --elements) {
      const std::string_view text = texts[random() % std::size(texts)];
      builder.add(at, text);
      set_element(set, at, text);
      switch (at.value == 0 ? 0 : random() % 3) {
        case 0:
          at = {at.attribute + 1 + static_cast<int>(random() % 3), static_cast<int>(random() % 3), 0};
          break;
        case 1:
          at = {at.attribute, at.value + 1 + static_cast<int>(random() % 2), static_cast<int>(random() % 2)};
          break;
        default:
          at = at.subvalue == 0
                   ? store::Position{at.attribute, at.value + 1, 1 + static_cast<int>(random() % 2)}
                   : store::Position{at.attribute, at.value, at.subvalue + 1};
      }
    }
    ASSERT_EQ(builder.take(), set) << times;
  }
}

// Every element that has a column is told with it, and what is put together of the columns is the record.
TEST(Shapes, PlaceEveryElementInItsColumn) {
  std::mt19937 random(5);
  for (int times = 0; times < 300; ++times) {
    std::vector<store::DbRecord> records(1 + random() % 5);
    Shapes shapes;
    for (store::DbRecord& record : records) {
      std::string bytes;
      for (auto length = random() % 12; length > 0; --length) bytes += "ab|\xFC\xFD\xFE\xFE"[random() % 7];
      record = store::DbRecord::from_encoded(bytes);
      shapes.take(record.encoded());
    }
    const auto columns = shapes.columns();
    for (const store::DbRecord& record : records) {
      std::vector<std::string> placed(columns.size());
      std::size_t behind = 0;
      shapes.place(record.encoded(), [&](const Placed& element) {
        ASSERT_LT(element.column, columns.size());
        EXPECT_GE(element.column, behind);
        behind = element.column + 1;
        placed[element.column] = element.text;
      });
      std::size_t length = 0;
      for (std::size_t i = 0; i < columns.size(); ++i) {
        EXPECT_EQ(placed[i], element(record, columns[i])) << store::position_text(columns[i]);
        length += placed[i].size();
      }
      const std::string& all = record.encoded();
      EXPECT_EQ(length, static_cast<std::size_t>(
                            std::count_if(all.begin(), all.end(), [](char byte) { return byte > 0; })));
    }
  }
}

TEST(JudgedTexts, KnowsNoTextThatItWasNotTold) {
  std::mt19937 random(9);
  JudgedTexts good;
  std::vector<std::string> texts{"", std::string(1, '\0'), std::string(15, 'a'), std::string(16, 'a')};
  for (int i = 0; i < 5000; ++i)
    texts.push_back(std::to_string(random() % 100'000) + std::string(random() % 3, '\0'));
  EXPECT_FALSE(good.has("1"));
  int known = 0;
  for (const std::string& text : texts) {
    if (random() % 2 == 0) {
      good.add("+" + text);
      known += good.has("+" + text);
    }
    EXPECT_FALSE(good.has(text));
  }
  EXPECT_GT(known, 2000) << "all that is short is known when it has just been told";
}

// What the box of a field has room for goes by the digits of a figure.
TEST(JudgedTexts, AFigureTellsOfThoseWithAsManyDigits) {
  for (const card::Field& field : card::card_fields()) {
    JudgedTexts good = texts_of(field);
    for (const char* text : {"1", "12", "123", "1234", "12345", "123456", "1234567", "12345678", "123456789"})
      if (!card::fault_of(field, text)) good.add(text);
    for (const char* text : {"9", "98", "987", "9876", "98765", "987654", "9876543", "98765432", "987654321",
                             "0", "01", "00001", "-1", "-12345", "1,5", "a", "12a", "1234567890123456"}) {
      EXPECT_FALSE(good.has(text) && card::fault_of(field, text)) << field.name << " " << text;
    }
    EXPECT_EQ(good.has("987"), decimals(field) > 0 && !card::fault_of(field, "987")) << field.name;
  }
}

}  // namespace
}  // namespace velanor::exchange
