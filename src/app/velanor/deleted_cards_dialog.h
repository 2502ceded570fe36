// The deleted cards of an entity and year, and bringing one back.
#pragma once

#include <QDialog>
#include <string>
#include <vector>

#include "office/deleted_cards.h"

class QLabel;
class QPushButton;

namespace velanor::app {

class PlainTable;

// Modal to its window. Enter closes it: bringing a card back needs its own button.
class DeletedCardsDialog : public QDialog {
  Q_OBJECT

 public:
  // The database, which keeps a history, must outlive it. `locked` says why none can be brought back now; ""
  // where one can. Throws store::DbError.
  DeletedCardsDialog(store::Database& database, const std::string& entity, const std::string& year,
                     const QString& locked, QWidget* parent);

 signals:
  // The card is stored again.
  void brought_back(const QString& entity, const QString& year, const QString& employee, const QString& name);

 private:
  void read();
  // Null where none is chosen, or nothing is kept of it.
  const office::DeletedCard* chosen() const;
  void update_button();
  void bring_back();

  store::Database& database_;
  std::string entity_, year_;
  QString locked_;
  std::vector<office::DeletedCard> cards_;
  PlainTable* list_;
  QLabel* remark_;
  QPushButton* take_;
};

}  // namespace velanor::app
