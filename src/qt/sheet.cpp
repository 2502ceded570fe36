#include "qt/sheet.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QToolButton>
#include <QVBoxLayout>

namespace velanor::qt {
namespace {

QAccessibleInterface* dialog_role(const QString& name, QObject* object) {
  auto* sheet =
      name == QLatin1String(Sheet::staticMetaObject.className()) ? qobject_cast<Sheet*>(object) : nullptr;
  return sheet ? new QAccessibleWidget(sheet, QAccessible::Dialog) : nullptr;
}

void install_role_once() {
  static const bool installed = (QAccessible::installFactory(dialog_role), true);
  (void)installed;
}

QToolButton* make_close_box() {
  auto* box = new QToolButton;
  box->setText(QStringLiteral("✕"));
  box->setAutoRaise(true);
  box->setFocusPolicy(Qt::NoFocus);
  box->setAccessibleName(QStringLiteral("Fermer"));
  box->setToolTip(QStringLiteral("Fermer"));
  return box;
}

}  // namespace

Sheet::Sheet(const QString& title, QWidget& over, const QString& subtitle)
    : QWidget(&over), panel_(new QFrame(this)) {
  install_role_once();
  setAccessibleName(title);
  setAccessibleDescription(subtitle);
  panel_->setFrameShape(QFrame::StyledPanel);
  panel_->setFrameShadow(QFrame::Raised);
  panel_->setAutoFillBackground(true);
  panel_->installEventFilter(this);
  column_ = new QVBoxLayout(panel_);
  column_->setContentsMargins(1, 1, 1, 1);
  column_->setSpacing(0);
  auto* bar = new QWidget;
  bar->setAutoFillBackground(true);
  bar->setBackgroundRole(QPalette::Mid);
  auto* row = new QHBoxLayout(bar);
  row->setContentsMargins(12, 4, 4, 4);
  auto* caption = new QLabel(title);
  QFont font = caption->font();
  font.setBold(true);
  caption->setFont(font);
  auto* close = make_close_box();
  close_ = close;
  connect(close, &QToolButton::clicked, this, &Sheet::close_asked);
  row->addWidget(caption);
  row->addWidget(new QLabel(subtitle.isEmpty() ? QString() : QStringLiteral("– ") + subtitle), 1);
  row->addWidget(close);
  column_->addWidget(bar);
  over.installEventFilter(this);
  setGeometry(over.rect());
}

void Sheet::set_contents(QWidget* contents) {
  column_->addWidget(contents, 1);
  place();
}

bool Sheet::event(QEvent* event) {
  switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
      return event->accept(), true;
    default:
      return QWidget::event(event);
  }
}

bool Sheet::eventFilter(QObject* watched, QEvent* event) {
  if (watched == parentWidget() && event->type() == QEvent::Resize) setGeometry(parentWidget()->rect());
  if (watched == panel_ && event->type() == QEvent::LayoutRequest) place();
  return QWidget::eventFilter(watched, event);
}

void Sheet::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), QColor(0, 0, 0, 90));
  painter.setPen(Qt::NoPen);
  for (int step = 1; step <= 6; ++step) {
    painter.setBrush(QColor(0, 0, 0, 14));
    painter.drawRoundedRect(panel_->geometry().adjusted(-step, -step, step, step + 2), step, step);
  }
}

void Sheet::resizeEvent(QResizeEvent*) { place(); }

void Sheet::place() {
  const QSize wanted = panel_->sizeHint().expandedTo(panel_->minimumSize()).boundedTo(size() - QSize(16, 16));
  panel_->setGeometry(
      QRect(QPoint((width() - wanted.width()) / 2, (height() - wanted.height()) * 2 / 5), wanted));
}

}  // namespace velanor::qt
