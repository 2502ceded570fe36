// What the rules ask of the window.
#include <QApplication>
#include <QCursor>
#include <QEventLoop>
#include <QMenu>
#include <optional>
#include <vector>

#include "qt/comparison_table.h"
#include "qt/stage_life.h"
#include "qt/strings.h"

namespace velanor::qt {

using screen::Scope;

// One message at a time is in sight: the host may ask while another one waits.
class ControleVelanorWidget::Stage::OpenMessage {
 public:
  // Of a message, or of what is to be chosen.
  template <typename Asked>
  OpenMessage(Stage& stage, const Asked& asked)
      : stage_(stage), below_(stage.open_message()), sheet_(asked, *stage.boards_) {
    const Scope placing(stage_.placing_);
    if (below_) below_->hide();
    stage_.messages_.push_back(&sheet_);
    stage_.set_mnemonics();
    stage_.forms_.back().views->leave_all_but(nullptr);
    come_up(sheet_);
  }
  ~OpenMessage() {
    const Scope placing(stage_.placing_);
    sheet_.hide();
    stage_.messages_.pop_back();
    stage_.set_mnemonics();
    if (below_ && stage_.widget_) come_up(*below_);
  }
  OpenMessage(const OpenMessage&) = delete;
  OpenMessage& operator=(const OpenMessage&) = delete;

  MessageSheet& sheet() { return sheet_; }

 private:
  static void come_up(MessageSheet& sheet) {
    sheet.show();
    sheet.raise();
    sheet.focus_preset();
  }

  Stage& stage_;
  MessageSheet* below_;
  MessageSheet sheet_;
};

screen::Answer ControleVelanorWidget::Stage::message(const screen::Message& message) {
  const CallOut call(*this);
  const screen::Answer answer = ask(message);
  call.return_if_there();
  return answer;
}

screen::Answer ControleVelanorWidget::Stage::ask(const screen::Message& message) {
  refused_ = message.buttons == screen::Buttons::Ok && message.icon == screen::Icon::Exclamation;
  return put(message, {}).value_or(MessageSheet::closing_answer(message));
}

std::optional<std::vector<screen::Answer>> ControleVelanorWidget::Stage::compare(
    const screen::Comparison& comparison) {
  const CallOut call(*this);
  refused_ = false;
  std::vector<screen::Answer> answers;
  const auto answer = put(comparison, [&](const MessageSheet& sheet) { answers = sheet.table()->answers(); });
  call.return_if_there();
  return answer == screen::Answer::Ok ? answers : std::vector<screen::Answer>();
}

// Nothing where it went away unanswered. `read` looks at the sheet as it was answered.
template <typename Asked>
std::optional<screen::Answer> ControleVelanorWidget::Stage::put(
    const Asked& asked, const std::function<void(const MessageSheet&)>& read) {
  const KeepAlive alive(*this);
  std::optional<screen::Answer> answer;
  const bool told = widget_ && !closed_;
  if (told) {
    refresh();
    QEventLoop loop;
    OpenMessage open(*this, asked);
    connect(&open.sheet(), &MessageSheet::answered, &loop, [&](screen::Answer given) {
      answer = given;
      if (read) read(open.sheet());
      // What is typed from here on belongs to whoever the rules give the focus to.
      gate_.hold();
      const Scope placing(placing_);
      open.sheet().hide();
      loop.quit();
    });
    // What was typed behind the message before belongs to this one, as to a form that has just opened.
    gate_.release();
    if (widget_) emit widget_->message_opened();
    if (!answer && widget_ && !closed_) loop.exec();
  }
  place_focus();
  if (!at_work() || open_message()) gate_.release();
  if (told && widget_) emit widget_->message_closed();
  return answer;
}

void ControleVelanorWidget::Stage::form_opened(screen::Form& form) {
  const CallOut call(*this);
  auto* sheet = new Sheet(to_qt(form.caption()), *boards_, to_qt(form.subtitle()));
  QWidget* pages = make_pages(form);
  sheet->set_contents(pages);
  forms_.back().views->leave_all_but(nullptr);
  add_form(form, sheet, *pages);
  connect(sheet, &Sheet::close_asked, this, [this] { act([](screen::Hand& hand) { return hand.close(); }); });
  set_mnemonics();
  refresh();
  {
    const Scope placing(placing_);
    sheet->show();
    sheet->raise();
  }
  call.return_if_there();
}

void ControleVelanorWidget::Stage::form_closed(screen::Form& form) {
  if (forms_.size() < 2 || forms_.back().form != &form) return;
  const Scope placing(placing_);
  Sheet* sheet = forms_.back().sheet;
  forms_.pop_back();
  sheet->hide();
  sheet->deleteLater();
  set_mnemonics();
}

void ControleVelanorWidget::Stage::pop_up(screen::Menu& menu) {
  auto* popup = new QMenu(boards_);
  popup->setObjectName(to_qt(menu.name()));
  popup->setAttribute(Qt::WA_DeleteOnClose);
  popup->setTitle(to_qt(menu.caption()));
  for (screen::Control* control : menu.form().controls()) {
    auto* entry = dynamic_cast<screen::Menu*>(control);
    if (!entry || entry->parent() != &menu) continue;
    QAction* action = popup->addAction(to_qt(entry->caption()));
    action->setObjectName(to_qt(entry->name()));
    action->setEnabled(entry->enabled());
    connect(action, &QAction::triggered, this,
            [this, entry] { act([&](screen::Hand& hand) { return hand.click(*entry); }); });
  }
  popup->popup(QCursor::pos());
}

void ControleVelanorWidget::Stage::beep() { QApplication::beep(); }

void ControleVelanorWidget::Stage::set_busy(bool busy) {
  if (busy) {
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  } else {
    QGuiApplication::restoreOverrideCursor();
  }
}

// ---- What surrounds the component.

void ControleVelanorWidget::Stage::show(control::Client* client, store::Database& database,
                                        std::string_view page, std::string_view title,
                                        std::string_view section) {
  const CallOut call(*this);
  if (help) {
    help->show(client, database, page, title, section);
  } else {
    emit widget_->help_asked(to_qt(page), to_qt(title));
  }
  call.return_if_there();
}

// The host may destroy the widget when it hears of it, so not before the component's call is over.
void ControleVelanorWidget::Stage::unload() {
  if (widget_) QMetaObject::invokeMethod(widget_, &ControleVelanorWidget::left, Qt::QueuedConnection);
}

}  // namespace velanor::qt
