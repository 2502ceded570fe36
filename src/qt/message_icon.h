// The pictures of the messages: one family, drawn, so that they are sharp at every scale.
#pragma once

#include <QWidget>

#include "velanor/screen.h"

namespace velanor::qt {

class MessageIcon : public QWidget {
 public:
  explicit MessageIcon(screen::Icon icon, QWidget* parent = nullptr);
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  screen::Icon icon_;
};

}  // namespace velanor::qt
