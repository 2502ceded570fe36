// Twelve months and their sum, in five lines.
#pragma once

#include <QTableWidget>

#include "office/card_year.h"

namespace velanor::app {

// Cells are chosen and copied, not changed; Tab leaves it. Days out of the contract, or without an amendment,
// are hatched over their part of the month. Each cell tells its whole month to assistive tools and the
// pointer.
class YearTable : public QTableWidget {
 public:
  explicit YearTable(QWidget* parent = nullptr);

  void show_year(const office::CardYear& year);
  void clear_year();

  // As high as its lines, and the bar that moves them where the window is narrow.
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override {
    return {QTableWidget::minimumSizeHint().width(), sizeHint().height()};
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void fit_lines();
  void show_month(const office::CardYear& year, int month);
  void copy() const;
};

}  // namespace velanor::app
