// What the component tells of itself, handed on to the host.
#include <QLabel>
#include <QLayout>
#include <utility>

#include "qt/stage_life.h"
#include "qt/strings.h"

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

void ControleVelanorWidget::Stage::card_opened(const control::Card& card) {
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

}  // namespace velanor::qt
