#include "card/record/references.h"

#include <algorithm>

#include "card/record/fit_codes.h"
#include "card/record/known_files.h"
#include "card/record/reference_layout.h"
#include "control/session/years.h"
#include "text/number.h"
#include "text/utf8.h"
#include "velanor/date.h"

namespace velanor::card {
namespace {

constexpr std::string_view kTowns = "COMMUNES";
constexpr std::string_view kIdLists[] = {"ASSOCIATION", "ETABLISSEMENT",   "CONVENTIONCOL",
                                         "SECTEUR",     "PROFIL",          "RUBCHARGE",
                                         "ACTIVITES",   "GRILLESCCBUDGET", "RUBSAISIE"};
constexpr std::string_view kTables = "TABLES";
constexpr std::string_view kRecords[] = {"FINCONTRAT", "QUALIF", "REGROUPBUDGET", "NATURECONTRAT",
                                         "DIPLOMES"};

// Where the codes of a list stand.
std::string file_of(std::string_view list) {
  const bool record = std::find(std::begin(kRecords), std::end(kRecords), list) != std::end(kRecords);
  return record ? std::string(kTables) + " (" + std::string(list) + ")" : std::string(list);
}

Fault missing_record(std::string_view id, std::string_view file) {
  return Fault("L'enregistrement « " + std::string(id) + " » manque dans " + std::string(file) +
               " : importez ce fichier.");
}

bool belongs_to_entity(std::string_view list) { return list == "ETABLISSEMENT" || list == "ACTIVITES"; }

}  // namespace

References::References(store::Database& database) {
  const auto select = [&](const std::string& statement, std::string_view file, std::string_view attribute) {
    const store::DbResult found = database.Select(store::DbQuery(statement, file, attribute).encoded());
    Codes codes;
    for (int i = 1; i <= found.DCount(); ++i) codes.emplace(found(i, 1));
    return codes;
  };
  for (const std::string_view list : kIdLists) {
    codes_[std::string(list)] = select("SSELECT " + std::string(list), list, "0");
    if (const Fit* fit = fit_of(list)) fit_[std::string(list)] = select(fit->statement, list, "0");
  }
  codes_[std::string(kTowns)] = select("SSELECT " + std::string(kTowns), kTowns, "1");
  const auto tables = database.OpenFile(kTables);
  for (const std::string_view table : kRecords) read_table(*tables, table);
  read_parameters(database);
}

void References::read_table(store::DbFile& tables, std::string_view table) {
  const auto record = tables.find(table);
  if (!record) faults_.push_back(missing_record(table, kTables));
  auto& codes = codes_[std::string(table)];
  for (int v = 1; record && v <= record->Count(tables::kCodes); ++v)
    codes.emplace((*record)(tables::kCodes, v));
}

void References::read_parameters(store::Database& database) {
  const auto parameters = database.OpenFile("BUDGETPARAM")->find("1");
  if (!parameters) return faults_.push_back(missing_record("1", "BUDGETPARAM"));
  reference_day_ = entry::stored_day(control::reference_date(*parameters)).value_or(0);
}

bool References::fits(std::string_view list, std::string_view code) const {
  const auto found = fit_.find(list);
  return found == fit_.end() || found->second.contains(code);
}

bool References::has(std::string_view list, std::string_view code) const {
  const auto found = codes_.find(list);
  return found != codes_.end() && found->second.contains(code);
}

std::string References::completed(std::string_view list, std::string_view code,
                                  std::string_view entity) const {
  if (code.empty() || has(list, code)) return std::string(code);
  if (belongs_to_entity(list)) {
    const int length = text::length(code);
    if (length == kOwnCodeLength || (length < kOwnCodeLength && text::is_digits(code)))
      return std::string(entity) + text::pad_left(code, kOwnCodeLength, '0');
  }
  if (!text::is_digits(code)) return std::string(code);
  constexpr int kLongest = 6;
  for (int length = text::length(code) + 1; length <= kLongest; ++length) {
    std::string padded = text::pad_left(code, length, '0');
    if (has(list, padded)) return padded;
  }
  return text::pad_left(code, list_code_length(list), '0');
}

Fault unknown_code(const Field& field, std::string_view code) {
  return about(field, Fault(std::string(field.noun) + " « … » n'existe pas dans " + file_of(field.list) + ".",
                            std::string(code)));
}

Fault unfit_code(const Field& field, std::string_view code) {
  return about(field, Fault(std::string(field.noun) + " « … » ne convient pas. " +
                                std::string(fit_of(field.list)->refusal),
                            std::string(code)));
}

Fault unknown_entity(std::string_view entity) {
  return Fault("L'entité « … » n'existe pas dans ASSOCIATION.", std::string(entity));
}

}  // namespace velanor::card
