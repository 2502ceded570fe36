#include "app/velanorctl/progress.h"

#include <unistd.h>

#include <iostream>
#include <utility>

namespace velanor::app {
namespace {

constexpr std::size_t kStepsShown = 1000;

}  // namespace

Progress::Progress(std::string work, std::size_t total)
    : work_(std::move(work)), total_(total), terminal_(::isatty(STDERR_FILENO) == 1) {
  show("…");
}

// What drives the terminal goes past the guard of the error stream.
Progress::~Progress() {
  if (terminal_) std::clog << "\r\033[K" << std::flush;
}

void Progress::step() {
  ++done_;
  if (total_ > 0) return part(static_cast<double>(done_) / static_cast<double>(total_));
  if (done_ % kStepsShown == 0) show(std::to_string(done_));
}

void Progress::part(double part) {
  const int percent = static_cast<int>(part * 100);
  if (percent == percent_) return;
  percent_ = percent;
  show(std::to_string(percent) + " %");
}

void Progress::show(const std::string& how_far) {
  if (terminal_) std::clog << "\r" << work_ << " : " << how_far << "\033[K" << std::flush;
}

}  // namespace velanor::app
