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

  // ---- Single fields.
  template <Encoding E>
  std::string shown(Attribute<E> field) const {
    return reading_->codec.shown(field, record_(field));
  }
  template <Encoding E>
  void put(Attribute<E> field, std::string_view text) {
    if (text != shown(field)) record_.set(field, reading_->codec.stored(field, text));
  }
  // Attributes whose text is no encoding of what is stored.
  std::string end_reason() const { return reading_->labels.reason(record_(kEndReason)); }
  void put_end_reason(std::string_view label);
  std::string nature() const { return reading_->labels.nature(record_(kContractNature)); }
  void put_nature(std::string_view entry);
  std::string education() const { return reading_->labels.diploma(record_(kEducation)); }
  void put_education(std::string_view entry);
  void put_stored(int attribute, std::string_view stored) { record_.set(attribute, stored); }

  // ---- Activities.
  int activities() const { return lines_of(record_, kActivity); }
  ActivityText activity(int line) const;
  void add_activity(std::string_view code, std::string_view share);
  void change_share(int line, std::string_view share);
  void remove_activity(int line);

  // ---- Amendments, with their items.
  int amendments() const { return lines_of(record_, kEffective); }
  AmendmentText amendment(int line) const;
  // Before which line one of this day number stands; `amendments()`: behind the last.
  int position_for(long day) const;
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
  long day(int line) const;
  void put_columns(int line, const AmendmentText& text);
  void move_amendment(int from, int to);

  const Reading* reading_;
  store::DbRecord record_;
};

}  // namespace velanor::card
