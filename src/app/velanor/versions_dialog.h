// The versions of a card, what each of them changed, and taking one back.
#pragma once

#include <QDialog>
#include <string>
#include <vector>

#include "velanor/database.h"
#include "velanor/history.h"

class QLabel;
class QPushButton;

namespace velanor::app {

class PlainTable;

// Modal to its window. Enter closes it: taking a version back needs its own button.
class VersionsDialog : public QDialog {
  Q_OBJECT

 public:
  // The database, which keeps a history, must outlive it. `locked` says why nothing can be taken back now; ""
  // where something can. Throws store::DbError.
  VersionsDialog(store::Database& database, std::string id, const QString& title, const QString& locked,
                 QWidget* parent);

 signals:
  // The card is stored as it was at that moment.
  void brought_back(const QString& moment);

 private:
  void read();
  void show_changes();
  const store::Version* chosen() const;
  std::size_t chosen_index() const;
  void bring_back();

  store::Database& database_;
  std::string id_;
  QString locked_;
  std::vector<store::Version> versions_;  // the oldest first; the table shows the newest first
  PlainTable* list_;
  PlainTable* changes_;
  QLabel* remark_;
  QPushButton* take_;
};

}  // namespace velanor::app
