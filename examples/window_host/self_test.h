// Plays a clerk and the host at a window, and says in a sentence what is otherwise than it should be.
#pragma once

#include <string>

#include "host_window.h"

class SelfTest {
 public:
  SelfTest(HostWindow& window, velanor::store::Database& database) : window_(window), database_(database) {}

  // Within the event loop, which ends with it. The sentence; "" where all is as it should be.
  std::string play();

 private:
  void open_a_card();
  void complete_a_date();
  void refuse_a_date();
  void close_with_changes();
  void close_under_a_question();
  // What is in the field then.
  std::string enter_birth(std::string_view text);
  // The next message is answered by what the function does while it waits.
  void at_next_message(std::function<void()> act);
  velanor::store::DbRecord stored() const;

  HostWindow& window_;
  velanor::store::Database& database_;
  std::string id_;
  velanor::store::DbRecord before_;
};
