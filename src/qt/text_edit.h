// The line edit of a text box or a combo box: its keys can be seen before they have an effect.
#pragma once

#include <QLineEdit>
#include <functional>

namespace velanor::qt {

// Overrides the key event instead of filtering it: a combo box and a completion hand their keys over by
// a direct call, which no event filter sees.
class TextEdit : public QLineEdit {
 public:
  using QLineEdit::QLineEdit;

  // Sees each key; true when it has been dealt with.
  std::function<bool(QKeyEvent&)> on_key;

 protected:
  // What it cannot take back or do again itself is left to the window around it.
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace velanor::qt
