#include "play/player.h"

#include <algorithm>
#include <exception>

#include "play/store_commands.h"

namespace velanor::play {
namespace {

const std::string kNoComponent = "the component was not started: init comes first";
constexpr std::string_view kNoForm = "none";

std::string in_quotes(std::string_view text) { return "\"" + on_one_line(text) + "\""; }

std::string expected(const std::string& what, const std::string& found) {
  return "expected " + what + ", found " + found;
}

std::string list_of(const std::vector<std::string>& texts) {
  std::string list;
  for (const auto& text : texts) list += (list.empty() ? "" : ", ") + in_quotes(text);
  return list;
}

// Acts on the control as the first of these kinds that it is of.
template <typename... Kinds, typename Act>
Actor::Refusal on_kind(screen::Control& control, const char* lack, Act act) {
  Actor::Refusal why = control.name() + lack;
  const auto try_kind = [&](auto* kind) { return kind && (why = act(*kind), true); };
  (void)(try_kind(dynamic_cast<Kinds*>(&control)) || ...);
  return why;
}

}  // namespace

void Player::play(const Scenario& scenario) {
  for (const Step& step : scenario.steps) {
    const std::string failure = carry_out(step);
    if (!failure.empty()) {
      ++tally_.failed;
      with_.err << step.place << ": " << failure << std::endl;
    } else if (counts(step.command.verb)) {
      ++tally_.passed;
    }
  }
}

std::string Player::carry_out(const Step& step) {
  std::string failure;
  try {
    failure = action_or_check(step);
  } catch (const std::exception& error) {
    failure = expected("to carry out: " + step.source, std::string("the error: ") + error.what());
  }
  const std::string boxes = with_.boxes.take_failures();
  return failure.empty() || boxes.empty() ? failure + boxes : failure + "; " + boxes;
}

std::string Player::action_or_check(const Step& step) {
  const Command& command = step.command;
  switch (command.verb) {
    case Verb::Include:
      return expected("to play " + command.name + " here", step.broken);
    case Verb::Put:
      return put(with_.database, command), "";
    case Verb::Remove:
      return remove(with_.database, command), "";
    case Verb::Record:
      return print_record(with_.database, command, with_.out), "";
    case Verb::Answer:
      return with_.boxes.queue(command.answers), "";
    case Verb::Init:
      return start(), "";
    case Verb::Expect:
      return expect_property(command);
    case Verb::ExpectFocus:
      return expect_focus(command.name);
    case Verb::ExpectForm:
      return expect_form(command.name);
    case Verb::ExpectMessage:
      return expect_message(command.text);
    case Verb::ExpectIcon:
      return expect_icon(command.icon);
    case Verb::ExpectNoMessage:
      return expect_no_message();
    case Verb::ExpectStatement:
      return expect_statement(command.text);
    case Verb::ExpectRecord:
      return expect_record(with_.database, command);
    case Verb::ExpectAbsent:
      return expect_absent(with_.database, command);
    case Verb::Get:
      return get(command);
    default:
      break;
  }
  const Actor::Refusal why = act(command);
  return why.empty() ? "" : expected("to carry out: " + step.source, why.why());
}

void Player::start() {
  stage_.reset();
  stage_ = with_.make_stage();
}

Actor::Refusal Player::act(const Command& command) {
  if (!stage_) return kNoComponent;
  Actor& actor = stage_->actor();
  switch (command.verb) {
    case Verb::Leave:
      return actor.leave();
    case Verb::Tab:
      return actor.tab(command.number);
    case Verb::RightClick:
      return actor.right_click();
    case Verb::Close:
      return actor.close();
    case Verb::Shot:
      return actor.shot(command.name);
    default:
      break;
  }
  screen::Control* control = find(command.name);
  return control ? act_on(*control, command) : "no control " + command.name + " on an open form";
}

Actor::Refusal Player::act_on(screen::Control& control, const Command& command) {
  using namespace screen;
  Actor& actor = stage_->actor();
  switch (command.verb) {
    case Verb::Focus:
      return actor.focus(control);
    case Verb::Press:
      return actor.press(control, command.key);
    case Verb::Click:
      return actor.click(control);
    case Verb::Type:
      return on_kind<TextControl>(control, " takes no text",
                                  [&](TextControl& text) { return actor.type(text, command.text); });
    case Verb::Clear:
      return on_kind<TextControl>(control, " takes no text",
                                  [&](TextControl& text) { return actor.clear(text); });
    case Verb::Pick:
      return on_kind<ComboBox, ListBox>(control, " has no lines", [&](auto& list) {
        return command.number < 0 ? actor.pick(list, command.text) : actor.pick(list, command.number);
      });
    case Verb::DoubleClick:
      return on_kind<ListBox>(control, " is no list box",
                              [&](ListBox& list) { return actor.double_click(list, command.number); });
    case Verb::Scroll:
      return on_kind<ScrollBar>(control, " is no scroll bar",
                                [&](ScrollBar& bar) { return actor.scroll(bar, command.number); });
    default:
      return "no action of the user's";
  }
}

screen::Control* Player::find(const std::string& name) const {
  auto forms = stage_->screen().open_forms();
  std::reverse(forms.begin(), forms.end());
  const auto dot = name.find('.');
  for (const screen::Form* form : forms) {
    if (dot != std::string::npos && form->name() != std::string_view(name).substr(0, dot)) continue;
    const auto own_name =
        dot == std::string::npos ? std::string_view(name) : std::string_view(name).substr(dot + 1);
    if (screen::Control* control = form->find(own_name)) return control;
  }
  return nullptr;
}

// The reading, or why there is none.
Player::PropertyText Player::read_property(const Command& command) const {
  if (!stage_) return {{}, kNoComponent};
  const screen::Control* control = find(command.name);
  if (!control) return {{}, "no control " + command.name + " on an open form"};
  auto text = read(*control, command.property);
  if (text) return {std::move(text), {}};
  return {{}, "that this kind of control has no " + std::string(name_of(command.property))};
}

std::string Player::expect_property(const Command& command) {
  const auto [text, lack] = read_property(command);
  if (text == command.text) return {};
  return expected(command.name + " " + std::string(name_of(command.property)) + " " + in_quotes(command.text),
                  text ? in_quotes(*text) : lack);
}

std::string Player::get(const Command& command) {
  const auto [text, lack] = read_property(command);
  const std::string what = command.name + "." + std::string(name_of(command.property));
  if (!text) return expected("to read " + what, lack);
  with_.out << what << " = " << *text << std::endl;
  return {};
}

std::string Player::expect_focus(const std::string& name) {
  const std::string what = "the focus on " + name;
  if (!stage_) return expected(what, kNoComponent);
  const screen::Control* wanted = find(name);
  if (!wanted) return expected(what, "no control of that name on an open form");
  const screen::Screen& screen = stage_->screen();
  const screen::Control* focus = screen.finished() ? nullptr : screen.top().focus();
  if (focus == wanted) return {};
  return expected(what, focus ? "it on " + focus->name() : "it nowhere");
}

std::string Player::expect_form(const std::string& name) {
  const bool none = !stage_ || stage_->screen().finished();
  const std::string top = none ? std::string(kNoForm) : stage_->screen().top().name();
  return top == name ? "" : expected("the topmost form " + name, top);
}

std::string Player::expect_message(const std::string& text) {
  const auto box = with_.boxes.take_oldest();
  if (!box) return expected("the message " + in_quotes(text), "none");
  last_icon_ = box->icon;
  if (on_one_line(box->text) == on_one_line(text)) return {};
  return expected("the message " + in_quotes(text), in_quotes(box->text));
}

std::string Player::expect_icon(screen::Icon icon) {
  const std::string what = "the icon " + std::string(name_of(icon)) + " on the message last expected";
  if (!last_icon_) return expected(what, "that no message was expected");
  return *last_icon_ == icon ? "" : expected(what, std::string(name_of(*last_icon_)));
}

std::string Player::expect_no_message() {
  if (with_.boxes.shown().empty()) return {};
  std::vector<std::string> texts;
  for (const auto& message : with_.boxes.shown()) texts.push_back(message.text);
  return expected("no message", list_of(texts));
}

std::string Player::expect_statement(const std::string& statement) {
  const auto& sent = with_.database.statements();
  const auto found = std::find(sent.begin(), sent.end(), statement);
  if (found == sent.end())
    return expected("the statement " + statement, sent.empty() ? "none" : list_of(sent));
  // What was sent after it is still to be expected: one action sends several.
  with_.database.forget_statements(static_cast<std::size_t>(found - sent.begin()) + 1);
  return {};
}

int run(const Scenario& scenario, const Surroundings& surroundings) {
  for (const std::string& error : scenario.errors) surroundings.err << error << "\n";
  Player player(surroundings);
  if (scenario.errors.empty()) player.play(scenario);
  const Tally tally = player.tally();
  surroundings.out << tally.passed << " passed, " << tally.failed << " failed" << std::endl;
  return scenario.errors.empty() ? exit_status(tally) : kSyntaxStatus;
}

}  // namespace velanor::play
