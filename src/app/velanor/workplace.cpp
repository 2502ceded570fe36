#include "app/velanor/workplace.h"

#include <QMainWindow>

#include "app/velanor/card_aids.h"
#include "app/velanor/card_history.h"
#include "app/velanor/card_steps.h"
#include "app/velanor/checks_dock.h"
#include "app/velanor/employees_dock.h"
#include "app/velanor/printing.h"
#include "app/velanor/year_dock.h"

namespace velanor::app {

Workplace::Workplace(store::Database& given, QMainWindow& window)
    : database(given),
      component(new qt::ControleVelanorWidget(&window)),
      history(new CardHistory(*component, database, &window)),
      steps(new CardSteps(*component, database, &window)),
      aids(new CardAids(*component, database, &window)),
      employees(new EmployeesDock(*component, database, &window)),
      checks(new ChecksDock(*component, database, &window)),
      year(new YearDock(*component, database, &window)),
      printing(new Printing(*component, database, *employees, &window)) {
  window.addDockWidget(Qt::LeftDockWidgetArea, employees);
  employees->hide();
  window.addDockWidget(Qt::BottomDockWidgetArea, checks);
  checks->hide();
  window.addDockWidget(Qt::BottomDockWidgetArea, year);
  window.splitDockWidget(year, checks, Qt::Vertical);
  year->hide();
  component->DroitsUtilisateur(*this);
  component->TheClient(client_);
  component->TheDatabase(database);
}

Workplace::~Workplace() {
  delete component;
  delete printing;
  delete year;
  delete checks;
  delete employees;
  delete aids;
  delete steps;
  delete history;
}

}  // namespace velanor::app
