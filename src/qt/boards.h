// The boards of the stage: the widget on which the pages and the sheets stand.
#pragma once

#include <QWidget>
#include <functional>

namespace velanor::qt {

// Fills the component's widget, and outlives it where the host destroys that one under its own frames. What
// the keyboard and the window's closing mean is its owner's to say.
class Boards : public QWidget {
 public:
  explicit Boards(QWidget& host);

  // Tab and Shift+Tab; true when they have been dealt with.
  std::function<bool(bool forward)> on_step;
  std::function<void()> on_escape;
  // Ctrl+Shift+C, wherever the focus is: also where the lists are out of use.
  std::function<void()> on_copy;
  // The focus was put on none of the fields.
  std::function<void()> on_focus;
  // The window was closed, or is there again.
  std::function<void(bool closed)> on_closed;

 protected:
  bool focusNextPrevChild(bool next) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
};

}  // namespace velanor::qt
