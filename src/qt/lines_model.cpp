#include "qt/lines_model.h"

#include <QBrush>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QPalette>
#include <QSize>
#include <algorithm>
#include <functional>

#include "qt/strings.h"

namespace velanor::qt {

namespace {

// The style leaves the accents of capitals no room.
int line_height() { return QFontMetrics(QGuiApplication::font()).height() + 5; }

}  // namespace

LinesModel::LinesModel(std::vector<const screen::Lines*> lists, QObject* parent)
    : QAbstractTableModel(parent), lists_(std::move(lists)) {}

// The controls do not tell a change of their lines from one of their text, which comes at every key.
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

bool LinesModel::update() {
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
  const auto c = static_cast<std::size_t>(index.column());
  const auto* box = c < entries_.size() ? dynamic_cast<const screen::ComboBox*>(entries_[c]) : nullptr;
  const int at = box ? box->find(from_qt(line)) : -1;
  const auto known = static_cast<std::size_t>(at);
  if (at < 0 || known >= box->notes().size() || box->notes()[known].empty()) return line;
  return line + QStringLiteral(" – ") + to_qt(box->notes()[known]);
}

QString LinesModel::note(int row) const {
  const auto r = static_cast<std::size_t>(row);
  return notes_ && r < notes_->size() ? to_qt((*notes_)[r]) : QString();
}

QVariant LinesModel::alignment(int column) const {
  const auto c = static_cast<std::size_t>(column);
  const bool right = c < figures_.size() && figures_[c];
  return QVariant::fromValue(Qt::Alignment((right ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter));
}

// The style's own ink for a heading that is out of use can hardly be read.
QVariant LinesModel::ink(std::size_t column) const {
  const bool used = headings_[column]->enabled() || entries_[column]->enabled();
  return QGuiApplication::palette().brush(used ? QPalette::Active : QPalette::Disabled, QPalette::Text);
}

QVariant LinesModel::headerData(int section, Qt::Orientation orientation, int role) const {
  const auto c = static_cast<std::size_t>(section);
  if (orientation != Qt::Horizontal || c >= headings_.size()) return {};
  if (role == Qt::TextAlignmentRole)
    return QVariant::fromValue(alignment(section).value<Qt::Alignment>() | Qt::Alignment(Qt::TextWordWrap));
  if (role == Qt::ForegroundRole) return ink(c);
  if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
  return to_qt(headings_[c]->caption());
}

}  // namespace velanor::qt
