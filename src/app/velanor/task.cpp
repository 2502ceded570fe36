#include "app/velanor/task.h"

#include <utility>

#include "qt/strings.h"
#include "text/failure.h"

namespace velanor::app {
namespace {

struct GivenUp : std::exception {};

}  // namespace

// Whoever hears lives on another thread, where the signals arrive as events.
void Task::Report::part(double part) {
  if (task_.given_up_) throw GivenUp();
  const int percent = part < 0 ? -1 : static_cast<int>(part * 100);
  if (std::exchange(task_.percent_, percent) != percent) emit task_.progressed(part);
}

Task::Task(Work work) : work_(std::move(work)) {}

Task::~Task() {
  given_up_ = true;
  if (thread_.joinable()) thread_.join();
}

void Task::start() { thread_ = std::thread(&Task::run, this); }

void Task::run() try {
  Report report(*this);
  work_(report);
  emit done();
} catch (const GivenUp&) {
  emit cancelled();
} catch (const std::exception& error) {
  emit failed(qt::to_qt(text::failure_sentence(error)));
}

}  // namespace velanor::app
