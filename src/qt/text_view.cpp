#include "qt/text_view.h"

#include <QKeyEvent>

#include "qt/strings.h"

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
  if (edit_) show_text();
}

// The caret stays where it was in a text that only changed a character. Of a text that is too long for its
// box the beginning is seen until somebody works in it.
void TextView::show_text() {
  const QString text = to_qt(text_.text());
  if (edit_->text() == text) return;
  const int caret = edit_->cursorPosition();
  const bool same_length = text.length() == edit_->text().length();
  edit_->setText(stood_ = text);
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
  if (code == 0) return !acts().open_to(text_) && !event.text().isEmpty();
  act_key(code, event);
  event.accept();
  return true;
}

void TextView::act_key(char32_t code, const QKeyEvent& event) {
  if (!acts().open_to(text_)) return;
  acts().act([&](screen::Hand& hand) {
    const bool selected = edit_->hasSelectedText();
    if (code == Key::kEnter) return enter(hand);
    if (selected && code != Key::kBackspace) return replace_selection(code);
    Key key{code};
    text_.filter(key);
    show_text();
    if (key.code >= U' ' || key.code == Key::kBackspace) put(key.code, event);
  });
}

void TextView::enter(screen::Hand& hand) {
  Key key{Key::kEnter};
  text_.filter(key);
  screen::CommandButton* button = text_.form().default_button;
  show_text();
  if (key.code == Key::kEnter && button) hand.click(*button);
  if (key.code >= U' ') put(key.code, QKeyEvent(QEvent::KeyPress, 0, Qt::NoModifier));
}

// The length is bounded here: the line edit would cut a pasted value before it has been judged.
void TextView::put(char32_t code, const QKeyEvent& event) {
  const bool full = text_.max_length() > 0 && edit_->text().length() >= text_.max_length();
  if (full && code != Key::kBackspace && !edit_->hasSelectedText()) return;
  const bool same = event.key() == Qt::Key_Backspace || event.text() == QString::fromUcs4(&code, 1);
  QKeyEvent typed(QEvent::KeyPress, same ? event.key() : Qt::Key_unknown,
                  same ? event.modifiers() : Qt::NoModifier,
                  code == Key::kBackspace ? event.text() : QString::fromUcs4(&code, 1));
  typing_ = true;
  edit_->carry_out(typed);
  typing_ = false;
  pass_on();
}

// The filters judge a key against the whole text; what the key replaces must not count.
void TextView::replace_selection(char32_t code) {
  const int start = edit_->selectionStart();
  QString wanted = edit_->text();
  wanted.replace(start, edit_->selectionLength(), QString::fromUcs4(&code, 1));
  const QString left = to_qt(text_.admitted(from_qt(wanted)));
  if (left.length() != wanted.length()) return;
  typing_ = true;
  edit_->insert(left.mid(start, 1));
  typing_ = false;
  pass_on();
}

void TextView::pass_on() {
  const std::string text = from_qt(edit_->text());
  if (text != text_.text()) text_.edit(text);
}

void TextView::text_changed() {
  if (typing_ || showing()) return;
  if (acts().open_to(text_)) {
    const std::string value = from_qt(edit_->text());
    // What stood there may be taken back to, whatever the keys may say of its form.
    const bool stood = edit_->text() == stood_;
    acts().act([&](screen::Hand&) { stood ? text_.show_whole(value) : text_.edit(text_.admitted(value)); });
  }
  refresh_again();
}

}  // namespace velanor::qt
