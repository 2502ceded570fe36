// The backups that were made of a base, and taking one back.
#pragma once

#include <QDialog>
#include <vector>

#include "store/sqlite/backups.h"

class QLabel;
class QPushButton;

namespace velanor::app {

class PlainTable;

// Modal to its window. Enter closes it: taking a backup back needs its own button, and is asked for.
class BackupsDialog : public QDialog {
  Q_OBJECT

 public:
  // Throws store::DbError.
  BackupsDialog(const QString& base, QWidget* parent);

 signals:
  // The backup, which is sound, is to take the place of the base; `moment`: when it was made.
  void taken(const QString& backup, const QString& moment);

 private:
  const store::sqlite::Backup* chosen() const;
  void take();

  QString base_;
  std::vector<store::sqlite::Backup> backups_;
  PlainTable* list_;
  QPushButton* take_;
};

}  // namespace velanor::app
