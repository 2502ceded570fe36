// What the window offers of the past: the versions of the open card, and deleted cards.
#pragma once

#include <QObject>

#include "velanor/controle_velanor_widget.h"

class QAction;
class QMenu;

namespace velanor::app {

class CardHistory : public QObject {
  Q_OBJECT

 public:
  // Asks and shows on the component's window; both outlive it.
  CardHistory(qt::ControleVelanorWidget& component, store::Database& database, QObject* parent);
  void add_to(QMenu& menu);

 signals:
  // What happened, or what stands in the way, in a sentence.
  void told(const QString& sentence);

 private:
  QString locked(bool for_open_card) const;
  bool is_free();
  void update();
  void show_versions();
  void show_deleted();
  void reread(const QString& moment);
  void open_again(const QString& entity, const QString& year, const QString& employee, const QString& name);

  qt::ControleVelanorWidget& component_;
  store::Database& database_;
  QAction* versions_;
  QAction* deleted_;
};

}  // namespace velanor::app
