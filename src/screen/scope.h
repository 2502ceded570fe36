// Modes that end by themselves, whichever way the block is left.
#pragma once

namespace velanor::screen {

// A flag that is set (or has the value given) as long as this lives, and then is what it was before.
class Scope {
 public:
  explicit Scope(bool& flag, bool value = true) : flag_(flag), before_(flag) { flag_ = value; }
  ~Scope() { flag_ = before_; }
  Scope(const Scope&) = delete;
  Scope& operator=(const Scope&) = delete;

 private:
  bool& flag_;
  bool before_;
};

}  // namespace velanor::screen
