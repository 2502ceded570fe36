// The component without a window: opens a database, chooses an entity and prints its employees.
// Usage: headless_host DATABASE ENTITY
#include <velanor/controle_velanor.h>
#include <velanor/hand.h>
#include <velanor/sqlite_database.h>

#include <iostream>

namespace {

// A toolkit that shows messages on the terminal and answers no to every question.
class Terminal : public velanor::screen::Toolkit {
  velanor::screen::Answer message(const velanor::screen::Message& message) override {
    std::cout << message.title << " : " << message.text << "\n";
    return message.buttons == velanor::screen::Buttons::YesNo ? velanor::screen::Answer::No
                                                              : velanor::screen::Answer::Ok;
  }
};

struct Around : velanor::control::UserRights, velanor::control::HelpViewer, velanor::control::HostWindow {
  std::string rights(std::string_view) override { return "all"; }
  void show(velanor::control::Client*, velanor::store::Database&, std::string_view, std::string_view,
            std::string_view) override {}
  void unload() override {}
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "Usage: headless_host DATABASE ENTITY\n";
    return 2;
  }
  try {
    velanor::store::SqliteDatabase database(argv[1]);
    Terminal terminal;
    Around around;
    velanor::ControleVelanor component({terminal, around, around});
    component.DroitsUtilisateur(around);
    component.TheDatabase(database);
    component.init();

    velanor::screen::Form& card = component.screen().base();
    velanor::screen::Hand hand(component.screen());
    hand.type(dynamic_cast<velanor::screen::TextBox&>(*card.find("Txt_Asso")), argv[2]);
    const auto& employees = dynamic_cast<velanor::screen::ComboBox&>(*card.find("Cbo_Aidant"));
    for (const std::string& employee : employees.items()) std::cout << employee << "\n";
    return employees.count() > 0 ? 0 : 1;
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
  }
}
