// Messages that wait in several windows at once are answered the newest first.
#pragma once

#include <QObject>
#include <vector>

namespace velanor::app {

class MainWindow;

// A message waits within the act that it stands in, and so does every older one, in whichever window: an
// answer to those would only come to pass after the newest. A window whose message is not the newest
// therefore takes no keys, clicks or closing, and leads to the one that is.
class Turns : public QObject {
 public:
  Turns();

  // The part of a window in it; ends before the window does.
  class Seat {
   public:
    Seat(Turns& turns, MainWindow& window) : turns_(turns), window_(window) { turns_.add(window_); }
    ~Seat() { turns_.remove(window_); }
    Seat(const Seat&) = delete;
    Seat& operator=(const Seat&) = delete;

   private:
    Turns& turns_;
    MainWindow& window_;
  };

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void add(MainWindow& window);
  void remove(MainWindow& window);
  MainWindow* newest();
  MainWindow* window_of(const QObject& receiver) const;

  std::vector<MainWindow*> windows_;
  std::vector<MainWindow*> asking_;  // the newest last
};

}  // namespace velanor::app
