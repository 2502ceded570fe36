// A long work beside the clerk's.
#pragma once

#include <QObject>
#include <atomic>
#include <functional>
#include <thread>

namespace velanor::app {

// Runs on a thread of its own, so it uses nothing that the window uses: files that it opens itself, or what
// it was handed whole. A task that goes is given up, and waited for.
class Task : public QObject {
  Q_OBJECT

 public:
  // What the work is handed: it says how far it is, and learns here that it is given up.
  class Report {
   public:
    explicit Report(Task& task) : task_(task) {}
    // From 0 to 1; below 0 where that is not known. Leaves the work by an exception when it is given up.
    void part(double part);

   private:
    Task& task_;
  };
  using Work = std::function<void(Report&)>;

  explicit Task(Work work);
  ~Task() override;
  void start();
  // It ends soon after, and then says so.
  void cancel() { given_up_ = true; }

 signals:
  // All of these come when the event loop is back.
  void progressed(double part);
  void done();
  void cancelled();
  // What the work threw, in a sentence.
  void failed(const QString& sentence);

 private:
  void run();

  Work work_;
  std::atomic<bool> given_up_ = false;
  int percent_ = -1;  // that was told last
  std::thread thread_;
};

}  // namespace velanor::app
