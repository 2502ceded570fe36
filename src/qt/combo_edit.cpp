#include "qt/combo_edit.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QKeyEvent>
#include <QListView>
#include <QStylePainter>
#include <QWheelEvent>

#include "qt/text_edit.h"

namespace velanor::qt {
namespace {

constexpr int kVisibleLines = 14;

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
}

TextEdit& ComboEdit::make_editable() {
  auto* edit = new TextEdit(this);
  setEditable(true);
  setLineEdit(edit);
  setInsertPolicy(QComboBox::NoInsert);
  // By itself the box would choose a line when Enter is pressed or the focus leaves.
  disconnect(edit, SIGNAL(editingFinished()), this, nullptr);
  disconnect(edit, SIGNAL(returnPressed()), this, nullptr);
  auto* completer = new QCompleter(model(), this);
  completer->setCompletionMode(QCompleter::PopupCompletion);
  completer->setCaseSensitivity(Qt::CaseInsensitive);
  completer->setMaxVisibleItems(kVisibleLines);
  // Heard before the box, which is tied to it by the next line.
  connect(completer, qOverload<const QModelIndex&>(&QCompleter::activated), this,
          [this] { before_choice(); });
  setCompleter(completer);
  return *edit;
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
  QComboBox::showPopup();
}

// The keys that open the list; left to the box they would open it past `before_opening`'s sight of them.
void ComboEdit::keyPressEvent(QKeyEvent* event) {
  const bool alt_arrow =
      (event->modifiers() & Qt::AltModifier) && (event->key() == Qt::Key_Down || event->key() == Qt::Key_Up);
  if (event->key() == Qt::Key_F4 || alt_arrow) return showPopup();
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
