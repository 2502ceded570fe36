// The records of a file, as the rows of a table that is searched.
#pragma once

#include <QAbstractTableModel>
#include <string>
#include <vector>

#include "velanor/database.h"

namespace velanor::app {

// As an export writes them; read beside the window.
struct RecordTable {
  std::vector<std::string> headings;
  std::vector<std::vector<std::string>> rows;
  std::vector<std::string> folded;  // a row as it is searched
};
RecordTable read_table(store::Database& database, const std::string& file,
                       const std::function<void(double)>& progressed);

class RecordTableModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  using QAbstractTableModel::QAbstractTableModel;

  void show(RecordTable table);
  // Of the rows those that hold all of the words, accents and case aside.
  void set_filter(const QString& typed);
  int total() const { return static_cast<int>(table_.rows.size()); }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  void filter();

  RecordTable table_;
  QString typed_;
  std::vector<std::size_t> shown_;
};

}  // namespace velanor::app
