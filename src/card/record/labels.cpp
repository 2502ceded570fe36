#include "card/record/labels.h"

#include "text/utf8.h"

namespace velanor::card {

int find_value(const store::DbRecord& table, int column, std::string_view text) {
  const int count = table.Count(column);
  for (int value = 1; value <= count; ++value) {
    if (table(column, value) == text) return value;
  }
  return 0;
}

std::string table_entry(const store::DbRecord& table, int value) {
  return std::string(table(tables::kCodes, value)).append(" ").append(table(tables::kLabels, value));
}

bool is_offered(const store::DbRecord& reasons, int value) {
  return reasons(tables::kWithdrawn, value) != kYes;
}

std::string Labels::label_or_itself(control::File file, std::string_view code) const {
  if (code.empty()) return {};
  const auto record = procedure_.file(file).find(code);
  return std::string(record && !(*record)(kReferenceLabel).empty() ? (*record)(kReferenceLabel) : code);
}

std::string Labels::entry(const store::DbRecord& table, std::string_view code) {
  const int value = code.empty() ? 0 : find_value(table, tables::kCodes, code);
  return value > 0 ? std::string(text::trim(table_entry(table, value))) : std::string(code);
}

std::string Labels::reason(std::string_view code) const {
  const store::DbRecord& reasons = procedure_.variable().fincontrat;
  return code.empty() ? std::string()
                      : std::string(reasons(tables::kLabels, find_value(reasons, tables::kCodes, code)));
}

std::string Labels::offered_reason(std::string_view label) const {
  const store::DbRecord& reasons = procedure_.variable().fincontrat;
  for (int value = 1; !label.empty() && value <= reasons.Count(tables::kLabels); ++value) {
    if (reasons(tables::kLabels, value) == label && is_offered(reasons, value))
      return std::string(reasons(tables::kCodes, value));
  }
  return {};
}

std::string Labels::item(std::string_view code) const {
  const auto item = procedure_.file(control::File::kItems).find(code);
  return item ? std::string((*item)(kReferenceLabel)) : std::string();
}

bool Labels::is_hours_item(std::string_view code) const {
  const auto item = procedure_.file(control::File::kItems).find(code);
  return item && items::is_hours((*item)(items::kType));
}

}  // namespace velanor::card
