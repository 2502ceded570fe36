// A fast typist on a real X server: whatever opens or closes while the keys come, every key must be
// found where it belongs. Needs xdotool, a display and a window manager.
#include <QApplication>
#include <QDeadlineTimer>
#include <QProcess>
#include <chrono>
#include <iostream>
#include <thread>

#include "play/player.h"
#include "qt/controle_velanor_widget.h"
#include "store/memory_database.h"

namespace {

using namespace velanor;

// A database that takes its time, as one over a network does.
class SlowDatabase : public store::Database {
 public:
  explicit SlowDatabase(store::Database& database) : database_(database) {}
  std::unique_ptr<store::DbFile> OpenFile(std::string_view name) override { return database_.OpenFile(name); }
  store::DbResult Select(std::string_view request, std::string_view option) override {
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    return database_.Select(request, option);
  }

 private:
  store::Database& database_;
};

class NoRights : public control::UserRights {
  std::string rights(std::string_view) override { return {}; }
};

// An unknown entity and its message; the entity, the employee; the sector from its list, the town with the
// list of those that begin so; the items of her first amendment, one
// added and kept; the monthly hours typed over; saved; the next employee.
const char* const kKeys[]{
    "9",     "9",   "9",     "Return",    "0",     "0",     "1",      "0",     "0",     "0",
    "1",     "0",   "alt+t", "Tab",       "F4",    "Up",    "Return", "Tab",   "E",     "z",
    "e",     "Tab", "alt+p", "shift+Tab", "Down",  "alt+l", "alt+j",  "0",     "0",     "2",
    "1",     "0",   "Tab",   "2",         "comma", "5",     "alt+o",  "alt+r", "alt+o", "alt+d",
    "alt+h", "1",   "5",     "0",         "alt+o", "0",     "0",      "0",     "2",     "0"};

void fill(store::Database& database) {
  play::RecordingDatabase recording(database);
  play::MessageBoxes boxes;
  play::Player player({recording, boxes, nullptr, std::cout, std::cerr});
  player.play(play::read_scenario(VELANOR_SCENARIOS "/lib/cards.play"));
}

bool wait_for(const std::function<bool()>& state) {
  const QDeadlineTimer until(15000);
  while (!state() && !until.hasExpired())
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 50);
  return state();
}

int mistakes = 0;

void expect(const std::string& what, std::string_view found, std::string_view wanted) {
  if (found == wanted) return;
  ++mistakes;
  std::cerr << what << ": \"" << found << "\" instead of \"" << wanted << "\"\n";
}

void type_at(int delay) {
  store::MemoryDatabase memory;
  fill(memory);
  SlowDatabase database(memory);
  NoRights rights;
  qt::ControleVelanorWidget widget;
  widget.setWindowTitle("typist");
  widget.DroitsUtilisateur(rights);
  widget.TheDatabase(database);
  widget.show();
  widget.init();
  if (!wait_for([&] { return widget.isActiveWindow(); })) return expect("window", "inactive", "active");
  QStringList keys{"key", "--delay", QString::number(delay)};
  for (const char* key : kKeys) keys << key;
  QProcess typist;
  typist.start("xdotool", keys);
  const auto& name = static_cast<screen::TextBox&>(*widget.screen().base().find("Txt_NomAidant"));
  const std::string at = "at " + std::to_string(delay) + " ms: ";
  wait_for([&] {
    return name.text() == "DURAND PAUL" || (typist.state() == QProcess::NotRunning && widget.open_message());
  });
  if (typist.state() != QProcess::NotRunning) typist.waitForFinished();
  const store::DbRecord card = memory.OpenFile("VELANORO")->find("000100012026").value();
  expect(at + "employee", name.text(), "DURAND PAUL");
  expect(at + "hours", card(2), "15000");
  expect(at + "sector", card(4), "007");
  expect(at + "town", card(5), "Eze");
  // The new item stands where the rules put it.
  std::string items;
  for (int n = 1; !card(30, 1, n).empty(); ++n)
    items += std::string(card(30, 1, n)) + "/" + std::string(card(31, 1, n)) + "/" +
             std::string(card(32, 1, n)) + " ";
  if (items.find("002/1000/25000 ") == items.npos) expect(at + "items", items, "… 002/1000/25000 …");
  if (widget.open_message()) expect(at + "message", widget.open_message() ? "open" : "", "none");
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  for (const int delay : {0, 2, 5, 10, 20, 40, 80}) type_at(delay);
  std::cout << (mistakes ? "keys were lost" : "every key was found where it belongs") << std::endl;
  return mistakes ? 1 : 0;
}
