#include "qt/combo_edit.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QKeyEvent>
#include <QListView>
#include <QStylePainter>
#include <QWheelEvent>
#include <algorithm>

#include "qt/lines_model.h"
#include "qt/matches_model.h"
#include "qt/noted_line.h"
#include "qt/text_edit.h"

namespace velanor::qt {
namespace {

constexpr int kVisibleLines = 14;

// What is offered is found by the model: the toolkit's own search knows neither accents nor the middle of a
// text, and is asked for everything.
class Completion : public QCompleter {
 public:
  Completion(ComboEdit& box, MatchesModel& matches)
      : QCompleter(&matches, &box), box_(box), matches_(matches) {}

  QStringList splitPath(const QString& typed) const override {
    // The box also asks for every text that the program writes, with nobody there to be offered anything.
    if (box_.hasFocus()) {
      matches_.look_for(typed);
      box_.size_list(*popup());
    }
    return {QString()};
  }

 private:
  ComboEdit& box_;
  MatchesModel& matches_;
};

}  // namespace

// A fixed width: by default every line would be measured.
ComboEdit::ComboEdit(QWidget* parent) : QComboBox(parent) {
  setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  setMinimumContentsLength(6);
  setMaxVisibleItems(kVisibleLines);
  auto* lines = new QListView(this);
  lines->setUniformItemSizes(true);
  lines->setTextElideMode(Qt::ElideRight);
  setView(lines);
  lines->setItemDelegate(new NotedLine(this));
}

TextEdit& ComboEdit::make_editable() {
  auto* edit = new TextEdit(this);
  setEditable(true);
  setLineEdit(edit);
  setInsertPolicy(QComboBox::NoInsert);
  // By itself the box would choose a line when Enter is pressed or the focus leaves.
  disconnect(edit, SIGNAL(editingFinished()), this, nullptr);
  disconnect(edit, SIGNAL(returnPressed()), this, nullptr);
  matches_ = new MatchesModel(this);
  auto* completer = new Completion(*this, *matches_);
  completer->setMaxVisibleItems(kVisibleLines);
  // Heard before the box, which is tied to it by the next line.
  connect(completer, qOverload<const QModelIndex&>(&QCompleter::activated), this,
          [this] { before_choice(); });
  setCompleter(completer);
  return *edit;
}

void ComboEdit::set_lines(QAbstractItemModel& lines) {
  setModel(&lines);
  connect(&lines, &QAbstractItemModel::modelReset, this, [this] { widest_ = -1; });
  if (!matches_) return;
  matches_->setSourceModel(&lines);
  // The box has given its completion the whole list.
  completer()->setModel(matches_);
  completer()->popup()->setItemDelegate(new NotedLine(this));
}

int ComboEdit::only_completion() const { return completing() ? matches_->only_line() : -1; }

int ComboEdit::completion_under_bar() const {
  if (!completing()) return -1;
  const auto& offered = static_cast<const QAbstractProxyModel&>(*completer()->completionModel());
  return matches_->mapToSource(offered.mapToSource(completer()->popup()->currentIndex())).row();
}

// Measured by the letters first: the font would take its time over every line.
int ComboEdit::widest_line() const {
  if (widest_ >= 0) return widest_;
  QString line, note;
  for (int row = 0; row < count(); ++row) {
    const QModelIndex index = model()->index(row, 0);
    const QString own = index.data().toString(), beside = index.data(LinesModel::kNoteRole).toString();
    if (own.length() + beside.length() > line.length() + note.length()) line = own, note = beside;
  }
  return widest_ = NotedLine::width_of(font(), line, note);
}

void ComboEdit::size_list(QWidget& list) const {
  const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent) + 8;
  const int room = window()->width() - mapTo(window(), QPoint()).x();
  list.setMinimumWidth(std::max(width(), std::min(widest_line() + bar, room)));
}

bool ComboEdit::completing() const {
  return isEditable() && completer() && completer()->popup()->isVisible();
}

void ComboEdit::hide_completion() {
  if (completing()) completer()->popup()->hide();
}

void ComboEdit::showPopup() {
  hide_completion();
  if (before_opening && !before_opening()) return;
  before_choice();
  size_list(*view());
  QComboBox::showPopup();
  put_bar_on_text();
}

// A text that was not chosen from the list has no line of its own there; Enter is to leave it as it is.
void ComboEdit::put_bar_on_text() {
  if (currentIndex() >= 0 || currentText().isEmpty()) return;
  const int line = findText(currentText(), Qt::MatchExactly | Qt::MatchCaseSensitive);
  if (line < 0) return;
  const QModelIndex index = model()->index(line, 0);
  view()->setCurrentIndex(index);
  view()->scrollTo(index, QAbstractItemView::PositionAtCenter);
}

// The keys that open the list; left to the box they would open it past `before_opening`'s sight of them.
void ComboEdit::keyPressEvent(QKeyEvent* event) {
  const bool alt_arrow =
      (event->modifiers() & Qt::AltModifier) && (event->key() == Qt::Key_Down || event->key() == Qt::Key_Up);
  if (event->key() == Qt::Key_F4 || alt_arrow) return showPopup();
  // The pages are turned, not the lines.
  const bool turns = event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown;
  if (turns && (event->modifiers() & Qt::ControlModifier)) return event->ignore();
  // Filled when it opens: there is nothing yet to step through.
  if (event->key() == Qt::Key_Down && count() == 0) return showPopup();
  if (event->key() == Qt::Key_Down || event->key() == Qt::Key_Up) before_choice();
  QComboBox::keyPressEvent(event);
}

// A list alone is drawn as a button, and is to be read like a text.
void ComboEdit::paintEvent(QPaintEvent* event) {
  if (isEditable()) return QComboBox::paintEvent(event);
  QStylePainter painter(this);
  QStyleOptionComboBox option;
  initStyleOption(&option);
  painter.drawComplexControl(QStyle::CC_ComboBox, option);
  if (option.currentText.isEmpty()) option.currentText = placeholderText();
  option.palette.setBrush(QPalette::ButtonText, option.palette.brush(QPalette::Text));
  painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

// The wheel scrolls pages; it must not change a card in passing.
void ComboEdit::wheelEvent(QWheelEvent* event) { event->ignore(); }

}  // namespace velanor::qt
