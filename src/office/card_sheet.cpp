#include "office/card_sheet.h"

#include <algorithm>

#include "card/record/named_fields.h"
#include "office/card_year.h"
#include "office/hours.h"
#include "text/utf8.h"

namespace velanor::office {
namespace {

using card::Field;
using control::File;
using Column = SheetTable::Column;
using Holds = SheetTable::Holds;

struct Labelled {
  Field field;
  File file;
};
// Whose boxes stand beside a label from a file.
constexpr Labelled kLabelled[] = {{card::kAgreement, File::kAgreements},
                                  {card::kSector, File::kSectors},
                                  {card::kProfile1, File::kProfiles},
                                  {card::kProfile2, File::kProfiles},
                                  {card::kMutualCharge, File::kCharges}};

constexpr Field kIdentity[] = {card::kEstablishment, card::kContractType, card::kEstablishmentHours,
                               card::kStaffKind,     card::kAgreement,    card::kContractStart,
                               card::kSector,        card::kContractEnd,  card::kTown,
                               card::kEndReason,     card::kBirth,        card::kContractNature,
                               card::kEducation,     card::kBranchEntry};
constexpr Field kPay[] = {card::kProfile1, card::kProfile2, card::kExemptedHours};
constexpr Field kMutual[] = {card::kMutualEmployee, card::kMutualEmployer, card::kMutualCharge,
                             card::kCeiling, card::kSocialBase};

std::string with_label(std::string_view code, store::DbFile& file, std::string_view id) {
  const auto record = id.empty() ? std::nullopt : file.find(id);
  const std::string_view label = record ? (*record)(card::kReferenceLabel) : std::string_view();
  std::string all(code);
  return label.empty() || label == code ? all : all.append(" ").append(label);
}

class Sheet {
 public:
  Sheet(const CardReading& reading, const store::DbRecord& card)
      : reading_(reading), draft_(reading.draft(card)) {}

  std::vector<SheetGroup> groups(const std::optional<int>& year) const {
    std::vector<SheetGroup> groups{{"Identité et contrat", fields(kIdentity)},
                                   {"Répartition des activités", {}, {activities()}},
                                   {"Profils et avenants", fields(kPay), {amendments(), items()}},
                                   {"Mutuelle et sécurité sociale", fields(kMutual)}};
    if (year) groups.push_back(year_group(year_of(draft_, *year)));
    return groups;
  }

 private:
  const store::DbRecord& record() const { return draft_.record(); }

  std::vector<SheetField> fields(std::span<const Field> list) const {
    std::vector<SheetField> fields;
    for (const Field& field : list) fields.push_back({std::string(field.name), shown(field)});
    return fields;
  }

  std::string shown(const Field& field) const {
    const std::string_view stored = element(record(), field);
    if (field == card::kEstablishment)
      return with_label(card::own_code_of(stored), reading_.procedure().establishments(), stored);
    for (const auto& [labelled, file] : kLabelled) {
      if (field == labelled) return with_label(stored, reading_.file(file), stored);
    }
    for (const card::FlagWord& flag : card::flag_words()) {
      if (field == flag.field && stored == flag.letter) return std::string(flag.word);
    }
    return draft_.shown(field);
  }

  SheetTable activities() const {
    SheetTable table{{{"Code"}, {"Activité"}, {"Part (%)", Holds::kFigures}}, {}};
    std::int64_t sum = 0;
    for (int line = 0; line < draft_.activities(); ++line) {
      const card::ActivityText activity = draft_.activity(line);
      table.rows.push_back({std::string(card::own_code_of(activity.code)), activity.label, activity.share});
      sum += figure(record(), card::kShare, line + 1);
    }
    table.total = {"", "Total", entry::format_decimal(sum, 2, 2)};
    return table;
  }

  static std::vector<Column> columns(std::span<const Field> fields) {
    std::vector<Column> columns;
    for (const Field& field : fields)
      columns.push_back(
          {std::string(field.name), card::decimals(field) > 0 ? Holds::kFigures : Holds::kText});
    return columns;
  }

  // The monthly time as the screen has it.
  SheetTable amendments() const {
    SheetTable table{columns(card::kAmendmentColumns), {}};
    constexpr auto kTime = card::column_of(card::kMonthlyTime);
    for (int line = 0; line < draft_.amendments(); ++line) {
      const auto shown = draft_.amendment(line).shown;
      table.rows.emplace_back(shown.begin(), shown.end());
      const auto hours = monthly_hours(record(), line, [this](std::string_view code) {
        return reading_.labels_of_codes().is_hours_item(code);
      });
      if (hours) table.rows.back()[kTime] = entry::format_decimal(*hours, 2, 2);
    }
    return table;
  }

  SheetTable items() const {
    SheetTable table{{{"Avenant du"}, {std::string(card::kItemCode.name)}, {"Libellé"}}, {}};
    for (Column& column : columns(card::kItemFigures)) table.columns.push_back(std::move(column));
    for (int line = 0; line < draft_.amendments(); ++line) {
      for (const card::ItemText& item : draft_.items(line)) {
        table.rows.push_back({draft_.shown(card::kEffective, line + 1), item.code, item.label});
        for (const auto& figure : item.figures) table.rows.back().push_back(figure.shown);
      }
    }
    return table;
  }

  static SheetGroup year_group(const CardYear& year) {
    SheetTable table{{{"Mois"}}, {}};
    for (std::size_t l = 0; l < kYearLines.size(); ++l) {
      const bool figures = YearLine(l) == YearLine::kHours || YearLine(l) == YearLine::kFullTime;
      table.columns.push_back({std::string(kYearLines[l]), figures ? Holds::kFigures : Holds::kText});
    }
    const auto row = [&](std::string_view first, const auto& text) {
      std::vector<std::string> cells{std::string(first)};
      for (std::size_t l = 0; l < kYearLines.size(); ++l) cells.push_back(text(YearLine(l)));
      return cells;
    };
    for (int m = 0; m < kMonths; ++m)
      table.rows.push_back(row(month_name(m), [&](YearLine line) { return text_of(year, line, m); }));
    table.total = row("Année", [&](YearLine line) { return total_of(year, line); });
    return {"Année " + std::to_string(year.year), {}, {table}, remark(year)};
  }

  const CardReading& reading_;
  card::Draft draft_;
};

}  // namespace

CardName name_of_card(std::string_view id) {
  return {std::string(card::employee_of(id)), std::string(card::entity_of(id)),
          std::string(card::year_of(id))};
}

std::string entity_title(const CardReading& reading, std::string_view entity) {
  return with_label(entity, reading.file(File::kEntities), entity);
}

CardSheet sheet_of(const CardReading& reading, const CardName& name, const store::DbRecord& card) {
  const std::string employee(text::trim(name.employee + " " + std::string(element(card, card::kName))));
  return {entity_title(reading, name.entity), name.year, employee,
          Sheet(reading, card).groups(budget_year(name.year))};
}

}  // namespace velanor::office
