// A fast typist on a real X server: whatever opens or closes while the keys come, every key must be
// found where it belongs. Needs xdotool, a display and a window manager.
#include <QApplication>
#include <iostream>

#include "x_desk.h"

namespace {

using namespace velanor;
using namespace velanor::x;

// An unknown entity and its message; the entity, the employee; the sector from its list, the town with the
// list of those that begin so; the items of her first amendment, one
// added and kept; the monthly hours typed over; saved; the next employee.
const char* const kKeys[]{
    "9",     "9",   "9",     "Return",    "0",     "0",     "1",      "0",     "0",     "0",
    "1",     "0",   "alt+t", "Tab",       "F4",    "Up",    "Return", "Tab",   "E",     "z",
    "e",     "Tab", "alt+p", "shift+Tab", "Down",  "alt+l", "alt+j",  "0",     "0",     "2",
    "1",     "0",   "Tab",   "2",         "comma", "5",     "alt+o",  "alt+r", "alt+o", "alt+d",
    "alt+h", "1",   "5",     "0",         "alt+o", "0",     "0",      "0",     "2",     "0"};

void type_at(int delay) {
  Desk desk;
  if (!desk.comes_up()) return;
  desk.type({std::begin(kKeys), std::end(kKeys)}, delay);
  const std::string at = "at " + std::to_string(delay) + " ms: ";
  desk.wait_for([&] { return desk.text("Txt_NomAidant") == "DURAND PAUL" || desk.typed_in_vain(); });
  desk.finish_typing();
  const store::DbRecord card = desk.stored();
  expect(at + "employee", desk.text("Txt_NomAidant"), "DURAND PAUL");
  expect(at + "hours", card(2), "15000");
  expect(at + "sector", card(4), "007");
  expect(at + "town", card(5), "Eze");
  // The new item stands where the rules put it.
  std::string items;
  for (int n = 1; !card(30, 1, n).empty(); ++n)
    items += std::string(card(30, 1, n)) + "/" + std::string(card(31, 1, n)) + "/" +
             std::string(card(32, 1, n)) + " ";
  if (items.find("002/1000/25000 ") == items.npos) expect(at + "items", items, "… 002/1000/25000 …");
  expect(at + "message", desk.message(), "");
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  for (const int delay : {0, 2, 5, 10, 20, 40, 80}) type_at(delay);
  std::cout << (mistakes() ? "keys were lost" : "every key was found where it belongs") << std::endl;
  return mistakes() ? 1 : 0;
}
