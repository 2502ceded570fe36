// How the stage outlives its widget.
#pragma once

#include "qt/stage.h"
#include "screen/scope.h"

namespace velanor::qt {

// While one lives the stage does, and its boards.
class ControleVelanorWidget::Stage::KeepAlive {
 public:
  explicit KeepAlive(Stage& stage) : stage_(stage.shared_from_this()) { ++stage_->frames_; }
  // What called ours, down to the toolkit's own frames, stands on the boards as well.
  ~KeepAlive() {
    if (--stage_->frames_ > 0 || stage_->widget_) return;
    // Without memory for this much the program may as well end here.
    auto* remains = new QObject;  // NOLINT(bugprone-unhandled-exception-at-new)
    QObject::connect(remains, &QObject::destroyed, [stage = std::move(stage_)] {});
    remains->deleteLater();
  }
  KeepAlive(const KeepAlive&) = delete;
  KeepAlive& operator=(const KeepAlive&) = delete;

 private:
  std::shared_ptr<Stage> stage_;
};

// The rules call the window, or the host through it: there the widget may be destroyed.
class ControleVelanorWidget::Stage::CallOut {
 public:
  explicit CallOut(Stage& stage) : stage_(stage), alive_(stage), called_out_(stage.called_out_) {
    return_if_there();
  }
  // To be called at the end: the rules go on only as long as there is a widget.
  void return_if_there() const {
    if (!stage_.widget_) throw screen::Gone();
  }

 private:
  Stage& stage_;
  KeepAlive alive_;
  screen::Scope<bool> called_out_;
};

}  // namespace velanor::qt
