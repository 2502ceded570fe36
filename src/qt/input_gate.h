// Holds back what is typed while the rules are at work between two messages.
#pragma once

#include <QKeyEvent>
#include <QObject>
#include <deque>
#include <memory>

namespace velanor::qt {

// When a message is answered, the toolkit delivers the keys that it already has before the loop of the
// message ends: they would reach a field in the middle of a rule, which may be about to empty it or to
// move the focus. From `hold` to `release` keys are kept; then they are played to whoever has the focus,
// in order, before those that come later. What plays them on may hold them again.
class InputGate : public QObject {
 public:
  explicit InputGate(QObject* parent = nullptr);
  ~InputGate() override;

  void hold() { holding_ = true; }
  void release();
  // What was kept has nowhere to go.
  void drop();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void play_next();
  void play(QKeyEvent& event);

  bool holding_ = false;
  bool scheduled_ = false;
  bool pass_override_ = false;
  const QEvent* passing_ = nullptr;
  std::deque<std::unique_ptr<QKeyEvent>> kept_;
};

}  // namespace velanor::qt
