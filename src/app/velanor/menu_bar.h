// A menu bar whose menus all answer a letter.
#pragma once

#include <QMenuBar>

namespace velanor::app {

// Once the bar has the keyboard (Alt), the first letter of a title that marks none leads to its menu, the
// next one of that letter when pressed again. With Alt held down only marked letters are answered.
class MenuBar : public QMenuBar {
 public:
  using QMenuBar::QMenuBar;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace velanor::app
