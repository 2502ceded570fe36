// Combo boxes: the text of one to be typed in, or a list alone.
#pragma once

#include "qt/combo_edit.h"
#include "qt/lines_model.h"
#include "qt/text_view.h"

namespace velanor::qt {

class ComboView : public TextView {
 public:
  ComboView(Acts& acts, screen::ComboBox& box, ComboEdit& widget, QObject& parent);

  void focus_gone() override;
  bool take_line_under_bar() override;
  void describe(const QString& name) override;

 protected:
  void show() override;
  bool key(QKeyEvent& event) override;
  void text_changed() override;

 private:
  bool may_open();
  void follow_index();
  void chosen(int index);

  screen::ComboBox& box_;
  ComboEdit& widget_;
  LinesModel* lines_;
  int shown_index_ = -1;
  bool choosing_ = false;
};

}  // namespace velanor::qt
