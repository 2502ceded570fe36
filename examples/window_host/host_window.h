// A window of the host's with the component on it. Its title tells what is open.
#pragma once

#include <velanor/controle_velanor_widget.h>

#include <QCloseEvent>
#include <QMainWindow>
#include <QStatusBar>
#include <QString>
#include <QTimer>
#include <string>

#include "near_dates.h"

class HostWindow : public QMainWindow {
 public:
  using Cards = velanor::qt::ControleVelanorWidget;

  // All of it outlives the window. Throws store::DbError where the component cannot start.
  HostWindow(velanor::store::Database& database, velanor::control::UserRights& rights, NearDates& entry)
      : cards_(new Cards) {
    setCentralWidget(cards_);
    cards_->DroitsUtilisateur(rights);
    cards_->TheDatabase(database);
    cards_->set_entry(entry);
    entry.refused_because = [this](const std::string& why) {
      statusBar()->showMessage(QString::fromStdString(why));
    };
    connect(cards_, &Cards::state_changed, this, &HostWindow::tell);
    connect(cards_, &Cards::card_title_changed, this, &HostWindow::tell);
    connect(cards_, &Cards::modified_changed, this, &HostWindow::tell);
    connect(cards_, &Cards::left, this, &QWidget::close);
    tell();
    cards_->init();
  }

  Cards& cards() { return *cards_; }

 protected:
  // What was entered is not lost without a question. A question of the component's that waits is answered by
  // the closing itself, as by its close box.
  void closeEvent(QCloseEvent* event) override {
    event->setAccepted(may_close_ || !cards_->modified());
    if (event->isAccepted() || asking_) return;
    // Not within the event: a second one that came meanwhile would close the window unasked.
    asking_ = true;
    QTimer::singleShot(0, this, &HostWindow::ask_and_close);
  }

 private:
  void ask_and_close() {
    using namespace velanor::screen;
    const Answer answer = cards_->ask({.title = "Fermer",
                                       .text = "Ce qui n'est pas enregistré sera perdu. Fermer quand même ?",
                                       .icon = Icon::Question,
                                       .buttons = Buttons::YesNo,
                                       .preset = Answer::No});
    asking_ = false;
    may_close_ = answer == Answer::Yes;
    if (may_close_) close();
  }

  void tell() {
    using velanor::control::State;
    const State state = cards_->state();
    QString title = cards_->card_title().replace("[*]", "[*][*]") + "[*]";
    if (state == State::kNone) title = "[*]";
    if (state == State::kCreating) title += " (création)";
    if (state == State::kReading) title += " (consultation)";
    setWindowTitle(title + (state == State::kNone ? "" : " – ") + "Fiches du personnel");
    setWindowModified(cards_->modified());
  }

  Cards* cards_;  // the window's, which destroys it
  bool asking_ = false;
  bool may_close_ = false;
};
