#include "app/velanor/menus.h"

#include <QApplication>
#include <QFileInfo>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QTimer>

#include "app/velanor/appearance.h"
#include "app/velanor/card_actions.h"
#include "app/velanor/card_aids.h"
#include "app/velanor/card_history.h"
#include "app/velanor/card_steps.h"
#include "app/velanor/checks_dock.h"
#include "app/velanor/employees_dock.h"
#include "app/velanor/main_window.h"
#include "app/velanor/printing.h"
#include "app/velanor/server_address.h"
#include "app/velanor/shortcuts_dialog.h"
#include "app/velanor/table_dialogs.h"
#include "app/velanor/workplace.h"
#include "app/velanor/year_actions.h"
#include "app/velanor/year_dock.h"

namespace velanor::app {
namespace {

template <typename Receiver, typename Slot>
QAction* add(QMenu& menu, const QString& text, const QKeySequence& keys, Receiver* receiver, Slot slot) {
  QAction* action = menu.addAction(text);
  action->setShortcut(keys);
  QObject::connect(action, &QAction::triggered, receiver, slot);
  return action;
}

}  // namespace

Menus::Menus(MainWindow& window, Workplace* place, Appearance* appearance)
    : QObject(&window), window_(window), place_(place) {
  make_file();
  if (place_) {
    make_edit();
    make_card();
    make_year();
    make_tables();
  }
  make_view(appearance);
  make_help();
}

Menus::~Menus() {
  for (QAction* menu : window_.menuBar()->actions()) delete menu->menu();
}

QMenu* Menus::add_menu(const QString& title) {
  QMenu* menu = window_.menuBar()->addMenu(title);
  menu->setToolTipsVisible(true);
  return menu;
}

void Menus::make_file() {
  QMenu& file = *add_menu("&Fichier");
  add(file, "&Nouvelle base…", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_N), &window_,
      &MainWindow::new_base_asked);
  add(file, "&Ouvrir…", QKeySequence::Open, &window_, &MainWindow::ask_file);
  add(file, "Ouvrir l'&exemple", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_O), &window_,
      &MainWindow::example_asked);
  add(file, "Se &connecter à un serveur…", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S), &window_,
      &MainWindow::server_asked);
  recent_ = file.addMenu("Bases &récentes");
  recent_->setEnabled(false);
  recent_->setToolTipsVisible(true);
  if (place_) {
    file.addSeparator();
    backups_ = add(file, "Reprendre une &sauvegarde…", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_B),
                   &window_, &MainWindow::backups_asked);
    backups_->setEnabled(false);
    // What is printed stands here.
    file.addSeparator();
    place_->printing->add_to(*file.addMenu("&Imprimer et PDF"));
    file.addSeparator();
    add(file, "Fermer la &base", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_W), &window_,
        &MainWindow::base_close_asked);
  } else {
    file.addSeparator();
  }
  add(file, "&Fermer la fenêtre", QKeySequence(Qt::CTRL | Qt::Key_W), &window_, &QWidget::close);
  add(file, "&Quitter", QKeySequence(Qt::CTRL | Qt::Key_Q), &window_, &MainWindow::quit_asked);
}

void Menus::make_edit() {
  QMenu& edit = *add_menu("Éd&ition");
  place_->steps->add_to(edit);
  edit.addSeparator();
  QAction* copy = add(edit, "&Copier le tableau", {}, this, [this] {
    // When the menu has given the keyboard back.
    QTimer::singleShot(0, this, &Menus::copy_table);
  });
  // The component and the tables answer these keys themselves.
  copy->setText(copy->text() + "\tCtrl+Maj+C");
  copy->setToolTip("Les lignes du tableau où est le curseur, pour un tableur");
  edit.addSeparator();
  place_->employees->add_search_to(edit);
}

void Menus::copy_table() {
  QWidget* focus = window_.focusWidget();
  if (!focus) return;
  const bool card = place_->component->isAncestorOf(focus);
  QKeyEvent keys(QEvent::KeyPress, Qt::Key_C,
                 card ? Qt::ControlModifier | Qt::ShiftModifier : Qt::KeyboardModifiers(Qt::ControlModifier));
  QCoreApplication::sendEvent(focus, &keys);
}

void Menus::make_card() {
  QMenu& card = *add_menu("Fiche");
  (new CardActions(*place_->component, this))->add_to(card);
  card.addSeparator();
  place_->aids->add_to(card);
  card.addSeparator();
  place_->employees->add_steps_to(card);
  card.addSeparator();
  place_->history->add_to(card);
}

void Menus::make_year() {
  QMenu& year = *add_menu("Année");
  auto* years = new YearActions(*place_->component, this);
  connect(years, &YearActions::told, &window_, &MainWindow::tell);
  years->add_to(year);
  year.addSeparator();
  add(year, "&Contrôles", QKeySequence(Qt::Key_F8), place_->checks, &ChecksDock::check)
      ->setToolTip("Ce qui est faux ou à revoir dans les fiches de l'entité et de l'année");
  year.addSeparator();
  place_->employees->add_export_to(year);
}

void Menus::make_tables() {
  tables_ = new TableDialogs(window_, *place_, this);
  connect(tables_, &TableDialogs::told, &window_, &MainWindow::tell);
  tables_->add_to(*add_menu("Tables"));
}

void Menus::make_view(Appearance* appearance) {
  QMenu& view = *add_menu("Afficha&ge");
  if (place_) {
    place_->employees->add_view_to(view);
    view.addAction(place_->year->action());
    QAction* checks = place_->checks->toggleViewAction();
    checks->setText("C&ontrôles");
    checks->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_F8));
    view.addAction(checks);
    view.addSeparator();
  }
  if (appearance) appearance->add_to(view);
  QAction* full =
      add(view, "&Plein écran", QKeySequence(Qt::Key_F11), &window_, &MainWindow::set_full_screen);
  full->setCheckable(true);
  connect(&view, &QMenu::aboutToShow, full, [this, full] { full->setChecked(window_.isFullScreen()); });
}

void Menus::make_help() {
  QMenu& help = *add_menu("Aide");
  add(help, "&Guide", QKeySequence(Qt::Key_F1), &window_, &MainWindow::show_guide);
  add(help, "&Raccourcis clavier", QKeySequence(Qt::CTRL | Qt::Key_F1), &window_,
      [this] { show_shortcuts(window_); });
  help.addSeparator();
  add(help, "À &propos…", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_F1), &window_, &MainWindow::show_about);
}

void Menus::set_recent(const QStringList& bases) {
  recent_->clear();
  recent_->setEnabled(!bases.isEmpty());
  for (const QString& base : bases) {
    const QString name = is_server(base) ? ServerAddress::of(base).name() : QFileInfo(base).fileName();
    // A name is no place for a letter to press.
    QAction* entry = recent_->addAction(QString(name).replace('&', "&&"));
    entry->setToolTip(base);
    connect(entry, &QAction::triggered, &window_, [this, base] { emit window_.open_asked(base); });
  }
}

void Menus::set_backups(bool on) {
  if (backups_) backups_->setEnabled(on);
}

}  // namespace velanor::app
