// A host without a window, on a store of its own: a clerk's hand makes a card, and the host finds it in its
// map. Ends with a sentence and the status 1 where something is otherwise than it should be.
#include <velanor/controle_velanor.h>
#include <velanor/hand.h>

#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "map_backend.h"
#include "reference_files.h"

namespace {

namespace control = velanor::control;
namespace screen = velanor::screen;
namespace store = velanor::store;

void must(bool holds, const std::string& sentence) {
  if (!holds) throw std::runtime_error(sentence);
}

// Shows messages on the terminal, and agrees to every question.
class Terminal : public screen::Toolkit {
  screen::Answer message(const screen::Message& message) override {
    std::cout << message.title << ": " << message.text << "\n";
    return message.buttons == screen::Buttons::YesNo ? screen::Answer::Yes : screen::Answer::Ok;
  }
};

struct Around : control::UserRights, control::HelpViewer, control::HostWindow {
  std::string rights(std::string_view) override { return "all"; }
  void show(control::Client*, store::Database&, std::string_view page, std::string_view,
            std::string_view) override {
    std::cout << "Help: " << page << "\n";
  }
  void unload() override {}
};

// Remembers which card was written last.
struct Written : control::CardListener {
  void card_saved(const control::Card& card) override { id = card.id; }
  std::string id;
};

// Uses the controls of the topmost form by their names, as a clerk would.
class Clerk {
 public:
  explicit Clerk(velanor::ControleVelanor& component)
      : screen_(component.screen()), hand_(component.screen()) {}

  void click(std::string_view name) { did(hand_.click(the<screen::Control>(name))); }
  void type(std::string_view name, std::string_view text) {
    did(hand_.type(the<screen::TextControl>(name), text));
  }
  void clear(std::string_view name) { did(hand_.replace_text(the<screen::TextControl>(name), {})); }
  void choose(std::string_view name, std::string_view line) {
    auto& box = the<screen::ComboBox>(name);
    did(hand_.drop_down(box));
    did(hand_.choose(box, box.find(line)));
  }
  void turn_to(int page) { did(hand_.show_page(page)); }

 private:
  template <typename Kind>
  Kind& the(std::string_view name) const {
    auto* found = dynamic_cast<Kind*>(screen_.top().find(name));
    must(found != nullptr, "There is no such control: " + std::string(name));
    return *found;
  }
  static void did(const screen::Refusal& refusal) { must(refusal.empty(), refusal.why()); }

  screen::Screen& screen_;
  screen::Hand hand_;
};

void make_a_card(Clerk& clerk) {
  clerk.click("Cmd_Ajout");
  clerk.type("Txt_NomAidant", "dupont paul");
  clerk.type("Txt_DatDeb", "1.2.26");
  clerk.click("Cmd_AjAct");
  clerk.choose("Cbo_Activites", "Aide ménagère");
  clerk.type("Txt_Pourc", "100");
  clerk.click("Cmd_OkAct");

  clerk.turn_to(1);
  clerk.type("Txt_Profil1", "001");
  clerk.click("Cmd_AjDetail");
  clerk.choose("Cbo_Qualif", "AD");
  clerk.clear("Txt_DatDepGrille");
  clerk.type("Txt_TxHor", "15,5");
  clerk.click("Cmd_OkDetail");

  clerk.click("Cmd_Detail");  // opens the form of the payroll items
  clerk.click("Cmd_Ajouter");
  clerk.type("Txt_Code", "001");
  clerk.type("Txt_Base", "100");
  clerk.click("Cmd_OK");
  clerk.click("Cmd_Retour");
  clerk.click("Cmd_OK");
}

void check(const store::DbRecord& card) {
  must(card(1) == "DUPONT PAUL", "The name in the map reads " + std::string(card(1)));
  must(card(8) == stored_day(1, 2, 2026), "The start in the map reads " + std::string(card(8)));
  must(card(12, 1) == card(8), "The amendment does not start with the contract.");
  must(card(17, 1) == "15500", "The hourly rate in the map reads " + std::string(card(17, 1)));
  must(card(30, 1, 1) == "001" && card(31, 1, 1) == "10000", "The payroll item is not in the map.");
}

void run() {
  Files files = reference_files();
  store::StoreDatabase database(std::make_unique<MapBackend>(files));
  Terminal terminal;
  Around around;
  Written written;
  velanor::ControleVelanor component({terminal, around, around});
  component.DroitsUtilisateur(around);
  component.TheDatabase(database);
  component.set_clock([] { return velanor::entry::Date{15, 3, 2026}; });
  component.listen(written);
  component.init();

  Clerk clerk(component);
  make_a_card(clerk);
  const std::string id = "999990012026";
  must(written.id == id, "The card that was saved is called \"" + written.id + "\".");
  must(files["VELANORO"].count(id) == 1, "The map has no card " + id + ".");
  check(files["VELANORO"][id]);

  const control::Opening opening = component.open("1", "2026", "99999");
  must(opening.is_open(), opening.why);
  must(component.state() == control::State::kEditing && !component.modified(), "The card is not as stored.");
  must(component.card_title() == "99999 DUPONT PAUL", "The title reads " + component.card_title());
  std::cout << "In the map: " << component.card_title() << "\n";
}

}  // namespace

int main() {
  try {
    run();
    return 0;
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
  }
}
