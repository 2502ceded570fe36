// How far a long work is, on one line of the terminal.
#pragma once

#include <cstddef>
#include <string>

namespace velanor::app {

// Writes to standard error, and only when that is a terminal; the line goes with it.
class Progress {
 public:
  // `total` 0: not known.
  explicit Progress(std::string work, std::size_t total = 0);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // One more is done.
  void step();
  // The part that is done, from 0 to 1.
  void part(double part);

 private:
  void show(const std::string& how_far);

  std::string work_;
  std::size_t total_, done_ = 0;
  int percent_ = -1;
  bool terminal_;
};

}  // namespace velanor::app
