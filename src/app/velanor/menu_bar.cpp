#include "app/velanor/menu_bar.h"

#include <QKeyEvent>

#include "qt/strings.h"
#include "text/fold.h"

namespace velanor::app {
namespace {

std::string folded(const QString& text) { return text::folded(qt::from_qt(text)); }

bool begins_with(const QAction& menu, const QString& letter) {
  return menu.isVisible() && menu.isEnabled() && !menu.text().contains('&') &&
         folded(menu.text()).starts_with(folded(letter));
}

}  // namespace

void MenuBar::keyPressEvent(QKeyEvent* event) {
  const bool letter = !event->modifiers() && event->text().size() == 1 && event->text().front().isLetter();
  const auto menus = actions();
  const auto count = menus.size();
  const auto here = activeAction() ? menus.indexOf(activeAction()) : -1;
  for (qsizetype step = 1; letter && step <= count; ++step) {
    QAction* menu = menus[(here + step) % count];
    if (begins_with(*menu, event->text())) return setActiveAction(menu), event->accept();
  }
  QMenuBar::keyPressEvent(event);
}

}  // namespace velanor::app
