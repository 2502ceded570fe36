// The way of the views to the rules: what the user does, one act at a time.
#pragma once

#include <Qt>
#include <functional>

#include "velanor/hand.h"

namespace velanor::qt {

class Acts {
 public:
  virtual ~Acts() = default;
  // Whether the control answers now: no message is open, its form is the topmost, nothing around it
  // is disabled or hidden. Assistive tools reach widgets that a hand does not.
  virtual bool open_to(const screen::Control& control) const = 0;
  // Carries out what the user does; afterwards the views take over what changed. An act within an
  // act (a signal that the program itself caused) is dropped. What it throws goes to the host.
  virtual void act(const std::function<void(screen::Hand&)>& what) = 0;
  // The mouse button went down on a control: moves the focus there. False when the press is lost on
  // its way, because the control left keeps the focus or speaks up.
  virtual bool press(screen::Control& control) = 0;
  // The toolkit moved the keyboard focus to a control.
  virtual void focus_came(screen::Control& control, Qt::FocusReason reason) = 0;
};

}  // namespace velanor::qt
