// A dialog's long work: one at a time, with its progress and the way to give it up.
#pragma once

#include <QProgressBar>
#include <functional>
#include <memory>

#include "app/velanor/connection.h"

namespace velanor::app {

// A bar, in sight while something goes on.
class TaskRunner : public QProgressBar {
  Q_OBJECT

 public:
  explicit TaskRunner(QWidget* parent = nullptr);

  bool is_running() const { return task_ != nullptr; }
  // What it is shown and spoken of as; `then` runs when all of it was done.
  void run(const QString& what, std::unique_ptr<Task> task, std::function<void()> then);
  void run(const QString& what, const BaseWork& base, BaseWork::Work work, const std::function<void()>& then);
  void cancel();

 signals:
  // It runs, or not any more.
  void changed();
  // A sentence: it failed, or was given up.
  void ended(const QString& sentence);

 private:
  void end();

  std::unique_ptr<Task> task_;
  int run_ = 0;
};

}  // namespace velanor::app
