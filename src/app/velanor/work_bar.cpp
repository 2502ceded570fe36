#include "app/velanor/work_bar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <utility>

namespace velanor::app {
namespace {

constexpr int kPatience = 200;  // milliseconds that nobody minds
constexpr int kWidth = 140;

}  // namespace

// No letter is underlined: those of the component are pressed all day.
WorkBar::WorkBar(QWidget* parent)
    : QWidget(parent), what_(new QLabel), bar_(new QProgressBar), button_(new QPushButton("Annuler")) {
  setObjectName("work");
  button_->setObjectName("cancel_work");
  button_->setShortcut(QKeySequence(Qt::SHIFT | Qt::Key_Escape));
  button_->setToolTip("Maj+Échap");
  button_->setFocusPolicy(Qt::TabFocus);
  bar_->setFixedWidth(kWidth);
  bar_->setMaximumHeight(fontMetrics().height());
  bar_->setTextVisible(false);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  for (QWidget* part :
       {static_cast<QWidget*>(what_), static_cast<QWidget*>(bar_), static_cast<QWidget*>(button_)})
    row->addWidget(part);
  connect(button_, &QPushButton::clicked, this, [this] {
    if (const auto cancel = cancel_) cancel();
  });
  hide();
}

void WorkBar::show_part(const QObject& worker, const QString& what, double part,
                        std::function<void()> cancel) {
  if (std::exchange(worker_, &worker) != &worker) {
    since_.start();
    hide();
  }
  cancel_ = std::move(cancel);
  what_->setText(what);
  bar_->setAccessibleName(what);
  bar_->setRange(0, part < 0 ? 0 : 100);
  if (part >= 0) bar_->setValue(static_cast<int>(part * 100));
  button_->setAccessibleName("Annuler : " + what);
  if (since_.elapsed() >= kPatience) show();
}

void WorkBar::done(const QObject& worker) {
  if (worker_ == &worker) clear();
}

void WorkBar::clear() {
  worker_.clear();
  cancel_ = {};
  hide();
}

}  // namespace velanor::app
