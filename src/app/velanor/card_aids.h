// Commands that help while a card is entered.
#pragma once

#include <QObject>

#include "velanor/controle_velanor_widget.h"

class QAction;
class QMenu;

namespace velanor::app {

// Each does what a clerk could do by hand on the open card, or says why it cannot be done now.
class CardAids : public QObject {
  Q_OBJECT

 public:
  // Both outlive it.
  CardAids(qt::ControleVelanorWidget& component, store::Database& database, QObject* parent);
  void add_to(QMenu& menu);

 signals:
  // What happened, in a sentence, and what stands in the way.
  void told(const QString& sentence);
  void refused(const QString& why);

 private:
  QAction* make(const QString& text, const QKeySequence& keys, const QString& hint, void (CardAids::*act)());
  void update();
  void put_remainder();
  void repeat_items();
  QString monthly_time() const;
  void show_field_history();
  void pop_up(const QStringList& lines, const QStringList& values);

  qt::ControleVelanorWidget& component_;
  store::Database& database_;
  QAction* remainder_;
  QAction* items_;
  QAction* history_;
};

}  // namespace velanor::app
