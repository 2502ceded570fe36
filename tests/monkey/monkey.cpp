// A user without a plan: random but possible actions, keys and answers on the whole component,
// the invariants checked after each. Usage: monkey [ACTIONS] [SEED]; the seed is printed.
#include <chrono>
#include <cstdlib>
#include <deque>
#include <iostream>
#include <random>

#include "monkey/counting_database.h"
#include "monkey/invariants.h"

namespace velanor::test {
namespace {

class Monkey {
 public:
  Monkey(store::Database& database, std::uint64_t seed) : database_(database), random_(seed) { start(); }

  // The first breach; empty when there was none.
  std::string act();
  long saved() const { return saved_; }
  long added() const { return added_; }
  const std::deque<std::string>& trail() const { return trail_; }

 private:
  int below(int n) { return static_cast<int>(random_() % static_cast<std::uint64_t>(n)); }
  template <typename T>
  const T& any(const std::vector<T>& of) {
    return of[static_cast<std::size_t>(below(static_cast<int>(of.size())))];
  }
  void start();
  screen::Control& choose();
  // What somebody who knows the work would do next, so that the game gets anywhere.
  const char* next_step();
  const char* next_step_of_form();
  std::string word_for(const std::string& name);
  screen::Refusal act_on(screen::Control& control);
  screen::Refusal act_on_text(screen::TextControl& control);
  screen::Refusal act_on_list(screen::ListBox& list);
  void note(const std::string& what);

