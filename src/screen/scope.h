// Modes that end by themselves, whichever way the block is left.
#pragma once

#include <utility>

namespace velanor::screen {

// A variable that has another value as long as this lives, and then what it had before.
template <typename T>
class Scope {
 public:
  Scope(T& variable, T value) : variable_(variable), before_(std::exchange(variable, std::move(value))) {}
  explicit Scope(bool& flag) : Scope(flag, true) {}
  ~Scope() { variable_ = std::move(before_); }
  Scope(const Scope&) = delete;
  Scope& operator=(const Scope&) = delete;

 private:
  T& variable_;
  T before_;
};
Scope(bool&)->Scope<bool>;

}  // namespace velanor::screen
