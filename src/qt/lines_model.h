// The lines of combo boxes and list boxes as the toolkit's item models. They are read when they are
// drawn, so that any number of them opens at once.
#pragma once

#include <QAbstractTableModel>
#include <vector>

#include "velanor/control.h"

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
  // The headings are the labels' captions. A heading also names the field of the entry under its column,
  // and is in use as long as one of the two is.
  void set_headings(std::vector<const screen::Control*> labels, std::vector<const screen::Control*> entries) {
    headings_ = std::move(labels);
    entries_ = std::move(entries);
  }
  // Figures stand at the right.
  void set_figures(std::vector<bool> columns) { figures_ = std::move(columns); }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  QVariant alignment(int column) const;
  QVariant ink(std::size_t column) const;
  QString note(int row) const;
  QString hint(const QModelIndex& index, const QString& line) const;
  std::size_t fingerprint() const;

  std::vector<const screen::Lines*> lists_;
  std::vector<const screen::Control*> headings_;
  std::vector<const screen::Control*> entries_;
  std::vector<bool> figures_;
  const std::vector<std::string>* notes_ = nullptr;
  int rows_ = 0;
  std::size_t known_ = 0;
};

}  // namespace velanor::qt
