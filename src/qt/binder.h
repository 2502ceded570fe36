// Ties the widgets of a form file to the controls of a form, by name.
#pragma once

#include <QWidget>
#include <vector>

#include "qt/view.h"

namespace velanor::qt {

// The views of one form, children of its pages.
class FormViews {
 public:
  // Every control of the form has a widget of its name and kind among the pages; the columns of a table have
  // only the one that bears the name of its first list, and menus none. Throws std::logic_error where one is
  // missing, or of another kind.
  FormViews(Acts& acts, screen::Form& form, QWidget& pages);

  screen::Form& form() const { return *form_; }
  View* view_of(const screen::Control& control) const;
  void refresh();
  void set_mnemonics(bool on);
  // The table in sight, of which every page has one at most, into the clipboard.
  void copy_table() const;
  // The focus is in none of the views but this one.
  void leave_all_but(const View* kept);

 private:
  QWidget& widget_for(const screen::Control& control) const;
  void bind(Acts& acts, screen::Control& control, QWidget& widget);
  void bind_columns(Acts& acts, screen::ListBox& first, QWidget& widget);
  void describe();

  screen::Form* form_;
  QWidget* pages_;
  std::vector<View*> views_;
};

}  // namespace velanor::qt
