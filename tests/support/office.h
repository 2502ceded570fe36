// A component at work on a small in-memory store, with a user's hand on it.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "card/screen/card_screen.h"
#include "demo/demo.h"
#include "forms/frm_rub_saisie.h"
#include "velanor/controle_velanor.h"
#include "velanor/hand.h"
#include "velanor/memory_database.h"

namespace velanor::test {

// Answers message boxes as it is told, and remembers them.
class Answering : public screen::Toolkit {
 public:
  screen::Answer message(const screen::Message& message) override {
    messages.push_back(message.text);
    return answer(message);
  }
  void pop_up(screen::Menu& menu) override { popped_up.push_back(menu.name()); }
  void beep() override { ++beeps; }
  void set_busy(bool on) override { hourglasses += on ? 1 : -1; }

  std::function<screen::Answer(const screen::Message&)> answer = [](const screen::Message& message) {
    return message.buttons == screen::Buttons::YesNo ? screen::Answer::Yes : screen::Answer::Ok;
  };
  std::vector<std::string> messages;
  std::vector<std::string> popped_up;
  int beeps = 0;
  int hourglasses = 0;  // turned on and not off again
};

// The host: notes what the component asks of it.
class Host : public control::UserRights, public control::HelpViewer, public control::HostWindow {
 public:
  std::string rights(std::string_view element) override { return asked.emplace_back(element); }
  void show(control::Client* given, store::Database&, std::string_view page, std::string_view title,
            std::string_view section) override {
    asked.push_back(std::string(page) + "|" + std::string(title) + "|" + std::string(section) +
                    (given == &client ? "|client" : ""));
  }
  void unload() override { asked.emplace_back("unload"); }

  control::Client client;
  std::vector<std::string> asked;
};

// The `put` lines of a scenario of tests/scenarios, carried out on a database.
void load(store::Database& database, std::string_view scenario);

// Takes generated data into a store. The towns are many and one is like another: some do, and those
// that the cards name.
enum class Towns { kAll, kSome };
class MemorySink : public demo::Sink {
 public:
  explicit MemorySink(store::MemoryDatabase& database, Towns towns = Towns::kAll)
      : database_(database), towns_(towns) {}
  void put(std::string_view file, std::string_view id, const store::DbRecord& record) override;

 private:
  store::MemoryDatabase& database_;
  Towns towns_;
  std::map<std::string, std::string, std::less<>> other_towns_;  // ids by name
};

class Office {
 public:
  explicit Office(store::Database& database, entry::UtilSaisie* entry = nullptr);

  // The button, list or box of that name on the topmost form that has one.
  screen::Control& control(std::string_view name);
  // Whether a hand could use it: usable, on the topmost form, its page enabled.
  bool usable(const screen::Control& control);

  Answering toolkit;
  Host host;
  ControleVelanor component;
  screen::Hand hand;
  card::CardScreen& ui;
};

}  // namespace velanor::test
