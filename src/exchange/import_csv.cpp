#include "exchange/import_csv.h"

#include <algorithm>
#include <optional>
#include <set>

#include "card/record/known_files.h"
#include "exchange/card_import.h"
#include "exchange/columns.h"
#include "exchange/csv.h"
#include "text/utf8.h"

namespace velanor::exchange {
namespace {

using store::DbRecord;

class Import {
 public:
  Import(std::istream& in, store::Database& database, std::string_view file, const ImportOptions& options)
      : reader_(in),
        database_(database),
        file_name_(file),
        file_(database.OpenFile(file)),
        options_(options),
        entry_(entry::make_util_saisie(options.clock)) {}

  ImportReport run(const std::function<void()>& row_read) {
    if (!read_header()) return report_;
    if (is_cards()) cards_.emplace(database_, columns_, options_.clock);
    CsvRow row;
    while (reader_.next(row)) {
      read_row(row);
      row_read();
    }
    take_record();
    // What a record has was found when the row behind it was read.
    std::stable_sort(report_.faults.begin(), report_.faults.end(),
                     [](const ImportRemark& a, const ImportRemark& b) { return a.line < b.line; });
    if (report_.faults.empty() && !options_.rehearsal) write();
    return report_;
  }

 private:
  // The record that rows are being read into.
  struct Pending {
    std::string id;
    int line = 0;
    // How many rows it has had.
    int rows = 0;
    std::optional<DbRecord> before;
    DbRecord record;
    bool good = true;
  };
  struct Change {
    std::string id;
    // Encoded, which is smaller than the record.
    std::string content;
  };

  void fault(int line, const std::string& sentence) { report_.faults.push_back({line, sentence}); }
  bool is_cards() const { return file_name_ == kCardFile; }

  bool read_header();
  void read_headings(const CsvRow& header);
  bool has_id() const;
  bool may_be_spelt_out() const;
  void read_row(CsvRow& row);
  bool fits_columns(CsvRow& row);
  bool find_id(const CsvRow& row, std::string& id);
  std::string id_of(const CsvRow& row, std::string& wrong) const;
  bool begin_record(int line, const std::string& id);
  void fill(const CsvRow& row);
  void fill_values(const Column& column, std::string_view field);
  void take_record();
  void finish_card();
  std::vector<std::string> changes_of_record() const;
  void write();

