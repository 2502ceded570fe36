#include "qt/message_sheet.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>

#include "qt/action_button.h"
#include "qt/comparison_table.h"
#include "qt/message_icon.h"
#include "qt/strings.h"

namespace velanor::qt {
namespace {

using screen::Answer;
using screen::Buttons;

constexpr int kTextWidth = 460;

QString caption(Answer answer) {
  switch (answer) {
    case Answer::Ok:
      return QStringLiteral("&OK");
    case Answer::Cancel:
      return QStringLiteral("&Annuler");
    case Answer::Yes:
      return QStringLiteral("&Oui");
    default:
      return QStringLiteral("&Non");
  }
}

std::vector<Answer> offered(Buttons buttons) {
  if (buttons == Buttons::OkCancel) return {Answer::Ok, Answer::Cancel};
  if (buttons == Buttons::YesNo) return {Answer::Yes, Answer::No};
  return {Answer::Ok};
}

QLabel* make_text(const std::string& text) {
  auto* label = new QLabel(to_qt(text).replace("\r\n", "\n"));
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  const int wide = label->fontMetrics().size(0, label->text()).width();
  label->setFixedWidth(std::clamp(wide + 4, 220, kTextWidth));
  label->setMinimumHeight(label->heightForWidth(label->width()));
  return label;
}

}  // namespace

MessageSheet::MessageSheet(const screen::Message& message, QWidget& over)
    : Sheet(to_qt(message.title), over), message_(message) {
  setAccessibleDescription(to_qt(message.text));
  contents_ = make_contents();
  set_contents(contents_);
  connect(this, &Sheet::close_asked, this, [this] { emit answered(closing_answer()); });
}

MessageSheet::MessageSheet(const screen::Comparison& comparison, QWidget& over)
    : MessageSheet(screen::Message{comparison.title, comparison.text, screen::Icon::Question,
                                   Buttons::OkCancel, Answer::Cancel},
                   over) {
  compare(comparison.lines);
}

void MessageSheet::compare(const std::vector<screen::Comparison::Line>& lines) {
  table_ = new ComparisonTable(lines);
  static_cast<QGridLayout*>(contents_->layout())->addWidget(table_, 1, 0, 1, 2);
  auto* save = button(Answer::Ok);
  save->setText(QStringLiteral("&Enregistrer"));
  save->setEnabled(false);
  button(Answer::Cancel)->setText(QStringLiteral("&Revenir à la fiche"));
  connect(table_, &ComparisonTable::chosen, this, [this, save] { save->setEnabled(table_->is_complete()); });
}

QWidget* MessageSheet::make_contents() {
  auto* contents = new QWidget;
  auto* grid = new QGridLayout(contents);
  grid->setContentsMargins(16, 14, 16, 12);
  grid->setHorizontalSpacing(14);
  grid->setVerticalSpacing(14);
  grid->addWidget(new MessageIcon(message_.icon), 0, 0, Qt::AlignTop);
  grid->addWidget(make_text(message_.text), 0, 1, Qt::AlignVCenter | Qt::AlignLeft);
  grid->setColumnStretch(1, 1);
  auto* row = new QHBoxLayout;
  row->addStretch();
  for (const Answer answer : offered(message_.buttons)) {
    auto* button = new ActionButton(caption(answer));
    connect(button, &QPushButton::clicked, this, [this, answer] { emit answered(answer); });
    row->addWidget(button);
    buttons_.emplace_back(answer, button);
  }
  grid->addLayout(row, 2, 0, 1, 2);
  return contents;
}

Answer MessageSheet::closing_answer(const screen::Message& message) {
  return message.closing.value_or(offered(message.buttons).back());
}

ActionButton* MessageSheet::button(Answer answer) const {
  for (const auto& [own, button] : buttons_) {
    if (own == answer) return button;
  }
  return nullptr;
}

Answer MessageSheet::preset() const {
  return button(message_.preset) ? message_.preset : offered(message_.buttons).back();
}

void MessageSheet::focus_preset() {
  QWidget* const first = table_ ? static_cast<QWidget*>(table_) : button(preset());
  first->setFocus(Qt::TabFocusReason);
}

std::vector<QWidget*> MessageSheet::stops() const {
  std::vector<QWidget*> stops;
  if (table_) stops.push_back(table_);
  for (const auto& [answer, button] : buttons_) {
    if (button->isEnabled()) stops.push_back(button);
  }
  return stops;
}

void MessageSheet::move_focus(bool forward) {
  const auto stops = this->stops();
  const std::size_t count = stops.size();
  for (std::size_t i = 0; i < count; ++i) {
    if (stops[i]->hasFocus())
      return stops[(i + (forward ? 1 : count - 1)) % count]->setFocus(Qt::TabFocusReason);
  }
  focus_preset();
}

void MessageSheet::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Escape:
      return void(emit answered(closing_answer()));
    case Qt::Key_Left:
    case Qt::Key_Up:
      return move_focus(false);
    case Qt::Key_Right:
    case Qt::Key_Down:
      return move_focus(true);
    default:
      event->accept();
  }
}

}  // namespace velanor::qt
