#include "qt/lines_model.h"

#include <QBrush>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QPalette>
#include <QSize>
#include <algorithm>
#include <functional>
#include <utility>

#include "qt/strings.h"

namespace velanor::qt {

namespace {

// The style leaves the accents of capitals no room.
int line_height() { return QFontMetrics(QGuiApplication::font()).height() + 5; }

}  // namespace

LinesModel::LinesModel(std::vector<const screen::Lines*> lists, QObject* parent)
    : QAbstractTableModel(parent), lists_(std::move(lists)) {}

// Lines that were replaced by the same ones have not changed for who looks at them.
std::size_t LinesModel::fingerprint() const {
  std::size_t sum = 0;
  for (const screen::Lines* list : lists_) {
    sum = sum * 31 + static_cast<std::size_t>(list->count());
    for (const std::string& line : list->items()) sum = sum * 31 + std::hash<std::string>{}(line);
  }
  if (notes_) {
    for (const std::string& note : *notes_) sum = sum * 31 + std::hash<std::string>{}(note);
  }
  return sum;
}

std::uint64_t LinesModel::lines_revision() const {
  std::uint64_t sum = 0;
  for (const screen::Lines* list : lists_) sum += list->lines_revision();
  return sum;
}

bool LinesModel::update() {
  if (std::exchange(looked_at_, lines_revision()) == lines_revision()) return false;
  const std::size_t now = fingerprint();
  if (now == known_) return false;
  beginResetModel();
  known_ = now;
  rows_ = lists_.front()->count();
  endResetModel();
  return true;
}

int LinesModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : rows_; }

int LinesModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(lists_.size());
}

QVariant LinesModel::data(const QModelIndex& index, int role) const {
  if (role == Qt::TextAlignmentRole) return alignment(index.column());
  if (role == Qt::SizeHintRole) return QSize(0, line_height());
  if (!index.isValid()) return {};
  if (role == kNoteRole) return note(index.row());
  const QString line = to_qt(lists_[static_cast<std::size_t>(index.column())]->line(index.row()));
  // Who hears the list is to tell alike lines apart as well.
  if (role == Qt::AccessibleTextRole) {
    const QString beside = note(index.row());
    return beside.isEmpty() ? line : line.isEmpty() ? beside : line + ", " + beside;
  }
  if (role == Qt::ToolTipRole) return hint(index, line);
  return role == Qt::DisplayRole || role == Qt::EditRole ? line : QVariant();
}

// A code in a column says what it stands for, where the list of its entry knows it.
QString LinesModel::hint(const QModelIndex& index, const QString& line) const {
  const screen::TableColumn* column = column_at(index.column());
  const auto* box = column ? dynamic_cast<const screen::ComboBox*>(column->entry) : nullptr;
  const int at = box ? box->find(from_qt(line)) : -1;
  const auto known = static_cast<std::size_t>(at);
  if (at < 0 || known >= box->notes().size() || box->notes()[known].empty()) return line;
  return line + QStringLiteral(" – ") + to_qt(box->notes()[known]);
}

QString LinesModel::note(int row) const {
  const auto r = static_cast<std::size_t>(row);
  return notes_ && r < notes_->size() ? to_qt((*notes_)[r]) : QString();
}

const screen::TableColumn* LinesModel::column_at(int column) const {
  const auto c = static_cast<std::size_t>(column);
  return columns_ && c < columns_->size() ? &(*columns_)[c] : nullptr;
}

QVariant LinesModel::alignment(int column) const {
  const screen::TableColumn* known = column_at(column);
  const auto side = known && known->figures ? Qt::AlignRight : Qt::AlignLeft;
  return QVariant::fromValue(Qt::Alignment(side | Qt::AlignVCenter));
}

// The style's own ink for a heading that is out of use can hardly be read.
QVariant LinesModel::ink(const screen::TableColumn& column) const {
  const bool used = column.heading->enabled() || (column.entry && column.entry->enabled());
  return QGuiApplication::palette().brush(used ? QPalette::Active : QPalette::Disabled, QPalette::Text);
}

QVariant LinesModel::headerData(int section, Qt::Orientation orientation, int role) const {
  const screen::TableColumn* column = column_at(section);
  if (orientation != Qt::Horizontal || !column || !column->heading) return {};
  if (role == Qt::TextAlignmentRole)
    return QVariant::fromValue(alignment(section).value<Qt::Alignment>() | Qt::Alignment(Qt::TextWordWrap));
  if (role == Qt::ForegroundRole) return ink(*column);
  if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
  return to_qt(column->heading->caption());
}

}  // namespace velanor::qt
