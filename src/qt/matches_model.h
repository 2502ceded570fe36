// The lines of a list that hold what was typed, at any place.
#pragma once

#include <QAbstractProxyModel>
#include <string>
#include <vector>

namespace velanor::qt {

// Over the first column of a LinesModel. Accents and case are set aside, and so are the notes beside the
// lines as long as a line itself holds what was typed. The lines are folded once per list.
class MatchesModel : public QAbstractProxyModel {
 public:
  explicit MatchesModel(QObject* parent) : QAbstractProxyModel(parent) {}

  void setSourceModel(QAbstractItemModel* lines) override;
  // Those that begin so stand first.
  void look_for(const QString& typed);
  // The only one, or -1.
  int only_line() const { return found_.size() == 1 ? found_.front() : -1; }

  QModelIndex mapToSource(const QModelIndex& index) const override;
  QModelIndex mapFromSource(const QModelIndex& index) const override;
  QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
  QModelIndex parent(const QModelIndex&) const override { return {}; }
  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : 1; }

 private:
  void forget();
  std::vector<std::string> folded_column(int role) const;

  std::vector<std::string> lines_;
  std::vector<std::string> notes_;
  std::vector<int> found_;
};

}  // namespace velanor::qt
