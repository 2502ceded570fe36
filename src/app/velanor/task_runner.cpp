#include "app/velanor/task_runner.h"

#include <utility>

#include "qt/strings.h"
#include "text/failure.h"

namespace velanor::app {

TaskRunner::TaskRunner(QWidget* parent) : QProgressBar(parent) { hide(); }

void TaskRunner::run(const QString& what, std::unique_ptr<Task> task, std::function<void()> then) {
  task_ = std::move(task);
  setAccessibleName(what);
  setFormat(what + " : %p %");
  setRange(0, 0);
  // What an earlier task has sent may still arrive.
  const int run = ++run_;
  const auto when = [this, run](auto signal, auto heard) {
    connect(task_.get(), signal, this, [this, run, heard](auto... told) {
      if (run == run_ && task_) heard(told...);
    });
  };
  when(&Task::progressed, [this](double part) {
    setRange(0, part < 0 ? 0 : 100);
    if (part >= 0) setValue(static_cast<int>(part * 100));
  });
  when(&Task::done, [this, then = std::move(then)] {
    const auto next = then;
    end();
    next();
  });
  when(&Task::cancelled, [this] {
    end();
    emit ended("Arrêté.");
  });
  when(&Task::failed, [this](const QString& sentence) {
    end();
    emit ended(sentence);
  });
  show();
  emit changed();
  task_->start();
}

void TaskRunner::run(const QString& what, const BaseWork& base, BaseWork::Work work,
                     const std::function<void()>& then) try {
  auto task = base.make(std::move(work));
  task ? run(what, std::move(task), then) : then();
} catch (const std::exception& error) {
  emit ended(qt::to_qt(text::failure_sentence(error)));
}

void TaskRunner::cancel() {
  if (task_) task_->cancel();
}

void TaskRunner::end() {
  task_.reset();
  hide();
  emit changed();
}

}  // namespace velanor::app
