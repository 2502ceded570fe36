#include "app/velanor/record_table.h"

#include <algorithm>
#include <sstream>

#include "exchange/csv.h"
#include "exchange/export_csv.h"
#include "qt/strings.h"
#include "text/fold.h"

namespace velanor::app {

using qt::from_qt, qt::to_qt;

RecordTable read_table(store::Database& database, const std::string& file,
                       const std::function<void(double)>& progressed) {
  constexpr int kStep = 256;
  std::stringstream text;
  int read = 0;
  exchange::export_csv(text, database, file, {.headings = exchange::Headings::kNames}, [&] {
    if (++read % kStep == 0) progressed(-1);
  });
  exchange::CsvReader reader(text);
  RecordTable table;
  exchange::CsvRow row;
  if (reader.next(row)) table.headings = std::move(row.fields);
  while (reader.next(row)) {
    std::string whole;
    for (const std::string& field : row.fields) whole.append(field).append("\n");
    table.folded.push_back(text::folded(whole));
    table.rows.push_back(std::move(row.fields));
  }
  return table;
}

void RecordTableModel::show(RecordTable table) {
  beginResetModel();
  table_ = std::move(table);
  filter();
  endResetModel();
}

void RecordTableModel::set_filter(const QString& typed) {
  beginResetModel();
  typed_ = typed;
  filter();
  endResetModel();
}

void RecordTableModel::filter() {
  std::vector<std::string> words;
  for (const QString& word : typed_.split(' ', Qt::SkipEmptyParts))
    words.push_back(text::folded(from_qt(word)));
  shown_.clear();
  for (std::size_t row = 0; row < table_.rows.size(); ++row) {
    const auto holds = [&](const std::string& word) {
      return table_.folded[row].find(word) != std::string::npos;
    };
    if (std::all_of(words.begin(), words.end(), holds)) shown_.push_back(row);
  }
}

int RecordTableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}

int RecordTableModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(table_.headings.size());
}

QVariant RecordTableModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole)) return {};
  const auto& row = table_.rows[shown_[static_cast<std::size_t>(index.row())]];
  const auto column = static_cast<std::size_t>(index.column());
  return column < row.size() ? to_qt(row[column]) : QString();
}

QVariant RecordTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal) return {};
  if (role == Qt::TextAlignmentRole) return static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter);
  if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
  return to_qt(table_.headings[static_cast<std::size_t>(section)]);
}

}  // namespace velanor::app
