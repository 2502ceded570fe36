// What clerks do without looking, on a real X server: they answer two messages in one go, press Enter once
// too often, take back what they typed, and close the window while it asks.
#include <QApplication>
#include <QTimer>
#include <chrono>
#include <iostream>

#include "x_desk.h"

namespace {

using namespace velanor;
using namespace velanor::x;
using Keys = std::vector<std::string>;

Keys operator+(Keys keys, const Keys& more) {
  keys.insert(keys.end(), more.begin(), more.end());
  return keys;
}

const Keys kToItems{"alt+p", "shift+Tab", "Home", "alt+l"};

// More hours than the law allows: the question whether to keep them, and behind its "Oui" the warning.
void answer_two_messages(int delay) {
  Desk desk;
  if (!desk.comes_up()) return;
  desk.open_card();
  const Keys hours{"Home", "Return", "ctrl+a", "2", "0", "0", "alt+o"};
  const Keys both{"alt+r", "Return", "Return"};
  const Keys on{"alt+d", "alt+h", "1", "5", "0", "alt+o"};
  desk.type(kToItems + hours + both + on, delay);
  const std::string at = "two messages at " + std::to_string(delay) + " ms: ";
  if (!desk.wait_for([&] { return desk.stored()(2) == "15000"; }))
    expect(at + "the card", desk.message() + " at " + desk.focus(), "saved");
  desk.finish_typing();
  expect(at + "hours of the item", desk.stored()(31, 1, 1), "20000");
  expect(at + "message", desk.message(), "");
}

// What was typed over a field that was stepped into comes back, and so does what one stray key took.
void take_back() {
  Desk desk;
  if (!desk.comes_up()) return;
  desk.open_card();
  desk.type_through({"alt+h", "1", "2", "comma", "5", "ctrl+z"});
  expect("hours taken back", desk.text("Txt_HorMensEtab"), "151,67");
  desk.type_through({"Tab", "shift+Tab", "7", "ctrl+z", "Tab"});
  expect("hours taken back again", desk.text("Txt_HorMensEtab"), "151,67");
  desk.type_through({"alt+n", "E", "z", "e", "Escape", "ctrl+z", "ctrl+z", "Tab"});
  expect("town taken back", desk.text("Cbo_Com"), "Albi");
  expect("message", desk.message(), "");
}

// The window goes while it asks, closed or destroyed, with keys on their way to it.
void close_while_it_asks(bool destroy) {
  Desk desk;
  if (!desk.comes_up()) return;
  desk.open_card();
  bool gone = false;
  QObject::connect(&desk.widget(), &qt::ControleVelanorWidget::message_opened, qApp, [&] {
    QTimer::singleShot(0, qApp, [&] {
      if (destroy) {
        desk.destroy();
      } else {
        desk.widget().close();
      }
      gone = true;
    });
  });
  QApplication::setQuitOnLastWindowClosed(false);
  desk.type({"alt+s", "1", "Return", "Tab", "2"}, 6);
  if (!desk.wait_for([&] { return gone; })) expect("question", "none", "asked");
  desk.finish_typing();
  QCoreApplication::processEvents();
  expect("card", desk.card_exists() ? "there" : "deleted", "there");
  expect("message", desk.message(), "");
}

const Keys kOpenAndChange{"0", "0", "1", "0", "0", "0", "1", "0", "alt+t", "0", "0", "7", "Tab"};

// One Enter more and one more yet: the card is still there, and so is what was done to it. `on` is put in
// focus before ("": wherever the focus is).
void press_enter_thrice(const std::string& where, const Keys& begin, const std::string& on) {
  Desk desk(std::chrono::milliseconds(0));
  if (!desk.comes_up()) return;
  desk.type_through(kOpenAndChange + begin, 3);
  screen::Control* control = desk.top().find(on);
  if (control && !desk.top().can_focus(*control)) return;
  if (control) desk.widget().widget_of(*control)->setFocus(Qt::TabFocusReason);
  desk.type_through({"Return", "Return", "Return"}, 6);
  const bool there = desk.card_exists();
  const bool saved = there && desk.stored()(4) == "007";
  const bool open = desk.text("Txt_Etat") == "Modification" && desk.text("Txt_Secteur") == "007";
  if (!there || (!saved && !open))
    expect("three Enters " + where + " on " + on, desk.message() + " at " + desk.focus(), "nothing lost");
}

void press_enter_everywhere() {
  const Keys activity{"alt+d", "alt+j", "Down", "Tab", "1", "alt+o"};
  const Keys amendment{"alt+p", "shift+Tab", "Home", "Return", "Tab", "alt+o"};
  const Keys items = kToItems;
  const Keys item = items + Keys{"Home", "Return", "ctrl+a", "9", "alt+o"};
  for (const auto& [where, begin] : {std::pair{"after an activity", activity},
                                     {"after an amendment", amendment},
                                     {"in an amendment", Keys(amendment.begin(), amendment.end() - 1)},
                                     {"in a new amendment", Keys{"alt+p", "alt+j"}},
                                     {"among the items", items},
                                     {"after an item", item}})
    press_enter_thrice(where, begin, "");
  const std::vector<std::pair<Keys, Keys>> pages{
      {{"alt+d"},
       {"Txt_NomAidant", "Txt_CodEtab", "Cbo_Etab", "Cbo_Com", "Opt_CDI", "Txt_DatNais", "Cbo_NatureContrat",
        "Cbo_EtudeAidant", "Lst_Activites", "Cmd_AjAct", "Ong_FichPers", "Cmd_Supp", "Cmd_Annul", "Cmd_OK",
        "Cmd_Copier"}},
      {{"alt+d", "alt+j"}, {"Cbo_Activites", "Txt_Pourc", "Cmd_OkAct", "Cmd_AnnulAct"}},
      {{"alt+p"}, {"Txt_Profil1", "Txt_HresExo", "Txt_DatFin", "Lst_DatEffet", "Cmd_AjDetail", "Cmd_Detail"}},
      {{"alt+p", "shift+Tab", "Home", "Return"},
       {"Txt_DatEffet", "Cbo_Qualif", "Cmd_SuppDetail", "Cmd_OkDetail", "Cmd_AnnulDetail"}},
      {items, {"Lst_Code", "Cmd_Ajouter", "Cmd_Annuler", "Cmd_Retour"}},
      {items + Keys{"Home", "Return"}, {"Txt_Base", "Cmd_Supprimer", "Cmd_Annuler", "Cmd_OK"}}};
  for (const auto& [begin, controls] : pages) {
    for (const std::string& control : controls) press_enter_thrice("there", begin, control);
  }
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  // Faster, the server takes two Enters for one that is held down, and that answers nothing.
  for (const int delay : {6, 12, 40}) answer_two_messages(delay);
  take_back();
  for (const bool destroy : {false, true}) close_while_it_asks(destroy);
  press_enter_everywhere();
  std::cout << (mistakes() ? "work was lost" : "nothing was lost") << std::endl;
  return mistakes() ? 1 : 0;
}
