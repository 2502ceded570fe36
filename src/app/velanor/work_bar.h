// How far a long work is, in the status bar, with the way to give it up.
#pragma once

#include <QElapsedTimer>
#include <QPointer>
#include <QWidget>
#include <functional>

class QLabel;
class QProgressBar;
class QPushButton;

namespace velanor::app {

// Shows one work at a time, the one that began last; a short one is over before it is shown.
class WorkBar : public QWidget {
 public:
  explicit WorkBar(QWidget* parent = nullptr);

  // Again for each step. `part`: from 0 to 1, below 0 where it is not known. `cancel` is called by the
  // button.
  void show_part(const QObject& worker, const QString& what, double part, std::function<void()> cancel);
  void done(const QObject& worker);
  void clear();

 private:
  QPointer<const QObject> worker_;
  QElapsedTimer since_;
  std::function<void()> cancel_;
  QLabel* what_;
  QProgressBar* bar_;
  QPushButton* button_;
};

}  // namespace velanor::app
