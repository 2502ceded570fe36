#include "app/velanor/play.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTimer>
#include <iostream>

#include "app/velanor/main_window.h"
#include "app/velanor/qt_actor.h"
#include "play/player.h"
#include "qt/action_button.h"
#include "qt/comparison_table.h"
#include "qt/message_sheet.h"

namespace velanor::app {
namespace {

constexpr int kWindowTimeout = 5000;

class WindowStage : public play::Stage {
 public:
  WindowStage(store::Database& database, play::MessageBoxes& boxes, const QString& shots)
      : window_(database), actor_(window_.component(), shots), boxes_(boxes) {
    QObject::connect(&window_.component(), &qt::ControleVelanorWidget::message_opened, [this] { answer(); });
    window_.show();
    window_.activateWindow();
    QElapsedTimer waited;
    waited.start();
    while (!window_.isActiveWindow() && waited.elapsed() < kWindowTimeout)
      QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    window_.start();
  }

  screen::Screen& screen() override { return window_.component().screen(); }
  play::Actor& actor() override { return actor_; }

 private:
  // The answer is made by the box's own button, from within the loop that waits for it.
  void answer() {
    qt::MessageSheet* sheet = window_.component().open_message();
    std::vector<screen::Answer> choices;
    screen::Answer given = screen::Answer::Cancel;
    if (sheet->table()) {
      choices = boxes_.compare({sheet->message().title, sheet->message().text, sheet->table()->lines()});
      if (!choices.empty()) given = screen::Answer::Ok;
    } else {
      given = boxes_.show(sheet->message());
    }
    const QPointer<qt::MessageSheet> box(sheet);
    QTimer::singleShot(0, sheet, [this, box, given, choices] {
      if (box && box->table()) choose(*box->table(), choices);
      if (auto why = actor_.shot("message-" + std::to_string(++messages_)); !why.empty())
        std::cerr << why << "\n";
      if (box) click_on(*box->button(given));
    });
  }

  // As a user without a mouse does.
  static void choose(qt::ComparisonTable& table, const std::vector<screen::Answer>& choices) {
    for (const screen::Answer choice : choices) {
      send_key(table, choice == screen::Answer::Mine ? Qt::Key_Right : Qt::Key_Left);
      send_key(table, Qt::Key_Return);
    }
  }

  MainWindow window_;
  QtActor actor_;
  play::MessageBoxes& boxes_;
  int messages_ = 0;
};

play::Scenario read(const QString& file) {
  return file == "-" ? play::read_scenario(std::cin, "-", ".") : play::read_scenario(file.toStdString());
}

}  // namespace

int play_on_window(store::Database& store, const PlayOptions& options) {
  const play::Scenario scenario = read(options.file);
  for (const auto& error : scenario.errors) std::cerr << error << "\n";
  int status = play::kSyntaxStatus;
  play::Tally tally;
  if (scenario.errors.empty()) {
    if (!options.shots.isEmpty()) QDir().mkpath(options.shots);
    play::RecordingDatabase database(store);
    play::MessageBoxes boxes;
    play::Player player({database, boxes,
                         [&] { return std::make_unique<WindowStage>(database, boxes, options.shots); },
                         std::cout, std::cerr});
    player.play(scenario);
    tally = player.tally();
    status = play::exit_status(tally);
  }
  std::cout << tally.passed << " passed, " << tally.failed << " failed" << std::endl;
  return status;
}

}  // namespace velanor::app
