// What a control tells those who are bound to it.
#pragma once

#include <functional>
#include <utility>
#include <vector>

namespace velanor::screen {

// Handlers run in the order in which they were bound. They live as long as the control.
class Event {
 public:
  void operator+=(std::function<void()> handler) { handlers_.push_back(std::move(handler)); }
  void raise() const {
    for (const auto& handler : handlers_) handler();
  }

 private:
  std::vector<std::function<void()>> handlers_;
};

// A key on its way into a control. A handler may change it, or swallow it.
struct Key {
  static constexpr char32_t kBackspace = 8;
  static constexpr char32_t kTab = 9;
  static constexpr char32_t kEnter = 13;
  static constexpr char32_t kEscape = 27;
  static constexpr char32_t kDelete = 127;

  char32_t code = 0;
  void swallow() { code = 0; }
  bool swallowed() const { return code == 0; }
};

}  // namespace velanor::screen
