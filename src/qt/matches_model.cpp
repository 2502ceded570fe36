#include "qt/matches_model.h"

#include <algorithm>

#include "qt/lines_model.h"
#include "qt/strings.h"
#include "text/fold.h"

namespace velanor::qt {
namespace {

std::vector<int> lines_with(const std::vector<std::string>& lines, const std::string& typed) {
  std::vector<int> found, later;
  if (typed.empty()) return found;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::size_t at = lines[i].find(typed);
    if (at != std::string::npos) (at == 0 ? found : later).push_back(static_cast<int>(i));
  }
  found.insert(found.end(), later.begin(), later.end());
  return found;
}

}  // namespace

void MatchesModel::setSourceModel(QAbstractItemModel* lines) {
  beginResetModel();
  QAbstractProxyModel::setSourceModel(lines);
  connect(lines, &QAbstractItemModel::modelReset, this, [this] { forget(); });
  endResetModel();
  forget();
}

void MatchesModel::forget() {
  beginResetModel();
  lines_.clear();
  notes_.clear();
  found_.clear();
  endResetModel();
}

std::vector<std::string> MatchesModel::folded_column(int role) const {
  std::vector<std::string> column;
  const int count = sourceModel()->rowCount();
  column.reserve(static_cast<std::size_t>(count));
  for (int row = 0; row < count; ++row)
    column.push_back(text::folded(from_qt(sourceModel()->index(row, 0).data(role).toString())));
  return column;
}

void MatchesModel::look_for(const QString& typed) {
  const std::string folded = text::folded(from_qt(typed));
  if (lines_.empty()) {
    lines_ = folded_column(Qt::DisplayRole);
    notes_ = folded_column(LinesModel::kNoteRole);
  }
  beginResetModel();
  found_ = lines_with(lines_, folded);
  if (found_.empty()) found_ = lines_with(notes_, folded);
  endResetModel();
}

QModelIndex MatchesModel::mapToSource(const QModelIndex& index) const {
  const auto row = static_cast<std::size_t>(index.row());
  return index.isValid() && row < found_.size() ? sourceModel()->index(found_[row], 0) : QModelIndex();
}

QModelIndex MatchesModel::mapFromSource(const QModelIndex& index) const {
  const auto at = std::find(found_.begin(), found_.end(), index.row());
  return at == found_.end() ? QModelIndex() : createIndex(static_cast<int>(at - found_.begin()), 0);
}

QModelIndex MatchesModel::index(int row, int column, const QModelIndex& parent) const {
  return !parent.isValid() && row >= 0 && row < rowCount() && column == 0 ? createIndex(row, column)
                                                                          : QModelIndex();
}

int MatchesModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(found_.size());
}

}  // namespace velanor::qt
