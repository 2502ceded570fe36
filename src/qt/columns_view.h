// List boxes, alone or parallel.
#pragma once

#include "qt/columns_table.h"
#include "qt/lines_model.h"
#include "qt/view.h"

namespace velanor::qt {

// One table for list boxes whose lines belong together. It stands for the list box that has the focus,
// or for the first.
class ColumnsView : public View {
 public:
  ColumnsView(Acts& acts, screen::TableColumns columns, ColumnsTable& table, QObject& parent);

  screen::Control& control() const override;
  std::vector<const screen::Control*> controls() const override;
  // The selected line (every one where none is), or every one, into the clipboard, also where the list is out
  // of use.
  void copy_line() const;
  void copy_table() const;

 protected:
  void show() override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  screen::ListBox& list_at(int column) const;
  bool press(const QPoint& at, bool twice);
  void offer_copies(const QPoint& at);
  bool key(QKeyEvent& event);
  void pick(int line);
  void double_click(screen::ListBox& list, int line);

  screen::TableColumns columns_;
  std::vector<screen::ListBox*> lists_;  // of the columns, each once
  ColumnsTable& table_;
  // To compare with: events still come while the table is being destroyed, and is none any more.
  const QObject* viewport_;
  LinesModel* lines_;
};

}  // namespace velanor::qt
