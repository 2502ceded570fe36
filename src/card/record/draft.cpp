#include "card/record/draft.h"

#include <algorithm>

#include "card/record/item_hours.h"
#include "entry/decimal.h"

namespace velanor::card {
namespace {

// Moves a value with its subvalues to another position of its attribute.
void move_value(store::DbRecord& record, int attribute, int from, int to) {
  std::vector<std::string> subvalues;
  for (int s = 1; s <= record.Count(attribute, from); ++s) subvalues.emplace_back(record(attribute, from, s));
  record.Delete(attribute, from);
  if (record.Count(attribute) >= to) record.Insert(attribute, to, {});
  for (std::size_t s = 0; s < subvalues.size(); ++s)
    record.set(attribute, to, static_cast<int>(s) + 1, subvalues[s]);
}

// The value of each column.
void remove_values(store::DbRecord& record, std::span<const Field> columns, int value) {
  for (const Field& column : columns) {
    if (record.Count(column.number) >= value) record.Delete(column.number, value);
  }
}

std::string_view code_of_entry(std::string_view entry) { return entry.substr(0, entry.find(' ')); }

}  // namespace

std::string Draft::shown(const Field& field, int value) const {
  const std::string_view stored = element(record_, field, value);
  const Labels& labels = reading_->labels;
  if (field == kActivity) return labels.activity(stored);
  if (field == kGrid) return labels.grid(stored);
  if (field == kEndReason) return labels.reason(stored);
  if (field == kContractNature) return labels.nature(stored);
  if (field == kEducation) return labels.diploma(stored);
  if (field == kNewMeasure) return stored == kYes ? "OUI" : "NON";
  return reading_->codec.shown(record_, field, value);
}

std::string Draft::stored(const Field& field, std::string_view text) const {
  if (field == kEndReason) return reading_->labels.offered_reason(text);
  if (field == kContractNature || field == kEducation) return std::string(code_of_entry(text));
  if (field == kNewMeasure) return std::string(text.substr(0, 1));
  return reading_->codec.stored(field.encoding, text);
}

void Draft::put(const Field& field, std::string_view text) {
  if (text != shown(field)) set_element(record_, field, stored(field, text));
}

void Draft::put(const Field& field, int value, std::string_view text) {
  if (text != shown(field, value)) set_element(record_, field, value, stored(field, text));
}

// ---- Activities.

ActivityText Draft::activity(int line) const {
  const int value = line + 1;
  return {std::string(element(record_, kActivity, value)), shown(kActivity, value), shown(kShare, value)};
}

std::vector<ActivityText> Draft::all_activities() const {
  std::vector<ActivityText> all;
  all.reserve(static_cast<std::size_t>(activities()));
  for (int line = 0; line < activities(); ++line) all.push_back(activity(line));
  return all;
}

void Draft::add_activity(std::string_view code, std::string_view share) {
  const int value = activities() + 1;
  end_columns(record_, kActivityColumns, value - 1);
  set_element(record_, kActivity, value, code);
  put(kShare, value, share);
}

void Draft::change_share(int line, std::string_view share) { put(kShare, line + 1, share); }

void Draft::remove_activity(int line) { remove_values(record_, kActivityColumns, line + 1); }

// ---- Amendments.

AmendmentText Draft::amendment(int line) const {
  AmendmentText text;
  for (std::size_t c = 0; c < kAmendmentColumns.size(); ++c)
    text.shown[c] = shown(kAmendmentColumns[c], line + 1);
  text.grid = element(record_, kGrid, line + 1);
  return text;
}

int Draft::position_for(std::int64_t wanted) const {
  int line = 0;
  while (line < amendments() && day_of(line) < wanted) ++line;
  return line;
}

void Draft::put_columns(int line, const AmendmentText& text) {
  for (std::size_t c = 0; c < kAmendmentColumns.size(); ++c) {
    if (kAmendmentColumns[c] == kGrid) {
      set_element(record_, kGrid, line + 1, text.grid);
    } else {
      put(kAmendmentColumns[c], line + 1, text.shown[c]);
    }
  }
}

void Draft::insert_amendment(int line, const AmendmentText& text) {
  for (const Field& column : kAmendmentAttributes) {
    if (record_.Count(column.number) > line) record_.Insert(column.number, line + 1, {});
  }
  put_columns(line, text);
}

int Draft::change_amendment(int line, const AmendmentText& text) {
  const std::string before(element(record_, kEffective, line + 1));
  put_columns(line, text);
  if (element(record_, kEffective, line + 1) == before) return line;
  // The line itself stands somewhere among those that it is compared with.
  const std::int64_t own = day_of(line);
  int target = 0;
  for (int other = 0; other < amendments(); ++other) {
    if (other == line) continue;
    if (day_of(other) >= own) break;
    ++target;
  }
  if (target != line) move_amendment(line, target);
  return target;
}

void Draft::move_amendment(int from, int to) {
  for (const Field& column : kAmendmentAttributes) move_value(record_, column.number, from + 1, to + 1);
}

void Draft::remove_amendment(int line) { remove_values(record_, kAmendmentAttributes, line + 1); }

void Draft::put_monthly_time(int line, std::string_view text) { put(kMonthlyTime, line + 1, text); }

std::string Draft::item_hours(int line) const {
  const int value = line + 1;
  if (element(record_, kItemCode, value, 1).empty()) return {};
  const std::int64_t sum =
      card::item_hours(record_, value, [this](auto code) { return reading_->labels.is_hours_item(code); });
  return entry::format_decimal(sum, 2, 2);
}

// ---- Items.

std::vector<ItemText> Draft::items(int amendment) const {
  const int value = amendment + 1;
  std::vector<ItemText> items;
  for (int s = 1; !element(record_, kItemCode, value, s).empty(); ++s) {
    ItemText item{std::string(element(record_, kItemCode, value, s)), {}, {}};
    item.label = reading_->labels.item(item.code);
    for (std::size_t f = 0; f < kItemFigures.size(); ++f) {
      item.figures[f] = {reading_->codec.shown(record_, kItemFigures[f], value, s),
                         std::string(element(record_, kItemFigures[f], value, s))};
    }
    items.push_back(std::move(item));
  }
  return items;
}

void Draft::put_items(int amendment, const std::vector<ItemText>& items) {
  const int value = amendment + 1;
  int s = 0;
  for (const ItemText& item : items) {
    set_element(record_, kItemCode, value, ++s, item.code);
    for (std::size_t f = 0; f < kItemFigures.size(); ++f)
      set_element(record_, kItemFigures[f], value, s, item.figures[f].stored);
  }
  for (const Field& column : kItemColumns) {
    while (record_.Count(column.number, value) > s)
      record_.Delete(column.number, value, record_.Count(column.number, value));
  }
}

bool Draft::same_items(const Draft& other, int amendment) const {
  return std::all_of(kItemColumns.begin(), kItemColumns.end(), [&](const Field& column) {
    return same_value(record_, other.record_, column.number, amendment + 1);
  });
}

}  // namespace velanor::card
