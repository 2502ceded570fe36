#include "qt/text_view.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QToolTip>
#include <algorithm>

#include "qt/strings.h"
#include "screen/scope.h"

namespace velanor::qt {
namespace {

using screen::Key;

// The key as a filter sees it: 0 for keys that move the caret, edit, or belong to someone else. The
// text of the event makes keypad, main keys and shifted keys alike.
char32_t key_code(const QKeyEvent& event) {
  switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return Key::kEnter;
    case Qt::Key_Backspace:
      return event.modifiers() & ~Qt::KeypadModifier ? 0 : Key::kBackspace;
    default:
      break;
  }
  if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return 0;
  const auto characters = event.text().toUcs4();
  return characters.isEmpty() || characters[0] < U' ' || characters[0] == Key::kDelete ? 0 : characters[0];
}

// The toolkit counts in units of UTF-16, the control in characters.
int characters(QStringView units) {
  return static_cast<int>(
      std::count_if(units.begin(), units.end(), [](QChar c) { return !c.isLowSurrogate(); }));
}

}  // namespace

TextView::TextView(Acts& acts, screen::TextControl& control, QWidget& widget, TextEdit* edit, QObject& parent)
    : View(acts, control, widget, parent), text_(control), edit_(edit) {
  if (!edit_) return;
  edit_->on_key = [this](QKeyEvent& event) { return key(event); };
  connect(edit_, &QLineEdit::textChanged, this, [this] { text_changed(); });
  watch(*edit_);
}

void TextView::show() {
  View::show();
  if (!edit_) return;
  follow_key();
  show_text();
}

screen::Span TextView::selection() const {
  const QString chosen = edit_->selectedText();
  const int start = chosen.isEmpty() ? edit_->cursorPosition() : edit_->selectionStart();
  return {characters(QStringView(edit_->text()).left(start)), characters(chosen)};
}

// It can be taken back then, and offers what completes it. Where the rules made something else of the key,
// `show_text` shows that.
void TextView::follow_key() {
  const char32_t code = std::exchange(typed_, 0);
  if (code == 0) return;
  const QString shown = edit_->text(), text = to_qt(text_.text());
  if (shown == text) return;
  if (code == Key::kBackspace) return edit_->backspace();
  const auto chosen = edit_->selectedText().length();
  const auto start = chosen > 0 ? edit_->selectionStart() : edit_->cursorPosition();
  const QString typed = text.mid(start, std::max<qsizetype>(text.length() - shown.length() + chosen, 0));
  if (text == shown.left(start) + typed + shown.mid(start + chosen)) edit_->insert(typed);
}

// The caret stays where it was in a text that only changed a character. Of a text that is too long for its
// box the beginning is seen until somebody works in it.
void TextView::show_text() {
  const QString text = to_qt(text_.text());
  if (edit_->text() == text) return;
  const int caret = edit_->cursorPosition();
  const bool same_length = text.length() == edit_->text().length();
  edit_->setText(text);
  edit_->setCursorPosition(!edit_->hasFocus() ? 0 : same_length ? caret : static_cast<int>(text.length()));
}

// One stray key replaces what is selected: that is what the user wants where he steps through the fields or
// begins an entry, and where he was told that it cannot stand, but not on a card that has just opened.
void TextView::focus_placed(Arrival arrival) {
  if (!edit_ || arrival == Arrival::kBack) return;
  if (arrival == Arrival::kSettled) return edit_->end(false);
  edit_->selectAll();
}

// What was typed can be taken back as long as the field is not left: behind that stands another card.
void TextView::focus_gone() {
  if (!edit_ || text_.form().focus() == &text_) return;
  if (edit_->isUndoAvailable() || edit_->isRedoAvailable()) edit_->setText(edit_->text());
  edit_->home(false);
}

bool TextView::key(QKeyEvent& event) {
  const char32_t code = key_code(event);
  // A mnemonic that nobody answers now is no text.
  const bool mnemonic = event.modifiers() & (Qt::AltModifier | Qt::MetaModifier) && !event.text().isEmpty();
  if (code == 0 && mnemonic) return event.ignore(), true;
  const bool open = acts().open_to(text_);
  if (code == 0) return !open && !event.text().isEmpty();
  event.accept();
  if (!open) return true;
  const screen::Scope typed(typed_, code);
  acts().act([&](screen::Hand& hand) { return hand.press(text_, Key{code}, selection()); });
  return true;
}

bool TextView::is_cut() const {
  constexpr int kFrame = 8;
  return edit_ && edit_->fontMetrics().horizontalAdvance(edit_->text()) > edit_->width() - kFrame;
}

// What the box cannot show, the hint says first.
bool TextView::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::ToolTip || !is_cut()) return View::eventFilter(watched, event);
  QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), edit_->text() + '\n' + widget().toolTip(),
                     edit_);
  return true;
}

void TextView::text_changed() {
  if (showing()) return;
  if (acts().open_to(text_))
    acts().act([this](screen::Hand& hand) { return hand.replace_text(text_, from_qt(edit_->text())); });
  refresh_again();
}

}  // namespace velanor::qt
