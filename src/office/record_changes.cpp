#include "office/record_changes.h"

#include <algorithm>

#include "card/record/amendment_columns.h"
#include "exchange/columns.h"

namespace velanor::office {
namespace {

using store::DbRecord;
using store::Position;

enum class Depth { kAttribute, kValues, kSubvalues };

// As deep as the card counts, also where there is only one: "Date d'effet 1" is an amendment's.
Depth depth_of_card(int attribute) {
  const auto among = [=](const auto& columns) {
    return std::any_of(columns.begin(), columns.end(), [=](const auto& c) { return c.number == attribute; });
  };
  if (among(card::kItemColumns)) return Depth::kSubvalues;
  return among(card::kAmendmentColumns) || among(card::kActivityColumns) ? Depth::kValues : Depth::kAttribute;
}

// As deep as there is something to tell apart.
Depth depth_of(const DbRecord& record, int attribute) {
  const int values = record.Count(attribute);
  for (int v = 1; v <= values; ++v) {
    if (record.Count(attribute, v) > 1) return Depth::kSubvalues;
  }
  return values > 1 ? Depth::kValues : Depth::kAttribute;
}

class Comparison {
 public:
  Comparison(std::string_view file, const DbRecord& before, const DbRecord& after)
      : file_(file), before_(before), after_(after) {}

  std::vector<Change> lines() {
    for (int a = 1; a <= std::max(before_.DCount(), after_.DCount()); ++a) compare_attribute(a);
    return std::move(lines_);
  }

 private:
  void compare_attribute(int attribute) {
    if (before_(attribute) == after_(attribute)) return;
    Depth depth = std::max(depth_of(before_, attribute), depth_of(after_, attribute));
    if (file_ == exchange::kCardFile) depth = std::max(depth, depth_of_card(attribute));
    if (depth == Depth::kAttribute) return compare({attribute});
    const int values = std::max(before_.Count(attribute), after_.Count(attribute));
    for (int v = 1; v <= values; ++v) compare_value(attribute, v, depth);
  }

  void compare_value(int attribute, int value, Depth depth) {
    if (depth == Depth::kValues) return compare({attribute, value});
    const int count = std::max(before_.Count(attribute, value), after_.Count(attribute, value));
    for (int s = 1; s <= count; ++s) compare({attribute, value, s});
  }

  void compare(const Position& at) {
    const std::string_view was = element(before_, at), is = element(after_, at);
    if (was != is) lines_.push_back({exchange::name_of(at, file_), shown(at, was), shown(at, is)});
  }

  std::string shown(const Position& at, std::string_view stored) const {
    const card::Field* named = file_ == exchange::kCardFile ? card::card_field(at.attribute) : nullptr;
    return exchange::write_field(card::Codec(*entry_), {.position = at, .named = named}, stored);
  }

  std::string_view file_;
  const DbRecord& before_;
  const DbRecord& after_;
  const std::unique_ptr<entry::UtilSaisie> entry_ = entry::make_util_saisie();
  std::vector<Change> lines_;
};

}  // namespace

std::string Change::text() const {
  const auto shown = [](const std::string& value) { return value.empty() ? "(vide)" : value; };
  return name + " : " + shown(before) + " → " + shown(after);
}

std::vector<Change> changes_between(std::string_view file, const DbRecord& before, const DbRecord& after) {
  return Comparison(file, before, after).lines();
}

}  // namespace velanor::office
