// The component on a real X server, with a few cards in a slow database, and a typist at it.
#pragma once

#include <QProcess>
#include <QStringList>
#include <chrono>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "qt/message_sheet.h"
#include "velanor/controle_velanor_widget.h"
#include "velanor/memory_database.h"

namespace velanor::x {

// Counted over the whole run.
int mistakes();
void expect(const std::string& what, std::string_view found, std::string_view wanted);
// Until the state is there; false after fifteen seconds.
bool wait_for(const std::function<bool()>& state);

class Desk {
 public:
  // Every selection takes so long.
  explicit Desk(std::chrono::milliseconds delay = std::chrono::milliseconds(60));
  ~Desk();

  // Whether the window has come and is active.
  bool comes_up();
  qt::ControleVelanorWidget& widget() { return *widget_; }
  // Null from then on: the host destroys it.
  void destroy() { widget_.reset(); }

  // Keys as xdotool names them, one after another without waiting for what they do.
  void type(const std::vector<std::string>& keys, int delay);
  void finish_typing();
  // Types and waits until the program has seen the last key; a message that waits then is closed.
  void type_through(const std::vector<std::string>& keys, int delay = 0);
  bool typed_in_vain() const;
  bool wait_for(const std::function<bool()>& state) { return x::wait_for(state); }
  // Opens the first card by its code.
  void open_card();

  screen::Form& top() { return widget_->screen().top(); }
  std::string text(const char* name);
  // Of what has the focus, "" where nothing has it.
  std::string focus();
  // The text of the message that waits, "" where none does.
  std::string message() const;
  bool card_exists();
  store::DbRecord stored();

 private:
  class SlowDatabase;
  class NoRights;

  store::MemoryDatabase memory_;
  std::unique_ptr<SlowDatabase> database_;
  std::unique_ptr<NoRights> rights_;
  std::unique_ptr<qt::ControleVelanorWidget> widget_;
  QProcess typist_;
};

}  // namespace velanor::x
