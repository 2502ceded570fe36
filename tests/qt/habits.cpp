// What clerks do without looking, on a real X server: they answer two messages in one go, press Enter once
// too often, take back what they typed, and close the window while it asks.
#include <QApplication>
#include <iostream>

#include "x_desk.h"

namespace {

using namespace velanor;
using namespace velanor::x;
using Keys = std::vector<std::string>;

Keys operator+(Keys keys, const Keys& more) {
  keys.insert(keys.end(), more.begin(), more.end());
  return keys;
}

const Keys kToItems{"alt+p", "shift+Tab", "Home", "alt+l"};

// More hours than the law allows: the question whether to keep them, and behind its "Oui" the warning.
void answer_two_messages(int delay) {
  Desk desk;
  if (!desk.comes_up()) return;
  desk.open_card();
  const Keys hours{"Home", "Return", "ctrl+a", "2", "0", "0", "alt+o"};
  const Keys both{"alt+r", "Return", "Return"};
  const Keys on{"alt+d", "alt+h", "1", "5", "0", "alt+o"};
  desk.type(kToItems + hours + both + on, delay);
  const std::string at = "two messages at " + std::to_string(delay) + " ms: ";
  if (!desk.wait_for([&] { return desk.stored()(2) == "15000"; }))
    expect(at + "the card", desk.message() + " at " + desk.focus(), "saved");
  desk.finish_typing();
  expect(at + "hours of the item", desk.stored()(31, 1, 1), "20000");
  expect(at + "message", desk.message(), "");
}

// What was typed over a field that was stepped into comes back, and so does what one stray key took.
void take_back() {
  Desk desk;
  if (!desk.comes_up()) return;
  desk.open_card();
  desk.type_through({"alt+h", "1", "2", "comma", "5", "ctrl+z"});
  expect("hours taken back", desk.text("Txt_HorMensEtab"), "151,67");
  desk.type_through({"Tab", "shift+Tab", "7", "ctrl+z", "Tab"});
  expect("hours taken back again", desk.text("Txt_HorMensEtab"), "151,67");
  desk.type_through({"alt+n", "E", "z", "e", "Escape", "ctrl+z", "ctrl+z", "Tab"});
  expect("town taken back", desk.text("Cbo_Com"), "Albi");
  expect("message", desk.message(), "");
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  // Faster, the server takes two Enters for one that is held down, and that answers nothing.
  for (const int delay : {6, 12, 40}) answer_two_messages(delay);
  take_back();
  std::cout << (mistakes() ? "work was lost" : "nothing was lost") << std::endl;
  return mistakes() ? 1 : 0;
}
