// A form: its controls by name and in tab order, and which of them has the focus.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "velanor/control.h"

namespace velanor::screen {

// Lists that stand side by side are the columns of one table; so are the parts of the lines of one list.
struct TableColumn {
  ListBox* list;
  const Label* heading = nullptr;
  const TextControl* entry = nullptr;  // what the user enters into it
  bool figures = false;                // which stand at the right
  // What of a line stands in it; null: all.
  std::string_view (*part)(std::string_view line) = nullptr;
};
using TableColumns = std::vector<TableColumn>;

// Holds no control itself: they are members of what derives from it, and register in the order in which they
// are declared, which is the tab order. The forms of a component live as long as it does; a host reads them
// and finds their controls, and moves the focus by a Hand.
class Form {
 public:
  Form(std::string_view name, std::string_view caption) : name_(name), caption_(caption) {}
  virtual ~Form() = default;
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  const std::string& name() const { return name_; }
  const std::string& caption() const { return caption_; }
  // What a window shows behind the caption: which one of its kind is open.
  const std::string& subtitle() const { return subtitle_; }
  void set_subtitle(std::string_view subtitle) { subtitle_ = subtitle; }
  const std::vector<Control*>& controls() const { return controls_; }
  // The control of that name, or null.
  Control* find(std::string_view name) const;
  // Null where it has no pages.
  Tabs* tabs() const { return tabs_; }

  // Names the controls that are passed over.
  using Passes = std::function<bool(const Control&)>;

  // The control that has the focus, or null.
  Control* focus() const { return focus_; }
  // It came there because the control before it was locked or hidden, or given up: not for a new entry.
  bool focus_settled() const { return settled_; }
  // The program moves the focus: shows the control's page, then raises `lost_focus` of the
  // control left and `got_focus` of this one. A control that cannot be used is passed over.
  // Called from a lost_focus handler it sends the focus elsewhere than the user wanted, and
  // the control that the user wanted gets no event.
  void set_focus(Control& control);
  // The user moves the focus (null: away, to none). False when a lost_focus handler sent it
  // elsewhere. The control must be usable and in sight. What a field holds is not judged on the way
  // to a cancel button, where it may be thrown away, but when the focus goes on from there.
  bool move_focus(Control* control);
  // The user's Tab: to the next (or previous) control as it stands when the one left has been heard. Of
  // option buttons the one that is set is the stop. Those that `passes` names belong to the same stop and are
  // passed over.
  bool step_focus(bool forward, const Passes& passes = {});
  // The user thought better of a button that cancels or deletes: back to where the focus came from. Who had
  // stepped to the button by Tab is there already.
  void resume();
  // As when the form is shown anew: nothing has the focus, without events.
  void forget_focus() { focus_ = unjudged_ = before_ = nullptr; }
  // A focused control that has become unusable hands the focus to the next usable one in tab
  // order, without events of the one left; never to one that one more Enter would regret.
  void settle_focus();
  // The next (or previous) control that takes the focus, in tab order; null when there is none.
  Control* neighbour(const Control* from, bool forward, const Passes& passes = {}) const;
  // Usable, takes the focus and stands on the page in sight.
  bool can_focus(const Control& control) const;
  bool in_sight(const Control& control) const;

  std::vector<TableColumns> tables;
  // Escape presses the first of these that is usable.
  std::vector<CommandButton*> cancel_buttons;
  // Those that delete.
  std::vector<CommandButton*> perilous_buttons;
  bool abandons(const Control& control) const;
  // Asked when the close box is used: false keeps the form open.
  std::function<bool()> may_close;
  // What a view shows of one of its controls has changed; for the toolkit that shows the form.
  std::function<void()> changed;
  // A right mouse button press on the background.
  Event right_pressed;

 private:
  friend class Control;
  friend class Tabs;
  bool postpone_judgement(Control& control);
  Control* leave_for(const std::function<Control*()>& target_of);
  void enter(Control* control);
  bool is_perilous(const Control& control) const;

  std::string name_;
  std::string caption_;
  std::string subtitle_;
  std::vector<Control*> controls_;
  Tabs* tabs_ = nullptr;
  Control* focus_ = nullptr;
  Control* wanted_ = nullptr;    // where a handler sent a move under way
  Control* unjudged_ = nullptr;  // field left for a cancel button
  Control* before_ = nullptr;    // where the focus was before a button that cancels or deletes
  bool leaving_ = false;
  bool settled_ = false;
  bool stepped_ = false;  // the focus came where it is by Tab
  bool redirected_ = false;
};

}  // namespace velanor::screen
