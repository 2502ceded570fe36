// A combo box over the lines of a control, of any number.
#pragma once

#include <QComboBox>
#include <functional>

namespace velanor::qt {

class TextEdit;

class ComboEdit : public QComboBox {
 public:
  explicit ComboEdit(QWidget* parent = nullptr);

  // Makes the text editable, and completes it from the lines as the user types.
  TextEdit& make_editable();
  void hide_completion();
  bool completing() const;

  // Asked before the list opens: it may be filled then. False keeps it closed.
  std::function<bool()> before_opening;
  // Before the user chooses a line, by whatever way.
  std::function<void()> before_choice;
  void showPopup() override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace velanor::qt
