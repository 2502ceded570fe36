// The dated backup of a base, made at the first opening of a day.
#pragma once

#include <QObject>
#include <atomic>
#include <thread>

namespace velanor::app {

// Made beside the clerk's work, on a thread and a connection of its own. One that is not complete when this
// goes is given up, and nothing of it stays: the next opening makes it.
class DailyBackup : public QObject {
  Q_OBJECT

 public:
  explicit DailyBackup(const QString& base);
  ~DailyBackup() override;
  void start();

 signals:
  // Raised on that thread.
  void failed(const QString& sentence);

 private:
  void work();

  std::string base_;
  std::atomic<bool> ends_ = false;
  std::thread thread_;
};

}  // namespace velanor::app
