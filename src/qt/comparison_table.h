// What two users have changed at once, a row each, and whose change is taken.
#pragma once

#include <QTableWidget>
#include <optional>
#include <vector>

#include "velanor/screen.h"

namespace velanor::qt {

// Left takes what stands on the other station, Right what was entered here; a click on either does so too.
// Nothing is taken beforehand, so that no Enter decides anything unseen.
class ComparisonTable : public QTableWidget {
  Q_OBJECT

 public:
  explicit ComparisonTable(const std::vector<screen::Comparison::Line>& lines);

  const std::vector<screen::Comparison::Line>& lines() const { return lines_; }
  bool is_complete() const;
  // In the order of the lines; for those that are not chosen yet the other's.
  std::vector<screen::Answer> answers() const;
  // As a click on the cell of that answer.
  void choose(int row, screen::Answer answer);

 signals:
  void chosen();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void show_choice(int row);
  // To the first row below that is not chosen yet, else the first one at all.
  void go_on();

  std::vector<screen::Comparison::Line> lines_;
  std::vector<std::optional<screen::Answer>> answers_;
};

}  // namespace velanor::qt
