// What a clerk waits for at a window on a large base (desk_base.h): from the file to a window that takes
// keys, the list of every town, choosing an employee, saving. Each ends when the window is drawn, on the
// display that is there (QT_QPA_PLATFORM=offscreen without).
#include <benchmark/benchmark.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <memory>
#include <stdexcept>
#include <utility>

#include "desk_base.h"
#include "qt/action_button.h"
#include "qt/message_sheet.h"
#include "race.h"
#include "velanor/controle_velanor_widget.h"
#include "velanor/sqlite_database.h"

namespace velanor::qt {
namespace {

using bench::Runner;

bench::DeskBase& base() {
  static bench::DeskBase base;
  return base;
}

class Window : private control::UserRights {
 public:
  Window() : database_(base().path()) {
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

  // The latest year of the entity.
  void browse() {
    type("Txt_Asso", base().kEntity);
    if (find<QComboBox>("Cbo_Aidant").count() == 0) throw std::runtime_error("there are no cards");
  }

  // All of the next employee's code but its last key.
  void begin_code() {
    next_ = (next_ + 7) % find<QComboBox>("Cbo_Aidant").count();
    find<QLineEdit>("Txt_Aidant").selectAll();
    type("Txt_Aidant", base().code(next_).substr(0, 4).c_str());
    draw();
  }
  void end_code() {
    type("Txt_Aidant", base().code(next_).substr(4).c_str());
    draw();
    if (!find<QPushButton>("Cmd_OK").isEnabled()) throw std::runtime_error("no card was opened");
  }
  void open_next() {
    begin_code();
    end_code();
  }
  // Another figure on the open card.
  void change() {
    auto& hours = find<QLineEdit>("Txt_HorMensEtab");
    hours.selectAll();
    type("Txt_HorMensEtab", hours.text().startsWith("151") ? "150,5" : "151,67");
    draw();
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

// The list of a combo box that has the same lines and nothing of its own.
void Popup(benchmark::State& state) {
  Window window;
  window.browse();
  window.open_next();
  auto& towns = window.find<QComboBox>("Cbo_Com");
  QStringList lines;
  for (int i = 0; i < towns.count(); ++i) lines << towns.itemText(i);
  QComboBox plain;
  plain.addItems(lines);
  plain.show();
  const auto open = [&](QComboBox& box) {
    box.showPopup();
    QCoreApplication::processEvents();
    box.view()->repaint();
  };
  const auto closed = [&](QComboBox& box) {
    return [&] {
      box.hidePopup();
      QCoreApplication::processEvents();
    };
  };
  bench::race(state, {.goal = 20}, {.prepare = closed(plain), .run = [&] { open(plain); }},
              {.prepare = closed(towns), .run = [&] { open(towns); }});
  towns.hidePopup();
  state.counters["towns"] = towns.count();
}
VELANOR_RACE(Popup);

// A key in the field of the towns, with the list of those that begin so.
void CompleteATown(benchmark::State& state) {
  Window window;
  window.browse();
  window.open_next();
  auto& towns = window.find<QComboBox>("Cbo_Com");
  for (auto _ : state) {
    state.PauseTiming();
    towns.lineEdit()->selectAll();
    state.ResumeTiming();
    window.type("Cbo_Com", "S");
    window.draw();
  }
}
BENCHMARK(CompleteATown)->Unit(benchmark::kMillisecond)->UseRealTime();

// Against what a clerk does not notice: a frame of the screen.
void against_a_frame(benchmark::State& state, const Runner& runner) {
  constexpr double kFrame = 16'000;
  std::vector<double> times;
  for (auto _ : state) {
    times.push_back(bench::timed(runner, 1));
    state.SetIterationTime(times.back() / 1e6);
  }
  state.counters["first_ms"] = times.front() / 1000;
  state.counters["median_ms"] = bench::median(times) / 1000;
  state.counters["slowest_ms"] = *std::max_element(times.begin(), times.end()) / 1000;
  state.counters["frames"] = bench::median(times) / kFrame;
}

// From nothing to a window that shows the list of the employees and takes keys.
void Start(benchmark::State& state) {
  base();
  std::unique_ptr<Window> window;
  against_a_frame(state, {.prepare = [&] { window.reset(); },
                          .run =
                              [&] {
                                window = std::make_unique<Window>();
                                window->browse();
                                window->draw();
                              }});
}

// From the last key of a code to the painted card.
void OpenACard(benchmark::State& state) {
  Window window;
  window.browse();
  bool open = false;
  against_a_frame(state, {.prepare =
                              [&] {
                                if (std::exchange(open, true)) window.abandon();
                                window.begin_code();
                              },
                          .run = [&] { window.end_code(); }});
}

// From OK to the painted browsing screen.
void SaveACard(benchmark::State& state) {
  Window window;
  window.browse();
  against_a_frame(state, {.prepare =
                              [&] {
                                window.open_next();
                                window.change();
                              },
                          .run =
                              [&] {
                                window.save();
                                window.draw();
                              }});
}
BENCHMARK(Start)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(bench::turns());
BENCHMARK(OpenACard)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(6 * bench::turns());
BENCHMARK(SaveACard)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(6 * bench::turns());

}  // namespace
}  // namespace velanor::qt

int main(int argc, char** argv) {
  QApplication::setStyle("Fusion");
  QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
