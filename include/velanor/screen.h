// The forms that stand on one another, and the message boxes between them: what a windowing
// toolkit (or a scenario) has to implement for a component, and the component's side of it.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velanor/form.h"

namespace velanor::screen {

enum class Icon { Exclamation, Question, Information };
enum class Buttons { Ok, OkCancel, YesNo };
enum class Answer { Ok, Cancel, Yes, No, Mine, Theirs };

struct Message {
  std::string title;
  std::string text;  // lines end with CR LF
  Icon icon = Icon::Exclamation;
  Buttons buttons = Buttons::Ok;
  // The answer that Enter gives. Never the one that throws work away.
  Answer preset = Answer::Ok;
  // What closing the box means, without an answer; else the last of its buttons.
  std::optional<Answer> closing = {};
};

// What two users have changed at once, each in his own way; the texts are what a screen shows ("": nothing).
struct Comparison {
  struct Line {
    std::string name, before, theirs, mine;
  };
  std::string title;
  std::string text;  // lines end with CR LF
  std::vector<Line> lines;
};

// Thrown by a toolkit whose window has gone, out of what it was asked: leaves the rules where they stand, for
// none of them may go on. An act ends with it and lets nothing of it out. No std::exception, so that nobody
// in between takes it for a failure that could be told.
struct Gone {};

// What the hands and eyes of the user are made of. All calls come from the thread of the component, within
// its acts, and none may destroy it; what they throw ends the act, and goes on to whoever acted. It must
// outlive the component, whose forms live as long as it does.
class Toolkit {
 public:
  virtual ~Toolkit() = default;
  // Returns when the user has answered, with one of the buttons that the message offers. Meanwhile the
  // component can be asked what is open, but nobody acts on it.
  virtual Answer message(const Message& message) = 0;
  // Lets the user choose line by line whose change is taken: an answer a line, Mine or Theirs; none at all
  // when he wants to go back. Nothing where the toolkit does not offer it: then the failure that asked for
  // it goes on to the host.
  virtual std::optional<std::vector<Answer>> compare(const Comparison&) { return std::nullopt; }
  // A modal form came on top, or went away; the forms below take no input meanwhile.
  virtual void form_opened(Form&) {}
  virtual void form_closed(Form&) {}
  // An act of the user's or the host's is over: what is shown follows the controls. Throws nothing.
  virtual void acted() {}
  virtual void pop_up(Menu&) {}
  virtual void beep() {}
  // The hourglass pointer while a long work is under way.
  virtual void set_busy(bool) {}
};

// The hourglass pointer as long as this lives.
class Busy {
 public:
  explicit Busy(Toolkit& toolkit) : toolkit_(toolkit) { toolkit_.set_busy(true); }
  ~Busy() { toolkit_.set_busy(false); }
  Busy(const Busy&) = delete;
  Busy& operator=(const Busy&) = delete;

 private:
  Toolkit& toolkit_;
};

// The stack of forms of one component, and the acts on them. Forms and toolkit must outlive it. A host gets
// that of its component, hands it to a Hand and looks at its forms; the rest is the rules' own.
class Screen {
 public:
  Screen(Form& base, Toolkit& toolkit) : toolkit_(toolkit), stack_{{&base, {}}} {}

  Toolkit& toolkit() const { return toolkit_; }
  Form& base() const { return *stack_.front().form; }
  Form& top() const { return *stack_.back().form; }
  bool is_open(const Form& form) const;
  // From the base to the topmost.
  std::vector<Form*> open_forms() const;

  // Runs what makes one act, of the user's (see Hand) or the host's; an act within another is part of it.
  // When it is over, also where it failed, the toolkit follows and then `over` is called. What the act threw
  // goes on to the caller, else what `over` threw. `over` may destroy this.
  void act(const std::function<void()>& what);
  void when_acted(std::function<void()> over) { over_ = std::move(over); }
  bool acting() const { return acting_; }

  // Opens a modal form; `closed` runs when it has gone.
  void open(Form& form, std::function<void()> closed);
  // Takes the topmost form away and runs what was to be done then.
  void close(Form& form);
  // The user's close box of the topmost form: the form decides. Whether it went away.
  bool request_close();

  // Every message of the component bears its title.
  void refuse(std::string_view text) { say(text, Icon::Exclamation, Buttons::Ok); }
  void inform(std::string_view text) { say(text, Icon::Information, Buttons::Ok); }
  bool confirm(std::string_view text, Icon icon = Icon::Question) {
    return say(text, icon, Buttons::YesNo, Answer::Yes) == Answer::Yes;
  }
  // A question whose "Oui" throws work away: Enter says "Non".
  bool confirm_loss(std::string_view text, Icon icon = Icon::Question) {
    return say(text, icon, Buttons::YesNo, Answer::No) == Answer::Yes;
  }
  // Whether work is kept ("Oui") or dropped ("Non"); who closes the question has said neither: Cancel.
  Answer keep_or_drop(std::string_view text, Icon icon = Icon::Question);
  Answer say(std::string_view text, Icon icon, Buttons buttons, Answer preset = Answer::Ok,
             std::optional<Answer> closing = {});
  // See Toolkit::compare.
  std::optional<std::vector<Answer>> compare(std::string_view text, std::vector<Comparison::Line> lines);
  // Message boxes shown so far; a click during which one opens is lost.
  int messages_shown() const { return messages_shown_; }

  // Set by the exit: no form is there any more.
  void finish() { finished_ = true; }
  bool finished() const { return finished_; }

 private:
  struct Open {
    Form* form;
    std::function<void()> closed;
  };
  Toolkit& toolkit_;
  std::vector<Open> stack_;
  std::function<void()> over_;
  bool acting_ = false;
  int messages_shown_ = 0;
  bool finished_ = false;
};

}  // namespace velanor::screen
