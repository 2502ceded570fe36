#include "support/office.h"

#include <stdexcept>

#include "card/record/element.h"
#include "play/scenario.h"
#include "play/store_commands.h"

namespace velanor::test {

void load(store::Database& database, std::string_view scenario) {
  const auto script = play::read_scenario(std::string(VELANOR_SCENARIOS) + "/" + std::string(scenario));
  for (const play::Step& step : script.steps) {
    if (step.command.verb == play::Verb::Put) play::put(database, step.command);
  }
}

void MemorySink::put(std::string_view file, std::string_view id, const store::DbRecord& record) {
  const bool other =
      towns_ == Towns::kSome && file == "COMMUNES" && id.substr(0, 2) != "75" && id.substr(0, 2) != "2A";
  if (other) {
    other_towns_.emplace(record(1), id);
    return;
  }
  if (const auto town =
          other_towns_.extract(file == "VELANORO" ? std::string(element(record, card::kTown)) : "")) {
    store::DbRecord named;
    named.set(1, town.key());
    database_.put("COMMUNES", town.mapped(), named);
  }
  database_.put(file, id, record);
}

Office::Office(store::Database& database, entry::UtilSaisie* entry)
    : component({toolkit, host, host}),
      hand(component.screen()),
      ui(dynamic_cast<card::CardScreen&>(component.screen().base())) {
  component.DroitsUtilisateur(host);
  component.TheClient(host.client);
  component.TheDatabase(database);
  if (entry) component.set_entry(*entry);
}

screen::Control& Office::control(std::string_view name) {
  if (screen::Control* found = component.screen().top().find(name)) return *found;
  if (screen::Control* found = ui.find(name)) return *found;
  throw std::out_of_range("no control " + std::string(name));
}

bool Office::usable(const screen::Control& control) {
  const bool page =
      control.page() < 0 || !control.form().tabs() || control.form().tabs()->page_enabled(control.page());
  return control.usable() && page && &control.form() == &component.screen().top();
}

}  // namespace velanor::test
