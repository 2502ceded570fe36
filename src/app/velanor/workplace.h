// What stands on a window while a base is open: the component, and what the program has around it.
#pragma once

#include "app/velanor/connection.h"
#include "velanor/controle_velanor_widget.h"
#include "velanor/host.h"

class QMainWindow;

namespace velanor::app {

class CardAids;
class CardHistory;
class CardSteps;
class ChecksDock;
class EmployeesDock;
class Printing;
class YearDock;

// Puts its docks on the window, hidden; the window places the component. Takes all of it off again at its
// end, the component first, for it looks at what stands around it. Database and window outlive it.
class Workplace : private control::UserRights {
 public:
  Workplace(store::Database& database, QMainWindow& window);
  ~Workplace() override;
  Workplace(const Workplace&) = delete;
  Workplace& operator=(const Workplace&) = delete;

  store::Database& database;
  Connection connection;  // set by who opened the database
  qt::ControleVelanorWidget* const component;
  CardHistory* const history;
  CardSteps* const steps;
  CardAids* const aids;
  EmployeesDock* const employees;
  ChecksDock* const checks;
  YearDock* const year;
  Printing* const printing;

 private:
  std::string rights(std::string_view) override { return {}; }

  control::Client client_;
};

}  // namespace velanor::app
