#include "velanor/controle_velanor.h"

#include <stdexcept>
#include <utility>

#include "control/announcer.h"
#include "control/field_in_hand.h"
#include "control/rules.h"

namespace velanor {

struct ControleVelanor::Parts {
  explicit Parts(const Surroundings& given)
      : surroundings(given),
        screen(ui, given.toolkit),
        announcer(std::make_shared<control::Announcer>([this] { return standing(); })) {
    screen.when_acted([this, announcer = announcer] {
      if (rules && !closed) rules->note_step();
      announcer->act_over();
    });
  }
  ~Parts() { announcer->stop(); }
  Parts(const Parts&) = delete;
  Parts& operator=(const Parts&) = delete;

  control::Standing standing() const { return rules && !closed ? rules->standing() : control::Standing(); }
  void make_rules();
  void start();
  bool go(Rules::Step step);
  std::string aid(const std::function<std::string(Rules&)>& what);
  void bind_frame();
  void Mnu_Sommaire_Click();
  void Ong_FichPers_Click();
  void Cmd_Sortir_Click();

  Surroundings surroundings;
  entry::Clock clock = entry::system_clock();
  std::unique_ptr<entry::UtilSaisie> own_entry;
  entry::UtilSaisie* entry = nullptr;
  card::CardScreen ui;
  screen::Screen screen;
  std::shared_ptr<control::Announcer> announcer;
  std::string element_rights;
  control::Client* client = nullptr;
  store::Database* database = nullptr;
  std::unique_ptr<Rules> rules;
  bool closed = true;
};

ControleVelanor::ControleVelanor(const Surroundings& surroundings)
    : parts_(std::make_unique<Parts>(surroundings)) {}
ControleVelanor::~ControleVelanor() = default;

void ControleVelanor::DroitsUtilisateur(control::UserRights& rights) {
  parts_->element_rights = rights.rights("ELEMBUDGETPERS");
}
void ControleVelanor::TheClient(control::Client& client) { parts_->client = &client; }
void ControleVelanor::TheDatabase(store::Database& database) { parts_->database = &database; }
void ControleVelanor::set_entry(entry::UtilSaisie& entry) { parts_->entry = &entry; }
void ControleVelanor::set_clock(entry::Clock clock) { parts_->clock = std::move(clock); }

control::State ControleVelanor::state() const { return parts_->standing().state; }
std::string ControleVelanor::card_id() const { return parts_->standing().card.id; }
std::string ControleVelanor::card_title() const { return parts_->standing().card.title; }
bool ControleVelanor::modified() const { return parts_->standing().modified; }
void ControleVelanor::listen(control::CardListener& listener) { parts_->announcer->listen(listener); }
void ControleVelanor::ignore(control::CardListener& listener) { parts_->announcer->ignore(listener); }

control::Opening ControleVelanor::open(std::string_view entity, std::string_view year,
                                       std::string_view employee) {
  if (parts_->closed) return control::Opening::not_started();
  if (parts_->screen.acting()) return control::Opening::busy();
  return parts_->rules->guide.open(entity, year, employee);
}

control::Opening ControleVelanor::reload() {
  if (parts_->closed) return control::Opening::not_started();
  if (parts_->screen.acting()) return control::Opening::busy();
  return parts_->rules->guide.reload();
}

std::string ControleVelanor::undo_name() const {
  return parts_->closed ? std::string() : parts_->rules->step_name(Rules::Step::kBack);
}
std::string ControleVelanor::redo_name() const {
  return parts_->closed ? std::string() : parts_->rules->step_name(Rules::Step::kForth);
}
bool ControleVelanor::undo() { return parts_->go(Rules::Step::kBack); }
bool ControleVelanor::redo() { return parts_->go(Rules::Step::kForth); }

bool ControleVelanor::Parts::go(Rules::Step step) {
  bool gone = false;
  if (!closed && !screen.acting()) screen.act([&] { gone = rules->go(step); });
  return gone;
}

std::string ControleVelanor::split_told() const {
  return parts_->closed ? std::string() : parts_->rules->aids.split();
}
std::string ControleVelanor::hours_told() const {
  return parts_->closed ? std::string() : parts_->rules->aids.hours();
}
std::string ControleVelanor::put_remainder() {
  return parts_->aid([](Rules& rules) { return rules.aids.put_remainder(rules.states.year_is_open()); });
}
std::string ControleVelanor::repeat_items() {
  return parts_->aid([](Rules& rules) { return rules.aids.repeat_items(rules.states.year_is_open()); });
}

std::string ControleVelanor::Parts::aid(const std::function<std::string(Rules&)>& what) {
  if (closed || screen.acting()) return control::Opening::busy().why;
  std::string why;
  screen.act([&] { why = what(*rules); });
  return why;
}

std::optional<control::FieldPlace> ControleVelanor::field_in_hand() const {
  if (parts_->closed || !parts_->rules->card.open || &parts_->screen.top() != &parts_->ui)
    return std::nullopt;
  const Rules& rules = *parts_->rules;
  return control::field_in_hand(parts_->ui, rules.card, rules.activities, rules.validation);
}

int ControleVelanor::news_descriptor() const {
  return parts_->closed ? -1 : parts_->rules->others.descriptor();
}

bool ControleVelanor::hear_news() {
  if (parts_->closed) return true;
  if (parts_->screen.acting()) return false;
  parts_->screen.act([this] {
    try {
      parts_->rules->others.follow();
    } catch (const store::DbError&) {
      // What it could not read is left for the next time.
    }
  });
  return true;
}

screen::Screen& ControleVelanor::screen() { return parts_->screen; }
const store::DbRecord& ControleVelanor::card_in_hand() const {
  static const store::DbRecord kNone;
  return parts_->rules ? parts_->rules->card.draft.record() : kNone;
}
store::DbRecord ControleVelanor::card_as_entered() const {
  return parts_->rules && !parts_->closed ? parts_->rules->as_entered() : store::DbRecord();
}
screen::Control* ControleVelanor::place_of(int attribute) {
  return parts_->rules ? parts_->rules->validation.place_of({.number = attribute}) : nullptr;
}
bool ControleVelanor::closed() const { return parts_->closed; }

void ControleVelanor::init() {
  Parts& parts = *parts_;
  if (!parts.database) throw std::logic_error("ControleVelanor: TheDatabase was not set before init");
  if (parts.rules) throw std::logic_error("ControleVelanor: init runs once");
  parts.make_rules();
  try {
    parts.start();
  } catch (...) {
    parts.rules->procedure.FermerFichiers();
    parts.screen.finish();
    throw;
  }
  parts.closed = false;
}

void ControleVelanor::Parts::make_rules() {
  if (!entry) {
    own_entry = entry::make_util_saisie(clock);
    entry = own_entry.get();
  }
  rules = std::make_unique<Rules>(ui, screen, *entry, *database,
                                  [this](const commands::CardEvent& event) { announcer->note(event); });
}

void ControleVelanor::abandon() {
  parts_->announcer->stop();
  if (parts_->rules) {
    parts_->rules->others.stop();
    parts_->rules->procedure.FermerFichiers();
  }
  parts_->closed = true;
  parts_->screen.finish();
}

void ControleVelanor::Parts::start() {
  rules->card.read_only = database->read_only();
  rules->procedure.OuvrirFichiers();
  rules->bind();
  bind_frame();
  control::Variable& variable = rules->procedure.variable();
  store::DbFile& tables = rules->procedure.file(control::File::kTables);
  variable.naturecontrat = tables.Read("NATURECONTRAT");
  variable.diplomes = tables.Read("DIPLOMES");
  rules->years.ChargerExtractions(rules->procedure);
  rules->default_agreement = control::LireParametres(rules->procedure, rules->default_agreement);
  rules->states.start();
  rules->lists.RequeteAssoc();
  rules->lists.RemplirAssoc();
  rules->others.start();
  ui.Ong_FichPers.show(card::kIdentityPage);
  rules->lists.fill_diplomas();
}

void ControleVelanor::Parts::bind_frame() {
  ui.Mnu_Sommaire.clicked += [this] { Mnu_Sommaire_Click(); };
  ui.Ong_FichPers.switched += [this] { Ong_FichPers_Click(); };
  ui.Cmd_Sortir.clicked += [this] { Cmd_Sortir_Click(); };
  ui.right_pressed += [this] {
    ui.Mnu_Aide.set_enabled(true);
    ui.Mnu_Sommaire.set_enabled(true);
    screen.toolkit().pop_up(ui.Mnu_Aide);
  };
}

void ControleVelanor::Parts::Mnu_Sommaire_Click() {
  surroundings.help.show(client, *database, "Velanor.htm", "Fiches du personnel", "P");
}

void ControleVelanor::Parts::Ong_FichPers_Click() {
  if (ui.Ong_FichPers.current() == card::kIdentityPage) ui.set_focus(ui.Cmd_AjAct);
  if (ui.Ong_FichPers.current() != card::kAmendmentPage) return;
  const bool ready = !ui.Txt_ConvCol.is_empty() && !ui.Txt_DatDeb.is_empty();
  ui.Cdr_Detail.set_enabled(ready);
  if (ready) {
    ui.set_focus(ui.Cmd_AjDetail);
  } else {
    ui.set_focus(ui.Txt_Profil1);
  }
}

void ControleVelanor::Parts::Cmd_Sortir_Click() {
  rules->lists.release();
  rules->grids.release();
  rules->procedure.FermerFichiers();
  closed = true;
  screen.finish();
  surroundings.window.unload();
}

}  // namespace velanor
