// Taking back and doing again what was done to the open card, and the card that was deleted last.
#pragma once

#include <QObject>

#include "velanor/controle_velanor_widget.h"

class QAction;
class QMenu;

namespace velanor::app {

// Works on the component as its clerk would; a deleted card is brought back from the versions of the
// database, where it keeps any, as long as no other card has been opened.
class CardSteps : public QObject {
  Q_OBJECT

 public:
  // Both outlive it.
  CardSteps(qt::ControleVelanorWidget& component, store::Database& database, QObject* parent);
  void add_to(QMenu& menu);
  // Brings back the card that was deleted last, or says why not.
  void take_back_deletion();

 signals:
  // What happened, or what stands in the way, in a sentence.
  void told(const QString& sentence);
  // The same, and that `take_back_deletion` would bring the card back.
  void deleted(const QString& sentence);

 private:
  void update();
  void undo();
  void redo();
  bool can_take_back_deletion() const;
  void remember_deletion(const QString& id, const QString& title);

  qt::ControleVelanorWidget& component_;
  store::Database& database_;
  QAction* undo_;
  QAction* redo_;
  QString deleted_id_, deleted_title_;  // "": there is none to take back
};

}  // namespace velanor::app