  CsvReader reader_;
  store::Database& database_;
  std::string file_name_;
  std::unique_ptr<store::DbFile> file_;
  const ImportOptions& options_;
  std::unique_ptr<entry::UtilSaisie> entry_;
  card::Codec codec_{*entry_};
  std::vector<Column> columns_;
  std::optional<CardImport> cards_;
  std::set<std::string, std::less<>> ids_;
  std::optional<Pending> pending_;
  std::vector<Change> changes_;
  ImportReport report_;
};

// ---- The first row.

bool Import::read_header() {
  CsvRow header;
  if (!reader_.fault().empty()) {
    fault(reader_.fault_line(), reader_.fault());
  } else if (!reader_.next(header)) {
    fault(1, "le tableau est vide ; sa première ligne doit nommer les colonnes");
  } else {
    if (reader_.was_windows_1252())
      report_.remarks.push_back({1, "le tableau n'est pas en UTF-8 ; il est lu en Windows-1252"});
    read_headings(header);
  }
  return report_.faults.empty();
}

void Import::read_headings(const CsvRow& header) {
  if (!header.fault.empty()) fault(header.line, header.fault);
  std::vector<std::string> headings = header.fields;
  // Columns without anything, as spreadsheets write beside a table.
  while (!headings.empty() && text::trim(headings.back()).empty()) headings.pop_back();
  for (const std::string& heading : headings) {
    const auto column = column_of(heading, file_name_);
    if (!column) fault(header.line, "la colonne « " + heading + " » n'est pas connue");
    const auto same = [&](const Column& other) {
      return column->position.attribute != 0 && column->position == other.position;
    };
    if (column && std::any_of(columns_.begin(), columns_.end(), same))
      fault(header.line, "la colonne « " + heading + " » est là deux fois");
    columns_.push_back(column.value_or(Column{}));
  }
  if (report_.faults.empty() && !has_id()) {
    fault(header.line, is_cards()
                           ? "il faut une colonne « id », ou les colonnes « Code », « Entité » et « Année »"
                           : "il faut une colonne « id »");
  }
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

// A value to each row has room for it only where no column names one.
bool Import::may_be_spelt_out() const {
  return card::is_list_file(file_name_) &&
         std::all_of(columns_.begin(), columns_.end(), [](const Column& column) {
           return column.id != IdPart::kNone || column.holds_values();
         });
}

// ---- The other rows.

void Import::read_row(CsvRow& row) {
  if (!row.fault.empty()) return fault(row.line, row.fault);
  if (!fits_columns(row)) return;
  std::string id;
  if (!find_id(row, id)) return;
  if (!begin_record(row.line, id)) return;
  fill(row);
}

bool Import::fits_columns(CsvRow& row) {
  while (row.fields.size() > columns_.size() && text::trim(row.fields.back()).empty()) row.fields.pop_back();
  const std::size_t fields = row.fields.size();
  if (fields == columns_.size()) return true;
  fault(row.line, std::to_string(fields) + (fields > 1 ? " champs" : " champ") + " au lieu de " +
                      std::to_string(columns_.size()));
  return false;
}

bool Import::find_id(const CsvRow& row, std::string& id) {
  std::string wrong;
  id = id_of(row, wrong);
  if (id.empty()) fault(row.line, wrong);
  return !id.empty();
}

std::string Import::id_of(const CsvRow& row, std::string& wrong) const {
  std::string whole;
  CardIdParts parts;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    const std::string_view field = text::trim(row.fields[i]);
    if (columns_[i].id == IdPart::kWhole) whole = row.fields[i];
    if (columns_[i].id == IdPart::kEmployee) parts.employee = field;
    if (columns_[i].id == IdPart::kEntity) parts.entity = field;
    if (columns_[i].id == IdPart::kYear) parts.year = field;
  }
  const bool in_parts = std::any_of(columns_.begin(), columns_.end(),
                                    [](const Column& column) { return column.id == IdPart::kYear; });
  if (in_parts) return card_id(parts, wrong);
  if (text::trim(whole).empty()) {
    wrong = "l'identifiant est vide";
    return {};
  }
  if (is_cards()) return card_id(whole, wrong);
  const auto id = card::completed_id(file_name_, whole);
  if (!id) wrong = "« " + whole + " » n'est pas un identifiant de " + file_name_;
  return id.value_or(std::string());
}

bool Import::begin_record(int line, const std::string& id) {
  if (pending_ && pending_->id == id && may_be_spelt_out()) return true;
  take_record();
  if (!ids_.insert(id).second) {
    fault(line, "l'identifiant « " + id + " » est déjà dans une ligne au-dessus");
    return false;
  }
  auto before = file_->find(id);
  DbRecord record = before.value_or(DbRecord());
  pending_ = {.id = id, .line = line, .before = std::move(before), .record = std::move(record)};
  return true;
}

void Import::fill(const CsvRow& row) {
  ++pending_->rows;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    const Column& column = columns_[i];
    if (column.id != IdPart::kNone) continue;
    if (column.holds_values()) {
      fill_values(column, row.fields[i]);
      continue;
    }
    const std::string field = card::completed_cell(file_name_, column.position.attribute, row.fields[i]);
    std::string stored;
    if (const std::string wrong = read_field(codec_, column, field, stored); !wrong.empty()) {
      fault(row.line, name_of(column.position, file_name_) + " : " + wrong);
      pending_->good = false;
    } else if (element(pending_->record, column.position) != stored) {
      set_element(pending_->record, column.position, stored);
    }
  }
}

void Import::fill_values(const Column& column, std::string_view field) {
  DbRecord& record = pending_->record;
  const int attribute = column.position.attribute;
  std::string values;
  for (std::size_t at = 0; at <= field.size();) {
    const std::size_t end = std::min(field.find(kValueSeparator, at), field.size());
    if (at > 0) values += kValueSeparator;
    values += card::completed_cell(file_name_, attribute, field.substr(at, end - at));
    at = end + 1;
  }
  if (pending_->rows == 1 && !record(attribute).empty()) record.set(attribute, {});
  set_values(record, attribute, pending_->rows, values);
}

// The record that was read so far is complete.
void Import::take_record() {
  if (!pending_) return;
  if (pending_->good && cards_) finish_card();
  if (!pending_->good) return pending_.reset();
  const bool is_new = !pending_->before;
  if (!is_new && *pending_->before == pending_->record) {
    ++report_.unchanged;
  } else {
    (is_new ? report_.created : report_.changed).push_back({pending_->id, changes_of_record()});
    changes_.push_back({pending_->id, pending_->record.encoded()});
  }
  pending_.reset();
}

void Import::finish_card() {
  const DbRecord* before = pending_->before ? &*pending_->before : nullptr;
  const auto findings = cards_->finish(pending_->id, before, pending_->record);
  for (const card::Fault& found : findings.faults) fault(pending_->line, found.sentence());
  auto& unknown = options_.accept_unknown ? report_.remarks : report_.faults;
  for (const card::Fault& found : findings.unknown_codes)
    unknown.push_back({pending_->line, found.sentence()});
  report_.unknown_codes |= !options_.accept_unknown && !findings.unknown_codes.empty();
  pending_->good = findings.faults.empty() && (options_.accept_unknown || findings.unknown_codes.empty());
}

std::vector<std::string> Import::changes_of_record() const {
  std::vector<std::string> changes;
  if (!pending_->before) return changes;
  for (const Column& column : columns_) {
    if (column.id != IdPart::kNone) continue;
    if (element(*pending_->before, column.position) != element(pending_->record, column.position))
      changes.push_back(name_of(column.position, file_name_));
  }
  return changes;
}

void Import::write() {
  for (const Change& change : changes_) file_->write(change.id, DbRecord::from_trusted(change.content));
}

}  // namespace

ImportReport import_csv(std::istream& in, store::Database& database, std::string_view file,
                        const ImportOptions& options, const std::function<void()>& row_read) {
  ImportReport report;
  const auto run = [&] { report = Import(in, database, file, options).run(row_read); };
  // What is read of the records that exist must still be so when they are written.
  options.rehearsal ? database.in_one_view(run) : database.in_one_change(run);
  return report;
}

}  // namespace velanor::exchange
