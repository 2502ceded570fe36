// A table that is read line by line.
#pragma once

#include <QTableWidget>

namespace velanor::app {

// Lines are chosen, cells are not changed; Tab leaves it. Ctrl+C copies the chosen line with the headings.
class PlainTable : public QTableWidget {
 public:
  PlainTable(const QStringList& headings, const QString& name, QWidget* parent = nullptr);

  void add(const QStringList& cells);
  // -1 for none.
  int chosen() const;
  void choose(int line);
  // Columns as wide as what they hold, the last one to the end.
  void fit();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace velanor::app
