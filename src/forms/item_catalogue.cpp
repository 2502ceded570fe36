#include "forms/item_catalogue.h"

#include "card/record/reference_layout.h"
#include "entry/decimal.h"

namespace velanor::forms {
namespace {

// Columns, in the order in which the attributes are asked for.
constexpr int kCode = 1;
constexpr int kLabel = 2;
constexpr int kType = 3;
constexpr int kBaseAndRate = 4;  // "2" under type 2
constexpr int kTypedRate = 5;    // "1" under type 2
constexpr int kDefaultRate = 7;  // ten-thousandths

}  // namespace

void ItemCatalogue::load(const control::Procedure& procedure) {
  std::string statement = "SSELECT RUBSAISIE AVEC 2 >= \"2\" AND AVEC 5 = \"+\"";
  for (const char* excluded : {"805", "812", "815", "810", "835", "852", "853"})
    statement += std::string(" AND AVEC 0 # \"") + excluded + "\"";
  rows_ = procedure.select(statement + " AND AVEC 18 # \"1\" PAR 1", "RUBSAISIE", "0 1 2 10 8 6 9");
}

std::vector<std::string> ItemCatalogue::labels() const {
  std::vector<std::string> labels;
  for (int row = 1; !code(row).empty(); ++row) labels.emplace_back(label(row));
  return labels;
}

std::vector<std::string> ItemCatalogue::notes() const {
  std::vector<std::string> notes;
  for (int row = 1; !code(row).empty(); ++row) {
    const bool alike = label(row) == label(row - 1) || label(row) == label(row + 1);
    notes.emplace_back(alike ? code(row) : std::string_view());
  }
  return notes;
}

int ItemCatalogue::row(std::string_view code_text) const {
  for (int row = 1; !code(row).empty(); ++row) {
    if (code(row) == code_text) return row;
  }
  return 0;
}

std::string_view ItemCatalogue::code(int row) const { return rows_(row, kCode); }
std::string_view ItemCatalogue::label(int row) const { return rows_(row, kLabel); }

ItemFigures ItemCatalogue::figures(int row) const {
  const std::string_view type = rows_(row, kType);
  const bool typed_rate = type == "2" && rows_(row, kTypedRate) == "1";
  const bool base_and_rate = typed_rate || (type == "2" && rows_(row, kBaseAndRate) == "2");
  const bool hours = card::items::is_hours(type);
  return {.known = type == "2" || type == "6" || hours,
          .base = base_and_rate || hours,
          .rate = base_and_rate,
          .amount = !base_and_rate && !hours,
          .hours = hours,
          .default_rate = typed_rate};
}

std::string ItemCatalogue::default_rate(int row) const {
  std::string text = entry::stored_to_text(rows_(row, kDefaultRate), 4, 4);
  if (text.find(',') == std::string::npos) return text;
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == ',') text.pop_back();
  return text;
}

}  // namespace velanor::forms
