// What the menu "Tables" offers: to look at the files of a base, to bring tables in, and out.
#pragma once

#include <QObject>
#include <QString>

class QMenu;

namespace velanor::app {

class MainWindow;
class Workplace;

class TableDialogs : public QObject {
  Q_OBJECT

 public:
  // Both outlive it.
  TableDialogs(MainWindow& window, Workplace& place, QObject* parent);
  void add_to(QMenu& menu);

 signals:
  // What stands in the way, in a sentence.
  void told(const QString& sentence);

 private:
  void consult();
  void import();
  void export_table();

  MainWindow& window_;
  Workplace& place_;
};

}  // namespace velanor::app
