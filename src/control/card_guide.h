// Leads the screen to a card, as a clerk would.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "card/screen/card_screen.h"
#include "card/screen/card_state.h"
#include "control/session/procedure.h"
#include "control/session/years.h"
#include "velanor/hand.h"
#include "velanor/host.h"
#include "velanor/screen.h"

namespace velanor::control {

class CardGuide {
 public:
  // Keeps the references; their owners outlive this. `may_leave` asks the user, where there is anything to
  // lose; `leave` takes the way back to browsing.
  struct Ground {
    card::CardScreen& ui;
    const card::CardState& card;
    const Procedure& procedure;
    const YearTable& years;
    screen::Screen& screen;
    std::function<bool()> may_leave;
    std::function<void()> leave;
  };
  explicit CardGuide(Ground ground) : on_(std::move(ground)) {}

  Opening open(std::string_view entity, std::string_view year, std::string_view employee);
  // The card that is open, as it is stored now.
  Opening reload();

 private:
  struct Wanted {
    std::string entity, year, employee, id;
  };
  Opening act(const std::function<Opening()>& opens);
  Opening open(const Wanted& wanted);
  Opening reread();
  Opening change_to(const Wanted& wanted);
  // Why there is no such card; "" when there is one.
  std::string unknown(const Wanted& wanted) const;
  bool is_open(const Wanted& wanted) const;
  screen::Refusal lead_to(const Wanted& wanted);

  Ground on_;
};

}  // namespace velanor::control
