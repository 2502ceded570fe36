#include "app/velanor/year_actions.h"

#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>

#include "app/velanor/busy.h"
#include "qt/strings.h"
#include "text/failure.h"
#include "velanor/hand.h"

namespace velanor::app {

using Component = qt::ControleVelanorWidget;

YearActions::YearActions(Component& component, QObject* parent)
    : QObject(parent),
      component_(component),
      years_(dynamic_cast<screen::ComboBox&>(*component.screen().base().find("Cbo_Periode"))),
      next_(make("Année &suivante", Qt::Key_Right, Step::kNext)),
      previous_(make("Année &précédente", Qt::Key_Left, Step::kPrevious)) {
  connect(&component_, &Component::state_changed, this, &YearActions::update);
  connect(&component_, &Component::message_closed, this, &YearActions::update);
  // Entity and year have no signal of their own; their fields have.
  if (auto* entity = component_.findChild<QLineEdit*>("Txt_Asso"))
    connect(entity, &QLineEdit::textChanged, this, &YearActions::update, Qt::QueuedConnection);
  if (auto* year = component_.findChild<QComboBox*>("Cbo_Periode"))
    connect(year, &QComboBox::currentIndexChanged, this, &YearActions::update, Qt::QueuedConnection);
  update();
}

QAction* YearActions::make(const QString& text, Qt::Key key, Step step) {
  auto* action = new QAction(text, this);
  action->setShortcut(QKeySequence(Qt::ALT | key));
  connect(action, &QAction::triggered, this, [this, step] { go(step); });
  return action;
}

void YearActions::add_to(QMenu& menu) {
  menu.addAction(next_);
  menu.addAction(previous_);
  connect(&menu, &QMenu::aboutToShow, this, &YearActions::update);
}

// Whatever the order of the list.
int YearActions::line_of(Step step) const {
  const std::string_view now = years_.text();
  int found = -1;
  for (int line = 0; line < years_.count(); ++line) {
    const std::string_view year = years_.line(line);
    const bool beyond = step == Step::kNext ? year > now : year < now;
    const bool nearer =
        found < 0 || (step == Step::kNext ? year < years_.line(found) : year > years_.line(found));
    if (beyond && nearer) found = line;
  }
  return found;
}

void YearActions::go(Step step) try {
  const int line = line_of(step);
  if (is_busy(component_)) return emit told(kFinishFirst);
  if (component_.state() != control::State::kNone || !years_.usable() || line < 0) return;
  screen::Hand hand(component_.screen());
  if (!hand.choose(years_, line).empty()) return;
  // What is typed next is the code of an employee.
  if (auto* employee = component_.screen().base().find("Txt_Aidant")) (void)hand.focus(*employee);
} catch (const std::exception& error) {
  emit told(qt::to_qt(text::failure_sentence(error)));
}

void YearActions::update() {
  const bool browsing = component_.state() == control::State::kNone && !component_.open_message();
  next_->setEnabled(browsing && years_.usable() && line_of(Step::kNext) >= 0);
  previous_->setEnabled(browsing && years_.usable() && line_of(Step::kPrevious) >= 0);
}

}  // namespace velanor::app
