#include "app/velanorctl/import_csv.h"

#include <algorithm>
#include <set>

#include "app/velanorctl/columns.h"
#include "app/velanorctl/csv.h"
#include "app/velanorctl/open_store.h"
#include "card/record_compare.h"
#include "text/utf8.h"

namespace velanor::app {
namespace {

using store::DbRecord;

constexpr std::size_t kYearLength = 4;

bool all_digits(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

class Import {
 public:
  Import(std::istream& in, store::Database& database, std::string_view file)
      : reader_(in), file_name_(file), file_(database.OpenFile(file)) {}

  ImportReport run(const std::function<void()>& row_read) {
    if (!read_header()) return report_;
    CsvRow row;
    while (reader_.next(row)) {
      read_row(row);
      row_read();
    }
    if (report_.faults.empty()) write();
    return report_;
  }

 private:
  struct Change {
    std::string id;
    // Encoded, which is smaller than the record.
    std::string content;
  };

  void fault(int line, const std::string& sentence) { report_.faults.push_back({line, sentence}); }
  bool is_cards() const { return file_name_ == kCardFile; }

  bool read_header();
  bool has_id() const;
  void read_row(const CsvRow& row);
  bool find_id(const CsvRow& row, std::string& id);
  bool is_card_id(int line, const std::string& id);
  bool fill(const CsvRow& row, DbRecord& record);
  void follow_card_rules(const std::string& id, const DbRecord* before, DbRecord& card) const;
  bool has_column(int attribute) const;
  void write();

  CsvReader reader_;
  std::string file_name_;
  std::unique_ptr<store::DbFile> file_;
  std::vector<Column> columns_;
  std::set<std::string, std::less<>> ids_;
  std::vector<Change> changes_;
  ImportReport report_;
};

bool Import::read_header() {
  CsvRow header;
  if (!reader_.next(header)) {
    fault(1, "le tableau est vide ; sa première ligne doit nommer les colonnes");
    return false;
  }
  if (!header.fault.empty()) fault(header.line, header.fault);
  for (const std::string& heading : header.fields) {
    const auto column = column_of(heading, file_name_);
    if (!column) fault(header.line, "la colonne « " + heading + " » n'est pas connue");
    columns_.push_back(column.value_or(Column{}));
  }
  if (report_.faults.empty() && !has_id()) {
    fault(header.line, is_cards()
                           ? "il faut une colonne « id », ou les colonnes « Code », « Entité » et « Année »"
                           : "il faut une colonne « id »");
  }
  return report_.faults.empty();
}

bool Import::has_id() const {
  const auto count = [this](IdPart part) {
    return std::count_if(columns_.begin(), columns_.end(),
                         [=](const Column& column) { return column.id == part; });
  };
  const auto whole = count(IdPart::kWhole);
  const auto code = count(IdPart::kEmployee), entity = count(IdPart::kEntity), year = count(IdPart::kYear);
  return (whole == 1 && code + entity + year == 0) || (whole == 0 && code == 1 && entity == 1 && year == 1);
}

bool Import::find_id(const CsvRow& row, std::string& id) {
  std::string code, entity, year;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    const std::string_view field = text::trim(row.fields[i]);
    if (columns_[i].id == IdPart::kWhole) id = row.fields[i];
    if (columns_[i].id == IdPart::kEmployee) code = text::pad_left(field, card::kEmployeeCodeLength, '0');
    if (columns_[i].id == IdPart::kEntity) entity = text::pad_left(field, card::kEntityCodeLength, '0');
    if (columns_[i].id == IdPart::kYear) year = field;
  }
  if (id.empty()) id = card::record_id(code, entity, year);
  if (id.empty()) {
    fault(row.line, "l'identifiant est vide");
    return false;
  }
  if (is_cards() && !is_card_id(row.line, id)) return false;
  if (ids_.insert(id).second) return true;
  fault(row.line, "l'identifiant « " + id + " » est déjà dans une ligne au-dessus");
  return false;
}

bool Import::is_card_id(int line, const std::string& id) {
  constexpr std::size_t kLength = card::kEmployeeCodeLength + card::kEntityCodeLength + kYearLength;
  if (id.size() == kLength && all_digits(id)) return true;
  fault(line, "« " + id + " » n'est pas un code de salarié (5 chiffres), d'entité (3) et une année (4)");
  return false;
}

void Import::read_row(const CsvRow& row) {
  if (!row.fault.empty()) return fault(row.line, row.fault);
  if (row.fields.size() != columns_.size()) {
    return fault(row.line,
                 std::to_string(row.fields.size()) + " champs au lieu de " + std::to_string(columns_.size()));
  }
  std::string id;
  if (!find_id(row, id)) return;
  const auto before = file_->find(id);
  DbRecord record = before.value_or(DbRecord());
  if (!fill(row, record)) return;
  if (is_cards()) follow_card_rules(id, before ? &*before : nullptr, record);
  ++(before ? report_.changed : report_.created);
  changes_.push_back({std::move(id), record.encoded()});
}

bool Import::fill(const CsvRow& row, DbRecord& record) {
  bool good = true;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    const Column& column = columns_[i];
    if (column.id != IdPart::kNone) continue;
    std::string stored;
    if (const std::string wrong = read_field(column, row.fields[i], stored); !wrong.empty()) {
      fault(row.line, name_of(column.position) + " : " + wrong);
      good = false;
    } else if (element(record, column.position) != stored) {
      set_element(record, column.position, stored);
    }
  }
  return good;
}

bool Import::has_column(int attribute) const {
  return std::any_of(columns_.begin(), columns_.end(), [=](const Column& column) {
    return column.id == IdPart::kNone && column.position.attribute == attribute;
  });
}

void Import::follow_card_rules(const std::string& id, const DbRecord* before, DbRecord& card) const {
  card.set(card::kName, text::upper(card(card::kName)));
  const std::string establishment(card(card::kEstablishment));
  if (establishment.size() == card::kEstablishmentCodeLength) {
    card.set(card::kEstablishment,
             id.substr(card::kEmployeeCodeLength, card::kEntityCodeLength) + establishment);
  }
  if (before == nullptr) {
    if (!has_column(card::kStatus)) card.set(card::kStatus, "0");
    return;
  }
  bool stale = false;
  for (int attribute = 1; attribute <= card::kLastComparedAttribute; ++attribute) {
    stale |= card::affects_calculation(attribute) && !card::same_attribute(card, *before, attribute);
  }
  if (!stale) return;
  for (const int result : card::kResults) {
    if (!has_column(result)) card.set(result, {});
  }
}

void Import::write() {
  for (const Change& change : changes_) file_->write(change.id, DbRecord::from_trusted(change.content));
}

}  // namespace

ImportReport import_csv(std::istream& in, store::Database& database, std::string_view file,
                        const std::function<void()>& row_read) {
  ImportReport report;
  // What is read of the records that exist must still be so when they are written.
  in_one_change(database, [&] { report = Import(in, database, file).run(row_read); });
  return report;
}

}  // namespace velanor::app
