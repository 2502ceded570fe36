// Plays scenarios.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include "play/actor.h"
#include "play/message_boxes.h"
#include "play/recording_database.h"
#include "play/scenario.h"
#include "velanor/screen.h"

namespace velanor::play {

// What a scenario plays on: a component that was started, and who acts on it.
class Stage {
 public:
  virtual ~Stage() = default;
  virtual screen::Screen& screen() = 0;
  virtual Actor& actor() = 0;
};

struct Tally {
  int passed = 0;
  int failed = 0;
};

// What surrounds a player; all of it must outlive the player.
struct Surroundings {
  // The store that the component works on, and that the scenario reads and prepares.
  RecordingDatabase& database;
  // Where the component's toolkit shows its message boxes.
  MessageBoxes& boxes;
  // Makes the component on the store and starts it. What it throws fails the command.
  std::function<std::unique_ptr<Stage>()> make_stage;
  std::ostream& out;
  std::ostream& err;
};

// Carries out the steps of scenarios one after another. A step that fails is reported on `err` with
// its place, what was expected and what was found, and the next one is played: an error that a
// handler lets out ends that action only. The component lives until the next `init`, or as long as
// the player.
class Player {
 public:
  explicit Player(const Surroundings& surroundings) : with_(surroundings) {}

  void play(const Scenario& scenario);
  const Tally& tally() const { return tally_; }

 private:
  // Each returns what was expected and what was found; empty when all is well.
  std::string carry_out(const Step& step);
  std::string action_or_check(const Step& step);
  void start();
  std::string expect_property(const Command& command);
  std::string get(const Command& command);
  std::string expect_focus(const std::string& name);
  std::string expect_form(const std::string& name);
  std::string expect_message(const std::string& text);
  std::string expect_icon(screen::Icon icon);
  std::string expect_no_message();
  std::string expect_statement(const std::string& statement);

  // The text of a property, or why there is none.
  struct PropertyText {
    std::optional<std::string> text;
    std::string lack;
  };
  PropertyText read_property(const Command& command) const;
  // Why the user's action could not be made.
  Actor::Refusal act(const Command& command);
  Actor::Refusal act_on(screen::Control& control, const Command& command);
  // The control of that name on the topmost form that has one; `Form.Control` on that form alone.
  screen::Control* find(const std::string& name) const;

  Surroundings with_;
  std::unique_ptr<Stage> stage_;
  std::optional<screen::Icon> last_icon_;
  Tally tally_;
};

// 0 when every step passed, 1 otherwise.
inline int exit_status(const Tally& tally) { return tally.failed == 0 ? 0 : 1; }
// When a line is not of the language.
inline constexpr int kSyntaxStatus = 2;

// A whole run: the lines that are not of the language on `err`, or else the scenario played; the
// tally as the last line on `out`. Returns the exit status.
int run(const Scenario& scenario, const Surroundings& surroundings);

}  // namespace velanor::play
