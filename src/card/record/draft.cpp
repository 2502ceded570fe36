#include "card/record/draft.h"

#include "entry/decimal.h"

namespace velanor::card {
namespace {

// Every attribute that has a value for each amendment.
constexpr auto kAmendmentAttributes = [] {
  std::array<int, kAmendmentColumns.size() + kItemColumns.size()> attributes{};
  std::size_t next = 0;
  for (const AmendmentColumn& column : kAmendmentColumns) attributes[next++] = column.attribute;
  for (int attribute : kItemColumns) attributes[next++] = attribute;
  return attributes;
}();

void cut(store::DbRecord& record, int attribute, int lines) {
  while (record.Count(attribute) > lines) record.Delete(attribute, record.Count(attribute));
}

// Moves a value with its subvalues to another position of its attribute.
void move_value(store::DbRecord& record, int attribute, int from, int to) {
  std::vector<std::string> subvalues;
  for (int s = 1; s <= record.Count(attribute, from); ++s) subvalues.emplace_back(record(attribute, from, s));
  record.Delete(attribute, from);
  if (record.Count(attribute) >= to) record.Insert(attribute, to, {});
  for (std::size_t s = 0; s < subvalues.size(); ++s)
    record.set(attribute, to, static_cast<int>(s) + 1, subvalues[s]);
}

std::string_view code_of_entry(std::string_view entry) { return entry.substr(0, entry.find(' ')); }

}  // namespace

void Draft::put_end_reason(std::string_view label) {
  if (label != end_reason()) record_.set(kEndReason, reading_->labels.offered_reason(label));
}

void Draft::put_nature(std::string_view entry) {
  if (entry != nature()) record_.set(kContractNature, code_of_entry(entry));
}

void Draft::put_education(std::string_view entry) {
  if (entry != education()) record_.set(kEducation, code_of_entry(entry));
}

// ---- Activities.

ActivityText Draft::activity(int line) const {
  const std::string code(record_(kActivity, line + 1));
  return {code, reading_->labels.activity(code), reading_->codec.shown(kShare, record_(kShare, line + 1))};
}

void Draft::add_activity(std::string_view code, std::string_view share) {
  const int value = activities() + 1;
  cut(record_, kActivity, value - 1);
  cut(record_, kShare, value - 1);
  record_.set(kActivity, value, code);
  record_.set(kShare, value, reading_->codec.stored(kShare, share));
}

void Draft::change_share(int line, std::string_view share) {
  if (share == reading_->codec.shown(kShare, record_(kShare, line + 1))) return;
  record_.set(kShare, line + 1, reading_->codec.stored(kShare, share));
}

void Draft::remove_activity(int line) {
  for (int attribute : {kActivity.number, kShare.number}) {
    if (record_.Count(attribute) > line) record_.Delete(attribute, line + 1);
  }
}

// ---- Amendments.

AmendmentText Draft::amendment(int line) const {
  AmendmentText text;
  for (std::size_t c = 0; c < kAmendmentColumns.size(); ++c) {
    const AmendmentColumn& column = kAmendmentColumns[c];
    text.shown[c] = column.shown(reading_->codec, record_(column.attribute, line + 1));
  }
  text.grid = record_(kGrid, line + 1);
  text.shown[kGridColumn] = reading_->labels.grid(text.grid);
  return text;
}

long Draft::day(int line) const {
  return static_cast<long>(entry::parse_decimal(record_(kEffective, line + 1), 0).value_or(0));
}

int Draft::position_for(long wanted) const {
  int line = 0;
  while (line < amendments() && day(line) < wanted) ++line;
  return line;
}

void Draft::put_columns(int line, const AmendmentText& text) {
  for (std::size_t c = 0; c < kAmendmentColumns.size(); ++c) {
    const AmendmentColumn& column = kAmendmentColumns[c];
    const std::string_view stored = record_(column.attribute, line + 1);
    if (c == kGridColumn) {
      record_.set(kGrid, line + 1, text.grid);
    } else if (column.shown(reading_->codec, stored) != text.shown[c]) {
      record_.set(column.attribute, line + 1, column.stored(reading_->codec, text.shown[c]));
    }
  }
}

void Draft::insert_amendment(int line, const AmendmentText& text) {
  for (int attribute : kAmendmentAttributes) {
    if (record_.Count(attribute) > line) record_.Insert(attribute, line + 1, {});
  }
  put_columns(line, text);
}

int Draft::change_amendment(int line, const AmendmentText& text) {
  const std::string before(record_(kEffective, line + 1));
  put_columns(line, text);
  if (record_(kEffective, line + 1) == before) return line;
  // The line itself stands somewhere among those that it is compared with.
  const long own = day(line);
  int target = 0;
  for (int other = 0; other < amendments(); ++other) {
    if (other == line) continue;
    if (day(other) >= own) break;
    ++target;
  }
  if (target != line) move_amendment(line, target);
  return target;
}

void Draft::move_amendment(int from, int to) {
  for (int attribute : kAmendmentAttributes) move_value(record_, attribute, from + 1, to + 1);
}

void Draft::remove_amendment(int line) {
  for (int attribute : kAmendmentAttributes) {
    if (record_.Count(attribute) > line) record_.Delete(attribute, line + 1);
  }
}

void Draft::put_monthly_time(int line, std::string_view text) {
  if (text == reading_->codec.shown(kMonthlyTime, record_(kMonthlyTime, line + 1))) return;
  record_.set(kMonthlyTime, line + 1, reading_->codec.stored(kMonthlyTime, text));
}

std::string Draft::item_hours(int line) const {
  if (record_(kItemCode, line + 1, 1).empty()) return {};
  std::int64_t sum = 0;
  for (int s = 1; !record_(kItemCode, line + 1, s).empty(); ++s) {
    if (!reading_->labels.is_hours_item(record_(kItemCode, line + 1, s))) continue;
    sum += entry::parse_decimal(record_(kItemBase, line + 1, s), 0).value_or(0);
  }
  return entry::format_decimal(sum, 2, 2);
}

// ---- Items.

std::vector<ItemText> Draft::items(int amendment) const {
  std::vector<ItemText> items;
  for (int s = 1; !record_(kItemCode, amendment + 1, s).empty(); ++s) {
    ItemText item{std::string(record_(kItemCode, amendment + 1, s)), {}, {}};
    item.label = reading_->labels.item(item.code);
    for (std::size_t f = 0; f < kItemFigures.size(); ++f) {
      const ItemFigure& figure = kItemFigures[f];
      const std::string_view stored = record_(figure.attribute, amendment + 1, s);
      item.figures[f] = {figure.shown(reading_->codec, stored), std::string(stored)};
    }
    items.push_back(std::move(item));
  }
  return items;
}

void Draft::put_items(int amendment, const std::vector<ItemText>& items) {
  const int value = amendment + 1;
  int s = 0;
  for (const ItemText& item : items) {
    record_.set(kItemCode, value, ++s, item.code);
    for (std::size_t f = 0; f < kItemFigures.size(); ++f)
      record_.set(kItemFigures[f].attribute, value, s, item.figures[f].stored);
  }
  for (int attribute : kItemColumns) {
    while (record_.Count(attribute, value) > s)
      record_.Delete(attribute, value, record_.Count(attribute, value));
  }
}

bool Draft::same_items(const Draft& other, int amendment) const {
  for (int attribute : kItemColumns) {
    if (!same_value(record_, other.record_, attribute, amendment + 1)) return false;
  }
  return true;
}

}  // namespace velanor::card
