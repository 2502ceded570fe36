#include "app/velanor/card_news.h"

#include <QEvent>
#include <QPointer>
#include <QSocketNotifier>
#include <QTimer>

#include "app/velanor/busy.h"
#include "qt/strings.h"

namespace velanor::app {

CardNews::CardNews(qt::ControleVelanorWidget& component, store::Database& database, QObject* parent)
    : QObject(parent), component_(component), news_(database.news()) {
  if (!news_) {
    component_.window()->installEventFilter(this);
    return;
  }
  heard_ = new QSocketNotifier(news_->descriptor(), QSocketNotifier::Read, this);
  connect(heard_, &QSocketNotifier::activated, this, &CardNews::hear);
}

CardNews::~CardNews() { delete heard_; }

// Not while the component is in the midst of something: what is heard is read.
void CardNews::hear() {
  heard_->setEnabled(false);
  QTimer::singleShot(waits(component_) ? kPatience : 0, heard_, [this] { heard_->setEnabled(true); });
  if (waits(component_)) return;
  const QPointer<CardNews> self(this);
  for (const store::Change& change : news_->take()) {
    emit written(qt::to_qt(change.file), qt::to_qt(change.id));
    if (!self) return;
  }
}

bool CardNews::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::WindowActivate) emit may_be_written();
  return QObject::eventFilter(watched, event);
}

}  // namespace velanor::app
