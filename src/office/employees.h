// The cards of an entity and year, or of all of them, as a table that is searched and sorted.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "office/card_check.h"
#include "office/card_reading.h"
#include "velanor/database.h"

namespace velanor::office {

enum class Column {
  kCode,
  kName,
  kEstablishment,
  kSector,
  kAgreement,
  kContract,
  kStart,
  kEnd,
  kStaff,
  kHours,
  kFullTime,
  kAmendments,
  kState,
  kEntity,
  kYear,
};
inline constexpr std::size_t kColumns = 15;
constexpr std::size_t index_of(Column column) { return static_cast<std::size_t>(column); }

enum class Kind { kText, kDate, kNumber };
struct ColumnTitle {
  std::string_view title;
  Kind kind = Kind::kText;
  int decimals = 0;
};
// In the order of `Column`.
inline constexpr std::array<ColumnTitle, kColumns> kTitles{{
    {"Code"},
    {"Nom"},
    {"Établissement"},
    {"Secteur"},
    {"Convention"},
    {"Contrat"},
    {"Début", Kind::kDate},
    {"Fin", Kind::kDate},
    {"Personnel"},
    {"Heures", Kind::kNumber, 2},
    {"ETP", Kind::kNumber, 2},
    {"Avenants", Kind::kNumber},
    {"État", Kind::kNumber},
    {"Entité"},
    {"Année", Kind::kNumber},
}};

// By its title, or a beginning that no other has; two characters at least. Nothing for any other text.
std::optional<Column> column_named(std::string_view typed);

// The different texts of a column, each once: what is searched and compared is worked out once a text.
class Texts {
 public:
  struct Text {
    std::string shown, folded;
    std::int64_t value = 0;  // of a date its day number, of a figure the figure in its decimals
    bool has_value = false;
  };
  // The number of the text, which it keeps.
  std::uint32_t add(std::string_view shown, std::optional<std::int64_t> value = {});
  const Text& operator[](std::uint32_t number) const { return texts_[number]; }
  std::uint32_t size() const { return static_cast<std::uint32_t>(texts_.size()); }
  // The places of the texts in their order: names as French dictionaries have them, dates and figures by
  // value. What has no value stands behind all others (kLast).
  static constexpr std::uint32_t kLast = UINT32_MAX;
  std::vector<std::uint32_t> places(Kind kind) const;

 private:
  std::deque<Text> texts_;
  std::unordered_map<std::string_view, std::uint32_t> numbers_;
};

struct Sorting {
  Column column = Column::kName;
  bool descending = false;
  friend bool operator==(const Sorting&, const Sorting&) = default;
};

// Two readings: `read` takes all cards in one selection; `examine` then looks at them one by one for what
// takes the whole card, the hours in force and its faults, some at a time. Rows are numbered from 0, until
// the next `read` or `renew`. Throws store::DbError where the store fails. The database must outlive it.
class Employees {
 public:
  // The cards of an entity and year; of all where there is no entity.
  struct Reach {
    std::string entity, year;
    bool is_all() const { return entity.empty(); }
    friend bool operator==(const Reach&, const Reach&) = default;
  };

  explicit Employees(store::Database& database, const entry::Clock& clock = entry::system_clock());

  // False, and nothing done, where the store answers as it did the last time.
  bool read(const Reach& reach);
  // The same in steps: `begin` asks the store, `read_on` makes of its answer at most so many rows and needs
  // the store no more; false when none is left. Meanwhile there are the rows made so far.
  bool begin(const Reach& reach);
  bool read_on(int most);
  // The part of the rows that are made, from 0 to 1.
  double part_read() const;
  // Reads one card anew, that was written or deleted; false where it is none of these. Not between `begin`
  // and the end of `read_on`.
  bool renew(std::string_view id);
  // The next cards, at most so many; false when none is left. A damaged card is told as such.
  bool examine(int most);

  double part_examined() const;

  const Reach& reach() const { return reach_; }
  int today() const { return today_; }
  int count() const { return static_cast<int>(rows_.size()); }
  const std::string& id(int row) const { return rows_[static_cast<std::size_t>(row)].id; }
  const Texts::Text& at(int row, Column column) const { return texts(column)[number(row, column)]; }
  std::uint32_t number(int row, Column column) const {
    return rows_[static_cast<std::size_t>(row)].numbers[index_of(column)];
  }
  const Texts& texts(Column column) const { return texts_[index_of(column)]; }

  // All rows; those that are alike there by name. What is empty comes last, in both directions.
  std::vector<int> sorted(const Sorting& sorting) const;

 private:
  struct Row {
    std::string id;
    std::array<std::uint32_t, kColumns> numbers{};
  };
  using Labels = std::unordered_map<std::string, std::string>;

  store::DbResult select(std::string_view criterion) const;
  void read_labels();
  Row row_of(const store::DbResult& found, int record);
  void put(Row& row, Column column, std::string_view shown) {
    row.numbers[index_of(column)] = texts_[index_of(column)].add(shown);
  }
  void put_number(Row& row, Column column, std::int64_t value);
  void put_date(Row& row, Column column, std::string_view stored);
  void examine(Row& row);
  void put_hours(Row& row, const store::DbRecord& card);
  void put_faults(Row& row, int faults);

  store::Database& database_;
  entry::Clock clock_;
  int today_;
  CardReading reading_;
  std::unique_ptr<CardCheck> check_;
  Labels establishments_, sectors_, agreements_;
  Reach reach_;
  store::DbResult read_;
  bool has_read_ = false;
  int next_ = 1;              // record of what was found that is no row yet
  std::size_t examined_ = 0;  // rows before it
  std::vector<Row> rows_;
  std::array<Texts, kColumns> texts_;
};

}  // namespace velanor::office
