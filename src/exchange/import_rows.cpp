#include "exchange/import_rows.h"

#include <algorithm>
#include <numeric>
#include <tuple>
#include <utility>

#include "card/record/known_files.h"
#include "demo/table.h"
#include "text/utf8.h"

namespace velanor::exchange {

using store::DbRecord;

namespace {

// Whether two name the same element, or one a part of the other's.
bool overlap(const store::Position& a, const store::Position& b) {
  const auto meet = [](int one, int other) { return one == 0 || other == 0 || one == other; };
  return a.attribute != 0 && a.attribute == b.attribute && meet(a.value, b.value) &&
         meet(a.subvalue, b.subvalue);
}

}  // namespace

ImportRows::ImportRows(std::shared_ptr<TableSource> source, store::Database& database, std::string_view file,
                       const ImportOptions& options)
    : options_(options),
      reader_(std::move(source), static_cast<std::size_t>(options.limits.columns)),
      database_(database),
      file_name_(file),
      file_(database.OpenFile(file)),
      entry_(entry::make_util_saisie(options.clock)) {}

void ImportRows::read(const std::function<void()>& row_read) {
  if (!read_header()) return;
  if (is_cards()) cards_.emplace(database_, columns_, options_.clock);
  plan_columns();
  CsvRowView row;
  while (reader_.next(row)) {
    if (++rows_ > options_.limits.rows)
      pass_limit(row.line, "le tableau a plus de " + std::to_string(options_.limits.rows) + " lignes");
    if (report_.too_large) break;
    read_row(row);
    row_read();
  }
  take_record();
  // Not needed while the records are written, which is when most memory is.
  ids_ = {};
  // What a record has was found when the row behind it was read.
  std::stable_sort(report_.faults.begin(), report_.faults.end(),
                   [](const ImportRemark& a, const ImportRemark& b) { return a.line < b.line; });
}

void ImportRows::fault(int line, const std::string& sentence) { note(report_.faults, line, sentence); }

void ImportRows::note(std::vector<ImportRemark>& list, int line, const std::string& sentence) {
  if (list.size() < static_cast<std::size_t>(options_.limits.remarks))
    list.push_back({line, sentence});
  else
    ++report_.remarks_left_out;
}

// ---- The first row.

bool ImportRows::read_header() {
  CsvRow header;
  if (!reader_.fault().empty()) {
    fault(reader_.fault_line(), reader_.fault());
  } else if (!reader_.next(header)) {
    fault(1, "le tableau est vide ; sa première ligne doit nommer les colonnes");
  } else {
    if (reader_.was_windows_1252())
      note(report_.remarks, 1, "le tableau n'est pas en UTF-8 ; il est lu en Windows-1252");
    read_headings(header);
  }
  return report_.faults.empty();
}

void ImportRows::read_headings(const CsvRow& header) {
  if (!header.fault.empty()) fault(header.line, header.fault);
  report_.too_large = header.too_many_fields;
  std::vector<std::string> headings = header.fields;
  // Columns without anything, as spreadsheets write beside a table.
  while (!headings.empty() && text::trim(headings.back()).empty()) headings.pop_back();
  for (const std::string& heading : headings) add_column(header.line, heading);
  if (report_.faults.empty() && !has_id()) {
    fault(header.line, is_cards()
                           ? "il faut une colonne « id », ou les colonnes « Code », « Entité » et « Année »"
                           : "il faut une colonne « id »");
  }
}

void ImportRows::add_column(int line, const std::string& heading) {
  const auto column = column_of(heading, file_name_);
  if (!column) fault(line, "la colonne « " + heading + " » n'est pas connue");
  const auto overlaps = [&](const Column& other) { return overlap(column->position, other.position); };
  if (column && std::any_of(columns_.begin(), columns_.end(), overlaps))
    fault(line, "la colonne « " + heading + " » est là deux fois");
  columns_.push_back(column.value_or(Column{}));
}

bool ImportRows::has_id() const {
  const auto count = [this](IdPart part) {
    return std::count_if(columns_.begin(), columns_.end(),
                         [=](const Column& column) { return column.id == part; });
  };
  const auto whole = count(IdPart::kWhole);
  const auto code = count(IdPart::kEmployee), entity = count(IdPart::kEntity), year = count(IdPart::kYear);
  return (whole == 1 && code + entity + year == 0) || (whole == 0 && code == 1 && entity == 1 && year == 1);
}

// A value to each row has room for it only where no column names one.
bool ImportRows::may_be_spelt_out() const {
  return card::is_list_file(file_name_) &&
         std::all_of(columns_.begin(), columns_.end(), [](const Column& column) {
           return column.id != IdPart::kNone || column.holds_values();
         });
}

void ImportRows::plan_columns() {
  std::vector<std::size_t> in_order(columns_.size());
  std::iota(in_order.begin(), in_order.end(), std::size_t{0});
  const auto position = [this](std::size_t column) {
    const store::Position& at = columns_[column].position;
    return std::tuple(at.attribute, at.value, at.subvalue);
  };
  std::sort(in_order.begin(), in_order.end(),
            [&](std::size_t a, std::size_t b) { return position(a) < position(b); });
  places_.resize(columns_.size());
  for (std::size_t place = 0; place < in_order.size(); ++place) places_[in_order[place]] = place;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    completed_.push_back(card::has_codes(file_name_, columns_[i].position.attribute));
    if (columns_[i].id != IdPart::kNone) id_columns_.push_back(i);
  }
  texts_.reserve(columns_.size());
  filled_.reserve(columns_.size());
}

