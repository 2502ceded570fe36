// A message box as a sheet.
#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "qt/sheet.h"
#include "velanor/screen.h"

namespace velanor::qt {

class ActionButton;
class ComparisonTable;

class MessageSheet : public Sheet {
  Q_OBJECT

 public:
  MessageSheet(const screen::Message& message, QWidget& over);
  // What is to be chosen stands below the text; "Enregistrer" waits until every line is.
  MessageSheet(const screen::Comparison& comparison, QWidget& over);

  // What closing the box without an answer means.
  static screen::Answer closing_answer(const screen::Message& message);
  screen::Answer closing_answer() const { return closing_answer(message_); }
  ActionButton* button(screen::Answer answer) const;
  const screen::Message& message() const { return message_; }
  // nullptr where nothing is to be chosen.
  ComparisonTable* table() const { return table_; }
  // The answer that Enter gives; where the message names none that it offers, the closing one.
  screen::Answer preset() const;
  void focus_preset();
  // To the next button, or the one before.
  void move_focus(bool forward);

 signals:
  void answered(velanor::screen::Answer answer);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QWidget* make_contents();
  void compare(const std::vector<screen::Comparison::Line>& lines);
  // Where the focus can stop, in order.
  std::vector<QWidget*> stops() const;

  screen::Message message_;
  QWidget* contents_ = nullptr;
  ComparisonTable* table_ = nullptr;
  std::vector<std::pair<screen::Answer, ActionButton*>> buttons_;
};

}  // namespace velanor::qt
