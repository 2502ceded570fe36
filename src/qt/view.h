// A widget tied to a control: what ties every kind.
#pragma once

#include <QObject>
#include <QWidget>
#include <vector>

#include "qt/acts.h"
#include "velanor/form.h"

namespace velanor::qt {

// How the focus came to a control: the user stepped there or a rule sent it there, to be entered; it settled
// there when a card opened; what was typed there was refused; or a message gave it back.
enum class Arrival { kMeant, kSettled, kRefused, kBack };

// Lives as a child of its form's pages. The control and whoever carries out the acts outlive it.
class View : public QObject {
 public:
  View(Acts& acts, screen::Control& control, QWidget& widget, QObject& parent);

  // The control that the view stands for now; where it stands for several, the one with the focus.
  virtual screen::Control& control() const { return control_; }
  virtual std::vector<const screen::Control*> controls() const { return {&control_}; }
  QWidget& widget() const { return widget_; }

  // Takes over what changed since the last time.
  void refresh();
  // The user moved the widget itself: takes over everything.
  void refresh_again();

  virtual QWidget& focus_widget() const { return widget_; }
  // The user steps away: the line under the bar of a list that hangs over the field is chosen. Whether one
  // was.
  virtual bool take_line_under_bar() { return false; }
  virtual void focus_placed(Arrival) {}
  // The focus is elsewhere, or a sheet has come on top.
  virtual void focus_gone() {}
  // A control behind a sheet must not answer its mnemonic.
  virtual void set_mnemonic(bool) {}
  virtual void describe(const QString& name);

 protected:
  virtual void show();
  // Changed by `show`, not by the user.
  bool showing() const { return showing_; }
  // Where the user presses and where the keyboard focus comes.
  void watch(QWidget& widget);
  bool eventFilter(QObject* watched, QEvent* event) override;
  Acts& acts() const { return acts_; }

 private:
  std::uint64_t revision() const;

  Acts& acts_;
  screen::Control& control_;
  QWidget& widget_;
  std::uint64_t shown_ = 0;
  bool showing_ = false;
};

}  // namespace velanor::qt
