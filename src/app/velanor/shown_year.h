// Which entity and year are on the screen.
#pragma once

#include <string>

#include "velanor/controle_velanor_widget.h"

namespace velanor::app {

// What stands there also while a card is open; "" where none is chosen.
struct ShownYear {
  std::string entity, year;
  bool is_chosen() const { return !entity.empty() && !year.empty(); }
};
ShownYear shown_year(qt::ControleVelanorWidget& component);

}  // namespace velanor::app
