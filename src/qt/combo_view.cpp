#include "qt/combo_view.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QKeyEvent>

#include "qt/strings.h"
#include "screen/scope.h"

namespace velanor::qt {

ComboView::ComboView(Acts& acts, screen::ComboBox& box, ComboEdit& widget, QObject& parent)
    : TextView(acts, box, widget, box.editable() ? &widget.make_editable() : nullptr, parent),
      box_(box),
      widget_(widget),
      lines_(new LinesModel({&box}, this)) {
  lines_->set_notes(box.notes());
  widget.set_lines(*lines_);
  widget.before_opening = [this] { return may_open(); };
  widget.before_choice = [this] { follow_index(); };
  connect(&widget, &QComboBox::activated, this, [this](int index) { chosen(index); });
  watch(widget);
}

void ComboView::describe(const QString& name) {
  TextView::describe(name);
  if (!edit()) return;
  edit()->setAccessibleName(name);
  edit()->setAccessibleDescription(widget_.toolTip());
}

void ComboView::focus_gone() {
  widget_.hide_completion();
  TextView::focus_gone();
}

// The toolkit's index follows the control's, so that choosing the same line again is seen as a choice. Not
// while a text is typed that is no line: with its index the toolkit would take away the text, and what can be
// taken back of it.
void ComboView::show() {
  if (edit()) follow_key();
  lines_->update();
  const int caret = edit() ? edit()->cursorPosition() : 0;
  const bool typed = edit() && !choosing_ && box_.index() < 0 && edit()->text() == to_qt(box_.text());
  shown_index_ = typed ? widget_.currentIndex() : box_.index();
  if (widget_.currentIndex() != shown_index_) widget_.setCurrentIndex(shown_index_);
  if (edit() && edit()->text() != to_qt(box_.text())) {
    const bool at_end = caret >= edit()->text().length();
    show_text();
    if (!at_end) edit()->setCursorPosition(caret);
  }
  TextView::show();
  if (!edit() && box_.index() < 0) widget_.setPlaceholderText(to_qt(box_.text()));
}

bool ComboView::key(QKeyEvent& event) {
  const bool enter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
  // The line under the bar of the completion is the completion's to choose, and the only one needs no bar.
  if (enter && widget_.completing() && widget_.completer()->popup()->currentIndex().isValid()) {
    event.ignore();
    return true;
  }
  if (!enter) return TextView::key(event);
  const int only = widget_.only_completion();
  widget_.hide_completion();
  if (only < 0) return TextView::key(event);
  follow_index();
  chosen(only);
  return true;
}

bool ComboView::take_line_under_bar() {
  const int line = widget_.completion_under_bar();
  if (line < 0) return false;
  widget_.hide_completion();
  follow_index();
  chosen(line);
  return true;
}

// The box also writes the line that was just chosen; that is told by its index and reported as a choice.
void ComboView::text_changed() {
  if (widget_.currentIndex() == shown_index_) TextView::text_changed();
}

bool ComboView::may_open() {
  if (!acts().open_to(box_)) return false;
  acts().act([&](screen::Hand& hand) { return hand.drop_down(box_); });
  return acts().open_to(box_) && box_.form().focus() == &box_;
}

// A line is about to be chosen, which is told by its index.
void ComboView::follow_index() {
  if (widget_.currentIndex() == box_.index()) return;
  const screen::Scope choosing(choosing_);
  refresh_again();
}

void ComboView::chosen(int index) {
  if (showing()) return;
  if (acts().open_to(box_)) acts().act([&](screen::Hand& hand) { return hand.choose(box_, index); });
  refresh_again();
}

}  // namespace velanor::qt
