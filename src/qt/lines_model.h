// The lines of combo boxes and list boxes as the toolkit's item models. They are read when they are
// drawn, so that any number of them opens at once.
#pragma once

#include <QAbstractTableModel>
#include <vector>

#include "velanor/form.h"

namespace velanor::qt {

// One column for each of the lists, which are parallel and outlive the model.
class LinesModel : public QAbstractTableModel {
 public:
  LinesModel(std::vector<const screen::Lines*> lists, QObject* parent);

  // What stands beside a line.
  static constexpr int kNoteRole = Qt::UserRole;
  // The notes of the first list; they outlive the model.
  void set_notes(const std::vector<std::string>& notes) { notes_ = &notes; }

  // Resets when the lines are others than before. Whether it did.
  bool update();
  // What the form knows of the columns; outlives the model. A heading also names the field of the entry under
  // its column, and is in use as long as one of the two is.
  void set_columns(const screen::TableColumns& columns) { columns_ = &columns; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  QVariant alignment(int column) const;
  QVariant ink(const screen::TableColumn& column) const;
  QString note(int row) const;
  QString hint(const QModelIndex& index, const QString& line) const;
  std::size_t fingerprint() const;
  std::uint64_t lines_revision() const;
  const screen::TableColumn* column_at(int column) const;

  std::vector<const screen::Lines*> lists_;
  const screen::TableColumns* columns_ = nullptr;
  const std::vector<std::string>* notes_ = nullptr;
  int rows_ = 0;
  // Of the lines that are shown.
  std::size_t known_ = 0;
  std::uint64_t looked_at_ = 0;
};

}  // namespace velanor::qt
