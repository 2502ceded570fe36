#include "qt/table_copy.h"

#include <QStringList>

#include "qt/strings.h"

namespace velanor::qt {
namespace {

QString heading(const screen::TableColumn& column) {
  return column.heading ? to_qt(column.heading->caption()) : QString();
}

QString cell(const screen::TableColumn& column, int row) {
  const std::string_view line = column.list->line(row);
  return to_qt(column.part ? column.part(line) : line).trimmed();
}

}  // namespace

QString table_text(const screen::TableColumns& columns, int line) {
  const auto row_of = [&](const auto& cell_of) {
    QStringList cells;
    for (const screen::TableColumn& column : columns) cells << cell_of(column);
    return cells.join(u'\t') + u'\n';
  };
  QString text = row_of(heading);
  for (int row = 0; row < columns.front().list->count(); ++row) {
    if (line < 0 || row == line) text += row_of([row](const auto& column) { return cell(column, row); });
  }
  return text;
}

}  // namespace velanor::qt
