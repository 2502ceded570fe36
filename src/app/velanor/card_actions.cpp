#include "app/velanor/card_actions.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QMenu>

#include "app/velanor/busy.h"

namespace velanor::app {
namespace {

using Component = qt::ControleVelanorWidget;

struct Entry {
  const char *button, *text;
  Qt::Key key;  // with Ctrl; 0: the button's own letter alone
};
constexpr Qt::Key kOwn = Qt::Key(0);
constexpr Entry kEntries[] = {
    {"Cmd_Ajout", "&Nouvelle fiche", Qt::Key_N}, {"Cmd_OK", "&Enregistrer", Qt::Key_S},
    {"Cmd_Annul", "&Abandonner", kOwn},          {"Cmd_Copier", "&Copier la fiche", kOwn},
    {"Cmd_Supp", "&Supprimer la fiche…", kOwn},
};

}  // namespace

CardActions::CardActions(Component& component, QObject* parent) : QObject(parent), component_(component) {
  for (const Entry& entry : kEntries) {
    auto* button = component_.findChild<QAbstractButton*>(entry.button);
    auto* action = new QAction(entry.text, this);
    if (entry.key != kOwn) {
      action->setShortcut(QKeySequence(Qt::CTRL | entry.key));
    } else {
      action->setText(action->text() + '\t' +
                      QKeySequence::mnemonic(button->text()).toString(QKeySequence::NativeText));
    }
    action->setAutoRepeat(false);
    connect(action, &QAction::triggered, button, &QAbstractButton::click);
    button->installEventFilter(this);
    commands_.push_back({action, button});
  }
  connect(&component_, &Component::message_opened, this, &CardActions::update);
  connect(&component_, &Component::message_closed, this, &CardActions::update);
  // A form that opens or goes takes the keyboard with it.
  connect(qApp, &QApplication::focusChanged, this, &CardActions::update);
  update();
}

void CardActions::add_to(QMenu& menu) {
  for (const Command& command : commands_) menu.addAction(command.action);
  connect(&menu, &QMenu::aboutToShow, this, &CardActions::update);
}

// Also while the component goes.
void CardActions::update() {
  const bool busy = component_.open_message() || component_.open_sheet();
  for (const Command& command : commands_)
    command.action->setEnabled(!busy && command.button->isEnabled() && !command.button->isHidden());
}

bool CardActions::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::EnabledChange:
    case QEvent::ShowToParent:
    case QEvent::HideToParent:
      update();
      break;
    default:
      break;
  }
  return QObject::eventFilter(watched, event);
}

}  // namespace velanor::app
