// Text boxes, and the text of combo boxes.
#pragma once

#include "qt/text_edit.h"
#include "qt/view.h"

namespace velanor::qt {

// The control says what becomes of a key, of a value that came by another way (paste, drop, input methods,
// assistive tools) and of what is taken back. Here stand only the caret and what the toolkit remembers.
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
  // A key's effect as an edit of the toolkit's own.
  void follow_key();
  TextEdit* edit() const { return edit_; }
  virtual bool key(QKeyEvent& event);
  bool eventFilter(QObject* watched, QEvent* event) override;
  // The text changed without a key, or took a key back.
  virtual void text_changed();

 private:
  screen::Span selection() const;
  bool is_cut() const;

  screen::TextControl& text_;
  TextEdit* edit_;
  char32_t typed_ = 0;  // a key on its way
};

}  // namespace velanor::qt