  CountingDatabase database_;
  std::mt19937_64 random_;
  std::unique_ptr<Office> office_;
  Invariants invariants_;
  std::deque<std::string> trail_;
  int refused_ = 0;
  long saved_ = 0;
  long added_ = 0;
};

void Monkey::start() {
  office_ = std::make_unique<Office>(database_);
  invariants_ = {};
  office_->toolkit.answer = [this](const screen::Message& message) {
    const bool first = below(3) > 0;
    note("  " + message.text);
    if (message.buttons == screen::Buttons::YesNo) return first ? screen::Answer::Yes : screen::Answer::No;
    if (message.buttons == screen::Buttons::OkCancel)
      return first ? screen::Answer::Ok : screen::Answer::Cancel;
    return screen::Answer::Ok;
  };
  office_->component.init();
}

void Monkey::note(const std::string& what) {
  trail_.push_back(what);
  if (trail_.size() > 40) trail_.pop_front();
}

const char* Monkey::next_step_of_form() {
  const auto& steps = [&]() -> const std::vector<const char*>& {
    static const std::vector<const char*> kHours{"Txt_NbHresTrav", "Txt_NbHresPayees", "Cmd_OK", "Cmd_OK",
                                                 "Cmd_Annuler"};
    static const std::vector<const char*> kEdit{"Cbo_LibRub",  "Txt_Base", "Txt_Taux",
                                                "Txt_Montant", "Cmd_OK",   "Cmd_OK"};
    static const std::vector<const char*> kBrowse{"Cmd_Ajouter", "Cmd_Ajouter", "Lst_Code", "Cmd_SaisieAuto",
                                                  "Cmd_Retour"};
    if (office_->component.screen().top().name() == "Frm_SaisieHres") return kHours;
    return office_->control("Txt_Base").enabled() || office_->control("Txt_Montant").enabled() ? kEdit
                                                                                               : kBrowse;
  }();
  return any(steps);
}

const char* Monkey::next_step() {
  card::CardScreen& ui = office_->ui;
  if (&office_->component.screen().top() != &ui) return next_step_of_form();
  static const std::vector<const char*> kLine{"Txt_DatEffet", "Cbo_Qualif",       "Cbo_Qualif",
                                              "Cbo_Grille",   "Txt_DatDepGrille", "Txt_TxHor",
                                              "Cmd_OkDetail", "Cmd_OkDetail"};
  static const std::vector<const char*> kActivity{"Cbo_Activites", "Txt_Pourc", "Cmd_OkAct"};
  static const std::vector<const char*> kCard{
      "Cmd_OK",       "Cmd_OK",       "Cmd_AjDetail",  "Cmd_AjDetail", "Lst_DatEffet",
      "Lst_DatEffet", "Cmd_Detail",   "Cmd_AjAct",     "Txt_CodEtab",  "Cbo_Etab",
      "Cbo_Secteur",  "Cbo_Com",      "Txt_DatDeb",    "Cbo_Profil1",  "Txt_NomAidant",
      "Txt_HresExo",  "Cbo_MotifFin", "Lst_Activites", "Cmd_Copier",   "Cmd_SuppDetail"};
  if (ui.Cmd_OkDetail.enabled()) return any(kLine);
  if (ui.Cmd_OkAct.enabled()) return any(kActivity);
  // A card that cannot be saved any more is given up for another.
  if (ui.Cmd_Annul.enabled()) return refused_ > 3 ? "Cmd_Annul" : any(kCard);
  refused_ = 0;
  if (ui.Txt_Asso.is_empty()) return "Cbo_Asso";
  if (ui.Cbo_Periode.index() != 0 && below(4) > 0) return "Cbo_Periode";
  return below(4) == 0 ? "Cmd_Ajout" : "Cbo_Aidant";
}

// Mostly a control that answers, at times one that does not, and must not mind.
screen::Control& Monkey::choose() {
  const auto& all = office_->component.screen().top().controls();
  screen::Control* control = below(3) > 0 ? &office_->control(next_step()) : any(all);
  for (int tries = 0; tries < 30 && !office_->usable(*control); ++tries) control = any(all);
  if (!control->takes_focus() && below(8) > 0) return choose();
  // Leaving the program, deleting and giving up end what others build: seldom.
  const std::string& name = control->name();
  const bool given_up = name == "Cmd_Annul" && refused_ > 3;
  if (!given_up && (name == "Cmd_Sortir" || name == "Cmd_Supp" || name == "Cmd_Annul") && below(10) > 0)
    return choose();
  return *control;
}

std::string Monkey::word_for(const std::string& name) {
  static const std::vector<std::string> kDates{"01/01/2026", "1/6/26",    "010925",     "31/12/2025",
                                               "15 3 24",    "99/99/99",  "01/10/2021", "30092021",
                                               "5",          "29/02/2024"};
  static const std::vector<std::string> kNumbers{"0",       "100",    "12,5", "33.33", ",",
                                                 "9999999", "151,67", "50",   "0,01"};
  static const std::vector<std::string> kCodes{"001", "1", "02",    "01",  "06", "03",
                                               "999", "5", "00010", "010", "3"};
  static const std::vector<std::string> kWords{"é", "Martin", "ALBI", "\"]", "[x", "Paris", " ", "Łódź"};
  if (below(12) == 0) return any(kWords);
  if (name.find("Dat") != std::string::npos && below(3) > 0) {
    return std::to_string(1 + below(28)) + "/" + std::to_string(1 + below(12)) + "/202" +
           std::to_string(4 + below(4));
  }
  if (name.find("Dat") != std::string::npos) return any(kDates);
  for (const char* code : {"Asso", "Aidant", "Conv", "Secteur", "Profil", "Charg", "Etab", "Code"}) {
    if (name.find(code) != std::string::npos) return any(kCodes);
  }
  return name.rfind("Txt_", 0) == 0 ? any(kNumbers) : any(kWords);
}

screen::Refusal Monkey::act_on_text(screen::TextControl& control) {
  screen::Hand& hand = office_->hand;
  auto* combo = dynamic_cast<screen::ComboBox*>(&control);
  if (combo && below(4) > 0) {
    const screen::Refusal why = hand.drop_down(*combo);
    return why.empty() && combo->count() > 0 ? hand.choose(*combo, below(combo->count())) : why;
  }
  const std::string word = word_for(control.name());
  note("    " + word);
  switch (below(8)) {
    case 0:
      return hand.replace_text(control, "");
    case 1:
      return hand.replace_text(control, word);
    case 2:
      return hand.press(control, {any<char32_t>({8, 9, 13, 27, 127, U'7', U'a', U'.'})});
    default: {
      const screen::Refusal why = hand.replace_text(control, "");
      return why.empty() ? hand.type(control, word) : why;
    }
  }
}

screen::Refusal Monkey::act_on_list(screen::ListBox& list) {
  if (list.count() == 0) return {};
  const int line = below(list.count());
  return below(2) == 0 ? office_->hand.pick(list, line) : office_->hand.double_click(list, line);
}

screen::Refusal Monkey::act_on(screen::Control& control) {
  screen::Hand& hand = office_->hand;
  if (auto* text = dynamic_cast<screen::TextControl*>(&control)) return act_on_text(*text);
  if (auto* list = dynamic_cast<screen::ListBox*>(&control)) return act_on_list(*list);
  if (auto* bar = dynamic_cast<screen::ScrollBar*>(&control)) return hand.scroll(*bar, below(bar->max() + 1));
  if (dynamic_cast<screen::Tabs*>(&control)) return hand.show_page(below(3));
  if (dynamic_cast<screen::Label*>(&control) || dynamic_cast<screen::Frame*>(&control)) {
    return below(3) == 0 ? hand.leave() : below(2) == 0 ? hand.right_press() : hand.close();
  }
  return hand.click(control);
}

std::string Monkey::act() {
  screen::Control& control = choose();
  const std::string name = control.name();
  note(name);
  const long changes = database_.changes();
  const int lines = office_->ui.Lst_DatEffet.count();
  act_on(control);
  const bool changed = database_.changes() != changes;
  saved_ += changed && name == "Cmd_OK";
  refused_ += !changed && name == "Cmd_OK" && &control.form() == &office_->ui;
  added_ += name == "Cmd_OkDetail" && office_->ui.Lst_DatEffet.count() > lines;
  if (office_->component.closed()) {
    start();
    return {};
  }
  return invariants_.check(*office_, name, changed);
}

int run(long actions, std::uint64_t seed) {
  std::cout << "seed " << seed << std::endl;
  store::MemoryDatabase database;
  MemorySink sink(database, Towns::kSome);
  demo::fill(sink, {.employees = 60});
  Monkey monkey(database, seed);
  const auto begun = std::chrono::steady_clock::now();
  for (long i = 0; i < actions; ++i) {
    const std::string breach = monkey.act();
    if (breach.empty()) continue;
    for (const std::string& step : monkey.trail()) std::cout << step << "\n";
    std::cout << "action " << i << ": " << breach << "\n0 passed, 1 failed\n";
    return 1;
  }
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begun;
  std::cout << actions << " actions, " << static_cast<long>(static_cast<double>(actions) / took.count())
            << " a second; cards saved: " << monkey.saved() << ", lines added: " << monkey.added()
            << "\n1 passed, 0 failed\n";
  return 0;
}

}  // namespace
}  // namespace velanor::test

int main(int argc, char** argv) {
  const long actions = argc > 1 ? std::atol(argv[1]) : 20'000;
  const std::uint64_t seed = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : std::random_device{}();
  return velanor::test::run(actions, seed);
}
