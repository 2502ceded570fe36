#include "card/record/known_files.h"

#include <algorithm>
#include <vector>

#include "card/record/record_layout.h"
#include "card/record/reference_layout.h"
#include "control/session/procedure.h"
#include "control/session/years.h"
#include "text/number.h"
#include "text/utf8.h"

namespace velanor::card {
namespace {

const std::vector<std::string_view>& names() {
  static const auto kNames = [] {
    std::vector<std::string_view> all(control::kFileNames.begin(), control::kFileNames.end());
    // Those that are not kept open, and what is kept beside the cards.
    for (const char* name : {"ETABLISSEMENT", "BUDGETHISTORCUMUL", "BUDGETDETAILCALCUL", "BUDGETREMARQUES"})
      all.emplace_back(name);
    return all;
  }();
  return kNames;
}

// Ids of a fixed length. What follows a first part cannot be all that is left of them: an id has
// `least` digits even without the zeros in front.
struct IdShape {
  std::string_view file;
  int length, least = 1;
};
constexpr int kMonthLength = 2;
constexpr IdShape kIds[] = {
    {"VELANORO", kRecordIdLength, 8},
    {"BUDGETHISTORCUMUL", kRecordIdLength, 8},
    {"BUDGETDETAILCALCUL", kRecordIdLength + kMonthLength, 10},
    {"BUDGETREMARQUES", kRecordIdLength, 8},
    {"ASSOCIATION", kEntityCodeLength},
    {"ETABLISSEMENT", kEntityCodeLength + kOwnCodeLength, 4},
    {"ACTIVITES", kEntityCodeLength + kOwnCodeLength, 4},
    {"CONVENTIONCOL", kAgreement.length},
    {"GRILLESCCBUDGET", 5, 4},
    {"BUDGETTRAMESAISIE", 4, 3},
    {"COMMUNES", 5, 4},
    {"SECTEUR", kSector.length},
    {"PROFIL", kProfile1.length},
    {"RUBCHARGE", kMutualCharge.length},
    {"RUBSAISIE", kItemCode.length},
};

// Codes that stand in a column of a reference file.
struct CodeColumn {
  std::string_view file;
  int attribute, length;
};
constexpr int kTableCodeLength = 2;
constexpr CodeColumn kCodeColumns[] = {
    {"BUDGETPARAM", control::kDefaultAgreements, kAgreement.length},
    {"BUDGETTRAMESAISIE", templates::kItem, kItemCode.length},
    {"RUBCHARGE", charges::kNature, 2},
    {"TABLES", tables::kCodes, kTableCodeLength},
    {"TABLES", tables::kGrouping, kTableCodeLength},
};

const IdShape* shape_of(std::string_view file) {
  const auto* const found =
      std::find_if(std::begin(kIds), std::end(kIds), [=](const IdShape& id) { return id.file == file; });
  return found == std::end(kIds) ? nullptr : found;
}

const CodeColumn* code_column(std::string_view file, int attribute) {
  const auto* const found = std::find_if(
      std::begin(kCodeColumns), std::end(kCodeColumns),
      [&](const CodeColumn& column) { return column.file == file && column.attribute == attribute; });
  return found == std::end(kCodeColumns) ? nullptr : found;
}

}  // namespace

bool is_known_file(std::string_view name) {
  return std::find(names().begin(), names().end(), name) != names().end();
}

std::string known_files() {
  std::string list;
  for (const std::string_view name : names()) list.append(list.empty() ? "" : ", ").append(name);
  return list;
}

std::optional<std::string> completed_id(std::string_view file, std::string_view shown) {
  const std::string_view trimmed = text::trim(shown);
  const IdShape* shape = shape_of(file);
  if (shape == nullptr || !text::is_digits(trimmed)) return std::string(shown);
  const int length = text::length(trimmed);
  if (length < shape->least) return std::nullopt;
  return text::pad_left(trimmed, shape->length, '0');
}

int list_code_length(std::string_view list) {
  const IdShape* shape = shape_of(list);
  return shape == nullptr ? kTableCodeLength : shape->length;
}

bool has_codes(std::string_view file, int attribute) { return code_column(file, attribute) != nullptr; }

std::string completed_cell(std::string_view file, int attribute, std::string_view cell) {
  const CodeColumn* column = code_column(file, attribute);
  const bool code = column != nullptr && text::is_digits(cell);
  return code ? text::pad_left(cell, column->length, '0') : std::string(cell);
}

bool is_list_file(std::string_view file) { return file == "TABLES" || file == "BUDGETTRAMESAISIE"; }

}  // namespace velanor::card
