// Between the program and a terminal: no stored text drives it.
#pragma once

#include <ostream>
#include <streambuf>

namespace velanor::app {

// Stands in front of a stream's buffer while it lives: control characters but line ends and tabs come out as
// "·".
class GuardedOutput : public std::streambuf {
 public:
  explicit GuardedOutput(std::ostream& stream);
  ~GuardedOutput() override;
  GuardedOutput(const GuardedOutput&) = delete;
  GuardedOutput& operator=(const GuardedOutput&) = delete;

  // For what must come out byte by byte, and goes to no terminal.
  void let_all_through() { guards_ = false; }

 protected:
  int_type overflow(int_type byte) override;
  int sync() override;

 private:
  bool put(char byte);

  std::ostream& stream_;
  std::streambuf* inner_;
  bool guards_ = true;
  // The first byte of a character that may be a control character has come.
  bool half_ = false;
};

}  // namespace velanor::app
