#include "x_desk.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEvent>
#include <QKeyEvent>
#include <QTimer>
#include <iostream>
#include <thread>

#include "play/player.h"
#include "velanor/wrapped_database.h"

namespace velanor::x {
namespace {

int mistakes_made = 0;

// Tells when the key has come that nothing else types. A message that waits then would keep whoever waits for
// the key: it is closed.
class LastKey : public QObject {
 public:
  explicit LastKey(qt::ControleVelanorWidget& widget) : widget_(widget) {
    QCoreApplication::instance()->installEventFilter(this);
  }
  bool seen = false;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::KeyRelease && watched->isWindowType() &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_F12) {
      seen = true;
      QTimer::singleShot(0, this, [this] {
        if (qt::MessageSheet* open = widget_.open_message()) emit open->answered(open->closing_answer());
      });
    }
    return false;
  }

 private:
  qt::ControleVelanorWidget& widget_;
};

}  // namespace

int mistakes() { return mistakes_made; }

void expect(const std::string& what, std::string_view found, std::string_view wanted) {
  if (found == wanted) return;
  ++mistakes_made;
  std::cerr << what << ": \"" << found << "\" instead of \"" << wanted << "\"\n";
}

bool wait_for(const std::function<bool()>& state) {
  const QDeadlineTimer until(15000);
  while (!state() && !until.hasExpired())
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 50);
  return state();
}

// A database that takes its time, as one over a network does.
class Desk::SlowDatabase : public store::WrappedDatabase {
 public:
  SlowDatabase(store::Database& database, std::chrono::milliseconds delay)
      : WrappedDatabase(database), delay_(delay) {}

 protected:
  void before(const store::DatabaseCall& call) override {
    if (call.kind == store::DatabaseCall::Kind::kSelect) std::this_thread::sleep_for(delay_);
  }

 private:
  std::chrono::milliseconds delay_;
};

class Desk::NoRights : public control::UserRights {
  std::string rights(std::string_view) override { return {}; }
};

Desk::Desk(std::chrono::milliseconds delay)
    : database_(std::make_unique<SlowDatabase>(memory_, delay)),
      rights_(std::make_unique<NoRights>()),
      widget_(std::make_unique<qt::ControleVelanorWidget>()) {
  play::RecordingDatabase recording(memory_);
  play::MessageBoxes boxes;
  play::Player player({recording, boxes, nullptr, std::cout, std::cerr});
  player.play(play::read_scenario(VELANOR_SCENARIOS "/lib/cards.play"));
  widget_->setWindowTitle("typist");
  widget_->DroitsUtilisateur(*rights_);
  widget_->TheDatabase(*database_);
  widget_->show();
  widget_->init();
}

Desk::~Desk() { finish_typing(); }

bool Desk::comes_up() {
  const bool up = wait_for([this] { return widget_->isActiveWindow(); });
  expect("window", up ? "active" : "inactive", "active");
  return up;
}

void Desk::type(const std::vector<std::string>& keys, int delay) {
  QStringList command{"key", "--delay", QString::number(delay)};
  for (const std::string& key : keys) command << QString::fromStdString(key);
  typist_.start("xdotool", command);
}

void Desk::finish_typing() {
  if (typist_.state() != QProcess::NotRunning) typist_.waitForFinished();
}

void Desk::type_through(const std::vector<std::string>& keys, int delay) {
  LastKey last(*widget_);
  auto with_last = keys;
  with_last.emplace_back("F12");
  type(with_last, delay);
  if (!wait_for([&] { return last.seen; })) expect("the last key", "lost", "seen");
  finish_typing();
  // Keys that were held back are played after it.
  QCoreApplication::processEvents();
}

bool Desk::typed_in_vain() const {
  return typist_.state() == QProcess::NotRunning && widget_->open_message();
}

void Desk::open_card() {
  type({"0", "0", "1", "0", "0", "0", "1", "0"}, 2);
  if (!wait_for([this] { return text("Txt_Etat") == "Modification"; })) expect("card", "closed", "open");
  finish_typing();
}

std::string Desk::text(const char* name) {
  return static_cast<screen::TextControl*>(widget_->screen().base().find(name))->text();
}

std::string Desk::focus() { return top().focus() ? top().focus()->name() : ""; }

std::string Desk::message() const {
  return widget_ && widget_->open_message() ? widget_->open_message()->message().text : "";
}

bool Desk::card_exists() { return memory_.OpenFile("VELANORO")->find("000100012026").has_value(); }

store::DbRecord Desk::stored() { return memory_.OpenFile("VELANORO")->find("000100012026").value(); }

}  // namespace velanor::x
