// Going to the next or the previous budget year of the entity.
#pragma once

#include <QObject>

#include "velanor/controle_velanor_widget.h"

class QAction;
class QMenu;

namespace velanor::app {

// While no card is open: a card belongs to its year.
class YearActions : public QObject {
  Q_OBJECT

 public:
  // Of a component that has started and outlives it.
  YearActions(qt::ControleVelanorWidget& component, QObject* parent);
  void add_to(QMenu& menu);

 signals:
  // What stands in the way, in a sentence.
  void told(const QString& sentence);

 private:
  enum class Step { kNext, kPrevious };
  QAction* make(const QString& text, Qt::Key key, Step step);
  // The line of the list of years; -1 where there is none.
  int line_of(Step step) const;
  void go(Step step);
  void update();

  qt::ControleVelanorWidget& component_;
  screen::ComboBox& years_;
  QAction *next_, *previous_;
};

}  // namespace velanor::app
