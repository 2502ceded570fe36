// A push button that acts at once: on its mnemonic, on Enter and on the blank.
#pragma once

#include <QPushButton>

namespace velanor::qt {

// An ordinary button acts a tenth of a second after its mnemonic; what is typed meanwhile would go to
// the old field.
class ActionButton : public QPushButton {
 public:
  using QPushButton::QPushButton;

 protected:
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  // Shows the focus however it came.
  void initStyleOption(QStyleOptionButton* option) const override;
};

}  // namespace velanor::qt
