// Which entity and year are on the screen.
#pragma once

#include <QObject>
#include <functional>
#include <string>

#include "velanor/controle_velanor_widget.h"

namespace velanor::app {

// What stands there also while a card is open; "" where none is chosen.
struct ShownYear {
  std::string entity, year;
  bool is_chosen() const { return !entity.empty() && !year.empty(); }
  friend bool operator==(const ShownYear&, const ShownYear&) = default;
};
ShownYear shown_year(qt::ControleVelanorWidget& component);

// Calls as long as the listener lives, at each change that may be one of entity and year, also while these
// are being entered.
void follow_year(qt::ControleVelanorWidget& component, QObject& listener, const std::function<void()>& then);

}  // namespace velanor::app
