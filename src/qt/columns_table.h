// Parallel lists shown as one table: one selection, one scroll bar.
#pragma once

#include <QTableView>
#include <functional>
#include <vector>

namespace velanor::qt {

class ColumnsTable : public QTableView {
 public:
  explicit ColumnsTable(QWidget* parent = nullptr);

  // Arrows and Enter are the owner's: true when it has dealt with the key.
  std::function<bool(QKeyEvent&)> on_key;
  // The columns stand over these widgets, as wide as they are; the user does not size them.
  void stand_over(std::vector<QWidget*> widgets);
  // What the form file asks for as `preferredSize`.
  QSize sizeHint() const override;
  // The headings and a few lines.
  QSize minimumSizeHint() const override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  // Shows the focus, also where no line is selected.
  void paintEvent(QPaintEvent* event) override;

 private:
  void align();
  void fit_headings();
  std::vector<QWidget*> below_;
};

}  // namespace velanor::qt
