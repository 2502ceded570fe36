// What the component tells of itself, handed on to the host.
#include <QApplication>
#include <QLabel>
#include <QLayout>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <utility>

#include "qt/stage_life.h"
#include "qt/strings.h"
#include "qt/text_edit.h"

namespace velanor::qt {
namespace {

// What the store says is for the user; anything else is a mistake of the program around the component.
QString sentence_of(const std::exception_ptr& failure) {
  QString why = QStringLiteral("Les fiches du personnel ne peuvent pas être affichées.\n\n");
  try {
    std::rethrow_exception(failure);
  } catch (const store::DbError& error) {
    why += QString::fromUtf8(error.what());
  } catch (...) {
    why += QStringLiteral("Le programme qui les contient ne les a pas ouvertes correctement.");
  }
  return why;
}

QLabel* make_sentence() {
  auto* label = new QLabel;
  label->setObjectName(QStringLiteral("no_start"));
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setAlignment(Qt::AlignCenter);
  label->setMargin(40);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  return label;
}

}  // namespace

// A failure is told in place of the pages; a start that succeeds at last shows them again.
void ControleVelanorWidget::Stage::show_start(const std::exception_ptr& failure) {
  if (!failure && !no_start_) return;
  if (!no_start_) boards_->layout()->addWidget(no_start_ = make_sentence());
  boards_->layout()->itemAt(0)->widget()->setVisible(!failure);
  no_start_->setVisible(failure != nullptr);
  if (failure) no_start_->setText(sentence_of(failure));
}

// Whoever hears may destroy the widget.
template <typename Signal, typename... Values>
void ControleVelanorWidget::Stage::tell(Signal signal, const Values&... values) {
  const KeepAlive alive(*this);
  const screen::Scope called_out(called_out_);
  if (widget_) emit(widget_->*signal)(values...);
}

// A card is read from its top.
void ControleVelanorWidget::Stage::card_opened(const control::Card& card) {
  if (widget_) {
    // The keys that opened it are no text to be taken back: that would leave the card.
    for (TextEdit* edit : widget_->findChildren<TextEdit*>()) {
      if (edit->isUndoAvailable() || edit->isRedoAvailable()) edit->setText(edit->text());
    }
    for (const QScrollArea* area : widget_->findChildren<QScrollArea*>())
      area->verticalScrollBar()->setValue(0);
  }
  tell(&ControleVelanorWidget::card_opened, to_qt(card.id), to_qt(card.title));
}
void ControleVelanorWidget::Stage::card_saved(const control::Card& card) {
  tell(&ControleVelanorWidget::card_saved, to_qt(card.id), to_qt(card.title));
}
void ControleVelanorWidget::Stage::card_deleted(const control::Card& card) {
  tell(&ControleVelanorWidget::card_deleted, to_qt(card.id), to_qt(card.title));
}
void ControleVelanorWidget::Stage::card_copied(const control::Card& card, const std::string& copy) {
  tell(&ControleVelanorWidget::card_copied, to_qt(card.id), to_qt(card.title), to_qt(copy));
}
void ControleVelanorWidget::Stage::card_closed(const control::Card& card) {
  tell(&ControleVelanorWidget::card_closed, to_qt(card.id), to_qt(card.title));
}

void ControleVelanorWidget::Stage::card_saved_elsewhere(const control::Card& card,
                                                        const std::string& author) {
  tell(&ControleVelanorWidget::card_saved_elsewhere, to_qt(card.id), to_qt(card.title), to_qt(author));
}
void ControleVelanorWidget::Stage::card_deleted_elsewhere(const control::Card& card,
                                                          const std::string& author) {
  tell(&ControleVelanorWidget::card_deleted_elsewhere, to_qt(card.id), to_qt(card.title), to_qt(author));
}

// Each property as it is when its turn comes: a slot of the one before may have changed it.
void ControleVelanorWidget::Stage::state_changed() {
  using Widget = ControleVelanorWidget;
  const KeepAlive alive(*this);
  const auto tell_if_new = [&](auto& told, const auto& now, auto signal) {
    if (std::exchange(told, now) != now) tell(signal, now);
  };
  tell_if_new(told_state_, component_.state(), &Widget::state_changed);
  tell_if_new(told_id_, to_qt(component_.card_id()), &Widget::card_id_changed);
  tell_if_new(told_title_, to_qt(component_.card_title()), &Widget::card_title_changed);
  tell_if_new(told_modified_, component_.modified(), &Widget::modified_changed);
}

void ControleVelanorWidget::Stage::act_over() { tell(&ControleVelanorWidget::acted); }

// ---- What others write.

void ControleVelanorWidget::Stage::listen_to_others() {
  const int descriptor = component_.news_descriptor();
  if (descriptor < 0) return;
  others_ = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
  connect(others_.get(), &QSocketNotifier::activated, this, [this] { hear_others(); });
}

// The descriptor stays readable until it is heard, so nobody listens meanwhile. A list that hangs over the
// window is not changed under the hand of whoever is choosing.
void ControleVelanorWidget::Stage::hear_others() {
  const KeepAlive alive(*this);
  if (!others_) return;
  others_->setEnabled(false);
  const bool busy = !idle() || QApplication::activePopupWidget();
  if (!busy) run([this] { component_.hear_news(); });
  if (!widget_ || component_.closed()) return stop_listening();
  constexpr int kLater = 200;
  QTimer::singleShot(busy ? kLater : 0, this, [this] {
    if (others_) others_->setEnabled(true);
  });
}

// Perhaps within what it called.
void ControleVelanorWidget::Stage::stop_listening() {
  if (!others_) return;
  others_->setEnabled(false);
  others_.release()->deleteLater();
}

}  // namespace velanor::qt
