#include "qt/table_copy.h"

#include <QStringList>

#include "card/record/activity_line.h"
#include "qt/lines_model.h"
#include "qt/strings.h"

namespace velanor::qt {
namespace {

QString caption(const screen::Form& form, const char* label) {
  const screen::Control* control = form.find(label);
  return control ? to_qt(control->caption()) : QString();
}

QStringList columns(const LinesModel& lines, int line) {
  QStringList cells;
  for (int c = 0; c < lines.columnCount(); ++c)
    cells << lines.index(line, c).data(Qt::DisplayRole).toString().trimmed();
  return cells;
}

QStringList headings(const LinesModel& lines) {
  QStringList cells;
  for (int c = 0; c < lines.columnCount(); ++c)
    cells << lines.headerData(c, Qt::Horizontal, Qt::DisplayRole).toString();
  return cells;
}

QStringList activity(const screen::ListBox& list, int line) {
  const std::string_view text = list.line(line);
  return {to_qt(card::activity_label(text)), to_qt(card::activity_share(text))};
}

}  // namespace

QString table_text(const screen::ListBox& first, const LinesModel& lines, int line) {
  const screen::Form& form = first.form();
  const bool one_list = lines.columnCount() == 1;
  const QStringList heads =
      one_list ? QStringList{caption(form, "Etq_Activite"), caption(form, "Etq_Pourc")} : headings(lines);
  QString text = heads.join(u'\t') + u'\n';
  for (int row = 0; row < first.count(); ++row) {
    if (line >= 0 && row != line) continue;
    text += (one_list ? activity(first, row) : columns(lines, row)).join(u'\t') + u'\n';
  }
  return text;
}

}  // namespace velanor::qt