// ---- The other rows.

// A table that is too large is told once, and read no further.
void ImportRows::pass_limit(int line, const std::string& sentence) {
  if (!report_.too_large) fault(line, sentence);
  report_.too_large = true;
}

void ImportRows::read_row(CsvRowView& row) {
  if (!row.fault.empty()) return fault(row.line, row.fault);
  if (!fits_columns(row)) return;
  std::string id;
  if (!find_id(row, id)) return;
  if (!begin_record(row.line, id)) return;
  fill(row);
}

bool ImportRows::fits_columns(CsvRowView& row) {
  while (row.fields.size() > columns_.size() && text::trim(row.fields.back()).empty()) row.fields.pop_back();
  const std::size_t fields = row.fields.size();
  if (fields == columns_.size()) return true;
  fault(row.line, std::to_string(fields) + (fields > 1 ? " champs" : " champ") + " au lieu de " +
                      std::to_string(columns_.size()));
  return false;
}

bool ImportRows::find_id(const CsvRowView& row, std::string& id) {
  std::string wrong;
  id = id_of(row, wrong);
  if (id.empty()) fault(row.line, wrong);
  return !id.empty();
}

std::string ImportRows::id_of(const CsvRowView& row, std::string& wrong) const {
  std::string whole;
  CardIdParts parts;
  for (const std::size_t i : id_columns_) {
    const std::string_view field = text::trim(row.fields[i]);
    if (columns_[i].id == IdPart::kWhole) whole = row.fields[i];
    if (columns_[i].id == IdPart::kEmployee) parts.employee = field;
    if (columns_[i].id == IdPart::kEntity) parts.entity = field;
    if (columns_[i].id == IdPart::kYear) parts.year = field;
  }
  if (id_columns_.size() > 1) return card_id(parts, wrong);
  if (text::trim(whole).empty()) {
    wrong = "l'identifiant est vide";
    return {};
  }
  if (is_cards()) return card_id(whole, wrong);
  const auto id = card::completed_id(file_name_, whole);
  if (!id) wrong = "« " + whole + " » n'est pas un identifiant de " + file_name_;
  return id.value_or(std::string());
}

bool ImportRows::begin_record(int line, const std::string& id) {
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

void ImportRows::fill(const CsvRowView& row) {
  ++pending_->rows;
  read_texts(row);
  if (!pending_->good) return;
  if (!pending_->before && pending_->rows == 1) return build_record();
  change_record();
}

void ImportRows::read_texts(const CsvRowView& row) {
  texts_.clear();
  filled_.clear();
  made_.clear();
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (columns_[i].id != IdPart::kNone) continue;
    if (row.fields[i].empty()) {
      // Of what is new nothing is to be emptied.
      if (pending_->before || pending_->rows > 1) texts_.push_back({i, {}});
      continue;
    }
    filled_.push_back(i);
    texts_.push_back({i, text_of(row.line, i, row.fields[i])});
  }
}

