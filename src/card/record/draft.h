// A card as a value: its record, and what is done to it field by field and line by line.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "card/record/amendment_columns.h"
#include "card/record/codec.h"
#include "card/record/labels.h"
#include "card/record/record_compare.h"
#include "velanor/record.h"

namespace velanor::card {

// How stored elements are read: dates and figures by the codec, codes by their labels.
struct Reading {
  Codec codec;
  Labels labels;
};

// An amendment as its columns show it, and the id of its grid, whose label may be another's too.
struct AmendmentText {
  std::array<std::string, kAmendmentColumns.size()> shown;
  std::string grid;
};

struct ActivityText {
  std::string code, label, share;
};

// One payroll item: its code, its label, and its figures, each as it is shown beside what is stored.
struct ItemText {
  struct Figure {
    std::string shown, stored;
  };
  std::string code, label;
  std::array<Figure, kItemFigures.size()> figures;  // base, rate, amount
};

// Lines count from 0 and end where the screen stops reading: at the first empty effective date,
// activity or item code. What an operation is handed as shown is stored by its encoding, unless it reads
// as before: then what was stored stays, whatever it is. Copies share nothing and cost about the bytes of
// the record. Throws store::DbError only where a label is asked for.
class Draft {
 public:
  // The reading outlives every copy.
  explicit Draft(const Reading& reading, store::DbRecord record = {})
      : reading_(&reading), record_(std::move(record)) {}

  const store::DbRecord& record() const { return record_; }
  const Reading& reading() const { return *reading_; }
  friend bool operator==(const Draft& a, const Draft& b) { return a.record_ == b.record_; }

  // ---- Fields, as their boxes and columns show them: what has a label by its label.
  std::string shown(const Field& field, int value = store::kWhole) const;
  void put(const Field& field, std::string_view text);
  void put(const Field& field, int value, std::string_view text);
  void put_stored(const Field& field, std::string_view stored) { set_element(record_, field, stored); }

  // ---- Activities.
  int activities() const { return lines_of(record_, kActivity); }
  ActivityText activity(int line) const;
  std::vector<ActivityText> all_activities() const;
  void add_activity(std::string_view code, std::string_view share);
  void change_share(int line, std::string_view share);
  void remove_activity(int line);

  // ---- Amendments, with their items.
  int amendments() const { return lines_of(record_, kEffective); }
  AmendmentText amendment(int line) const;
  // Before which line one of this day number stands; `amendments()`: behind the last.
  int position_for(std::int64_t day) const;
  void insert_amendment(int line, const AmendmentText& text);
  // Where the line stands then: it moves among the others only when its date has changed.
  int change_amendment(int line, const AmendmentText& text);
  void remove_amendment(int line);
  void put_monthly_time(int line, std::string_view shown);
  // Sum of the bases of those items that are hours, as "0.00"; "" for an amendment without items.
  std::string item_hours(int line) const;

  // ---- The payroll items of an amendment.
  std::vector<ItemText> items(int amendment) const;
  void put_items(int amendment, const std::vector<ItemText>& items);
  bool same_items(const Draft& other, int amendment) const;

 private:
  std::int64_t day_of(int line) const { return day(record_, kEffective, line + 1); }
  std::string stored(const Field& field, std::string_view text) const;
  void put_columns(int line, const AmendmentText& text);
  void move_amendment(int from, int to);

  const Reading* reading_;
  store::DbRecord record_;
};

}  // namespace velanor::card
