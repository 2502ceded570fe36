// A combo box over the lines of a control, of any number.
#pragma once

#include <QComboBox>
#include <functional>

namespace velanor::qt {

class MatchesModel;
class TextEdit;

class ComboEdit : public QComboBox {
 public:
  explicit ComboEdit(QWidget* parent = nullptr);

  // Makes the text editable, and completes it from the lines as the user types.
  TextEdit& make_editable();
  // The lines that may stand under the text, in order.
  void set_lines(QAbstractItemModel& lines);
  // The line that is the only one offered, or -1.
  int only_completion() const;
  // The line under the bar of those that are offered, or -1.
  int completion_under_bar() const;
  void hide_completion();
  bool completing() const;

  // Asked before the list opens: it may be filled then. False keeps it closed.
  std::function<bool()> before_opening;
  // Before the user chooses a line, by whatever way.
  std::function<void()> before_choice;
  void showPopup() override;

  // As wide as the lines need, within the window.
  void size_list(QWidget& list) const;
  void put_bar_on_text();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  int widest_line() const;

  MatchesModel* matches_ = nullptr;
  mutable int widest_ = -1;  // of the lines that stand; -1: not measured
};

}  // namespace velanor::qt
