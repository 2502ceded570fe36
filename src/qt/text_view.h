// Text boxes, and the text of combo boxes.
#pragma once

#include "qt/text_edit.h"
#include "qt/view.h"

namespace velanor::qt {

// The keys of a text control go through its filter; whatever else changes the text (paste, drop, input
// methods, assistive tools) is judged as a whole.
class TextView : public View {
 public:
  TextView(Acts& acts, screen::TextControl& control, TextEdit& edit, QObject& parent)
      : TextView(acts, control, edit, &edit, parent) {}

  void focus_placed(Arrival arrival) override;
  void focus_gone() override;

 protected:
  // The line edit may stand inside the widget; null when the text cannot be typed.
  TextView(Acts& acts, screen::TextControl& control, QWidget& widget, TextEdit* edit, QObject& parent);
  void show() override;
  void show_text();
  TextEdit* edit() const { return edit_; }
  virtual bool key(QKeyEvent& event);
  // The text changed without a key, or took a key back.
  virtual void text_changed();

 private:
  void act_key(char32_t code, const QKeyEvent& event);
  void enter(screen::Hand& hand);
  void put(char32_t code, const QKeyEvent& event);
  void replace_selection(char32_t code);
  void pass_on();

  screen::TextControl& text_;
  TextEdit* edit_;
  QString stood_;  // what the program showed last
  bool typing_ = false;
};

}  // namespace velanor::qt
