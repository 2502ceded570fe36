// What a clerk waits for at a window: from the file to a window that takes keys, the list of every town,
// choosing an employee, saving. Each ends when the window is drawn.
//
//   window_bench FILE.db [--benchmark_...]   on the display that is there (QT_QPA_PLATFORM=offscreen without)
//
// FILE.db is one of `velanorctl demo`, with or without --cards; its cards are saved anew.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <iostream>
#include <memory>
#include <stdexcept>

#include "qt/action_button.h"
#include "qt/message_sheet.h"
#include "velanor/controle_velanor_widget.h"
#include "velanor/sqlite_database.h"

namespace velanor::qt {
namespace {

std::string file;

class Window : private control::UserRights {
 public:
  Window() : database_(file) {
    widget_.DroitsUtilisateur(*this);
    widget_.TheDatabase(database_);
    widget_.resize(widget_.sizeHint());
    widget_.show();
    widget_.activateWindow();
    widget_.init();
    while (!widget_.isActiveWindow()) QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    draw();
  }

  void draw() {
    QCoreApplication::processEvents();
    widget_.repaint();
  }

  // The latest year of the first entity.
  void browse() {
    type("Txt_Asso", "001");
    if (find<QComboBox>("Cbo_Aidant").count() == 0) throw std::runtime_error("the file has no cards of 001");
  }

  void choose_next() {
    auto& employees = find<QComboBox>("Cbo_Aidant");
    next_ = (next_ + 1) % employees.count();
    emit employees.activated(next_);
    if (!find<QPushButton>("Cmd_OK").isEnabled()) throw std::runtime_error("no card was opened");
  }

  void abandon() {
    QObject context;
    QObject::connect(&widget_, &ControleVelanorWidget::message_opened, &context, [&] {
      QTimer::singleShot(0, &context, [&] { widget_.open_message()->button(screen::Answer::Yes)->click(); });
    });
    find<QPushButton>("Cmd_Annul").click();
  }

  void save() {
    find<QPushButton>("Cmd_OK").click();
    if (widget_.open_message() || find<QPushButton>("Cmd_OK").isEnabled())
      throw std::runtime_error("not saved");
  }

  void type(const char* field, const char* keys) {
    find<QWidget>(field).setFocus(Qt::TabFocusReason);
    for (const char* key = keys; *key; ++key) {
      QKeyEvent event(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(QLatin1Char(*key)));
      QCoreApplication::sendEvent(widget_.window()->focusWidget(), &event);
    }
  }

  template <typename Widget>
  Widget& find(const char* name) {
    return *widget_.findChild<Widget*>(name);
  }

 private:
  std::string rights(std::string_view) override { return {}; }

  store::SqliteDatabase database_;
  ControleVelanorWidget widget_;
  int next_ = 0;
};

void open_window(benchmark::State& state) {
  for (auto _ : state) {
    auto window = std::make_unique<Window>();
    state.PauseTiming();
    window.reset();
    QCoreApplication::processEvents();
    state.ResumeTiming();
  }
}
BENCHMARK(open_window)->Unit(benchmark::kMillisecond)->UseRealTime();

void open_the_list_of_towns(benchmark::State& state) {
  Window window;
  window.browse();
  window.choose_next();
  auto& towns = window.find<QComboBox>("Cbo_Com");
  for (auto _ : state) {
    towns.showPopup();
    window.draw();
    state.PauseTiming();
    towns.hidePopup();
    window.draw();
    state.ResumeTiming();
  }
  state.counters["towns"] = towns.count();
}
BENCHMARK(open_the_list_of_towns)->Unit(benchmark::kMillisecond)->UseRealTime();

// A key in the field of the towns, with the list of those that begin so.
void complete_a_town(benchmark::State& state) {
  Window window;
  window.browse();
  window.choose_next();
  auto& towns = window.find<QComboBox>("Cbo_Com");
  for (auto _ : state) {
    state.PauseTiming();
    towns.lineEdit()->selectAll();
    state.ResumeTiming();
    window.type("Cbo_Com", "S");
    window.draw();
  }
}
BENCHMARK(complete_a_town)->Unit(benchmark::kMillisecond)->UseRealTime();

void choose_an_employee(benchmark::State& state) {
  Window window;
  window.browse();
  for (auto _ : state) {
    window.choose_next();
    window.draw();
    state.PauseTiming();
    window.abandon();
    window.draw();
    state.ResumeTiming();
  }
}
BENCHMARK(choose_an_employee)->Unit(benchmark::kMillisecond)->UseRealTime();

void save_a_card(benchmark::State& state) {
  Window window;
  window.browse();
  for (auto _ : state) {
    state.PauseTiming();
    window.choose_next();
    window.draw();
    state.ResumeTiming();
    window.save();
    window.draw();
  }
}
BENCHMARK(save_a_card)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace velanor::qt

int main(int argc, char** argv) {
  QApplication::setStyle("Fusion");
  QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  if (argc != 2) {
    std::cerr << "usage: window_bench FILE.db [--benchmark_...]\n";
    return 64;
  }
  velanor::qt::file = argv[1];
  benchmark::RunSpecifiedBenchmarks();
}