// What is stored for a field; of several values between bars still.
std::string_view ImportRows::text_of(int line, std::size_t at, std::string_view field) {
  const Column& column = columns_[at];
  if (completed_[at]) field = made_.emplace_back(completed(column, field));
  if (column.named == nullptr) return field;
  std::string& stored = made_.emplace_back();
  if (const std::string wrong = read_field(codec_, column, field, stored); !wrong.empty()) {
    fault(line, name_of(column.position, file_name_) + " : " + wrong);
    pending_->good = false;
  }
  return stored;
}

std::string ImportRows::completed(const Column& column, std::string_view field) const {
  const int attribute = column.position.attribute;
  if (!column.holds_values()) return card::completed_cell(file_name_, attribute, field);
  std::string values;
  for (const std::string_view value : demo::split(field, kValueSeparator)) {
    if (value.data() != field.data()) values += kValueSeparator;
    values += card::completed_cell(file_name_, attribute, value);
  }
  return values;
}

void ImportRows::build_record() {
  const auto before = [this](const ColumnText& a, const ColumnText& b) {
    return places_[a.column] < places_[b.column];
  };
  if (!std::is_sorted(texts_.begin(), texts_.end(), before)) std::sort(texts_.begin(), texts_.end(), before);
  for (const auto& [at, text] : texts_) {
    const Column& column = columns_[at];
    if (!column.holds_values()) {
      if (!text.empty()) builder_.add(column.position, text);
      continue;
    }
    store::Position position{column.position.attribute};
    for (std::size_t begin = 0; begin <= text.size();) {
      const std::size_t end = std::min(text.find(kValueSeparator, begin), text.size());
      ++position.value;
      if (end > begin) builder_.add(position, text.substr(begin, end - begin));
      begin = end + 1;
    }
  }
  pending_->record = builder_.take();
}

void ImportRows::change_record() {
  for (const auto& [at, text] : texts_) {
    const Column& column = columns_[at];
    if (column.holds_values())
      fill_values(column, text);
    else if (element(pending_->record, column.position) != text)
      set_element(pending_->record, column.position, text);
  }
}

void ImportRows::fill_values(const Column& column, std::string_view values) {
  DbRecord& record = pending_->record;
  const int attribute = column.position.attribute;
  if (pending_->rows == 1 && !record(attribute).empty()) record.set(attribute, {});
  set_values(record, attribute, pending_->rows, values);
}

// The record that was read so far is complete.
void ImportRows::take_record() {
  if (!pending_) return;
  if (pending_->good && cards_) finish_card();
  if (!pending_->good) return pending_.reset();
  const bool is_new = !pending_->before;
  if (!is_new && *pending_->before == pending_->record) {
    ++report_.unchanged;
  } else {
    (is_new ? report_.created : report_.changed).push_back({pending_->id, changes_of_record()});
    changes_.add(pending_->id, pending_->before, pending_->record);
    bytes_ += pending_->record.encoded().size();
    if (bytes_ > options_.limits.bytes) {
      pass_limit(pending_->line, "jusqu'ici, les enregistrements prennent plus de " +
                                     std::to_string(options_.limits.bytes >> 20) + " Mo");
    }
  }
  pending_.reset();
}

void ImportRows::finish_card() {
  const DbRecord* before = pending_->before ? &*pending_->before : nullptr;
  const auto findings = cards_->finish(pending_->id, before, filled_, pending_->record);
  for (const card::Fault& found : findings.faults) fault(pending_->line, found.sentence());
  auto& unknown = options_.accept_unknown ? report_.remarks : report_.faults;
  for (const card::Fault& found : findings.unknown_codes) note(unknown, pending_->line, found.sentence());
  for (const card::Fault& found : findings.remarks) note(report_.remarks, pending_->line, found.sentence());
  report_.unknown_codes |= !options_.accept_unknown && !findings.unknown_codes.empty();
  pending_->good = findings.faults.empty() && (options_.accept_unknown || findings.unknown_codes.empty());
}

std::vector<std::string> ImportRows::changes_of_record() const {
  std::vector<std::string> changes;
  if (!pending_->before) return changes;
  for (const Column& column : columns_) {
    if (column.id != IdPart::kNone) continue;
    if (element(*pending_->before, column.position) != element(pending_->record, column.position))
      changes.push_back(name_of(column.position, file_name_));
  }
  return changes;
}

}  // namespace velanor::exchange
