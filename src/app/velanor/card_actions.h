// The commands on a card in a menu: each presses a button of the component.
#pragma once

#include <QObject>
#include <vector>

#include "velanor/controle_velanor_widget.h"

class QAbstractButton;
class QAction;
class QMenu;

namespace velanor::app {

// An entry can be chosen exactly when its button can be clicked: what the button asks, and what the rules do
// about the field that is left, is the component's affair.
class CardActions : public QObject {
 public:
  // Of a component that has started and outlives it.
  CardActions(qt::ControleVelanorWidget& component, QObject* parent);
  void add_to(QMenu& menu);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct Command {
    QAction* action;
    QAbstractButton* button;
  };
  void update();

  qt::ControleVelanorWidget& component_;
  std::vector<Command> commands_;
};

}  // namespace velanor::app
