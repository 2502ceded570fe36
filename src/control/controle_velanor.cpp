#include "velanor/controle_velanor.h"

#include <stdexcept>

#include "amendments/activities.h"
#include "amendments/grids.h"
#include "amendments/lines.h"
#include "card/commands/card_commands.h"
#include "card/commands/card_fields.h"
#include "card/commands/card_record.h"
#include "card/commands/validation.h"
#include "card/screen/card_screen.h"
#include "card/screen/card_state.h"
#include "card/screen/states.h"
#include "control/session/procedure.h"
#include "control/session/years.h"
#include "entry/fields/fields.h"
#include "forms/frm_rub_saisie.h"
#include "forms/frm_saisie_hres.h"
#include "reference/lists.h"
#include "reference/lookup_pairs.h"
#include "text/utf8.h"

namespace velanor {

// What works on the store: made by `init`, when the database is known.
struct Rules {
  Rules(card::CardScreen& ui, screen::Screen& screen, entry::UtilSaisie& entry, store::Database& database);
  void bind();
  forms::ItemContext item_context() const;
  void open_items(std::function<void(const amendments::AmendmentLines::MonthlyTime&)> closed);

  card::CardScreen& ui;
  screen::Screen& screen;
  control::Procedure procedure;
  card::Reading reading;
  card::CardState card;
  control::YearTable years;
  std::string default_agreement;
  card::CardStates states;
  reference::ReferenceLists lists;
  reference::LookupPairs pairs;
  entry::Fields fields;
  amendments::CareerGrids grids;
  forms::Frm_SaisieHres hours_form;
  forms::Frm_RubSaisie item_form;
  amendments::AmendmentLines lines;
  amendments::ActivityLines activities;
  commands::CardRecord record;
  commands::Validation validation;
  commands::CardCommands commands;
  commands::CardFields card_fields;
};

Rules::Rules(card::CardScreen& card_ui, screen::Screen& forms, entry::UtilSaisie& entry,
             store::Database& database)
    : ui(card_ui),
      screen(forms),
      procedure(database),
      reading{card::Codec(entry), card::Labels(procedure)},
      card(reading),
      states(ui, card, years),
      lists(ui, card, procedure),
      pairs(card, screen),
      fields(entry, screen),
      grids(ui, card, procedure, lists, entry),
      hours_form(fields, screen),
      item_form(card, procedure, entry, hours_form, screen),
      lines({ui, card, states, grids, lists, entry, screen},
            [this](auto closed) { open_items(std::move(closed)); }),
      activities(ui, card, states, lists, screen),
      record({ui, card, entry, lists, lines}),
      validation(ui, card, record, procedure, screen),
      commands({ui, card, states, years, procedure, lists, record, validation, screen},
               [this] { return default_agreement; }),
      card_fields({ui, card, states, procedure, lists, grids, screen}) {}

void Rules::bind() {
  card_fields.bind_pairs(pairs, commands);
  card_fields.bind_free_entry(fields);
  card_fields.bind_labels();
  grids.bind();
  lines.bind();
  activities.bind();
  commands.bind();
}

forms::ItemContext Rules::item_context() const {
  const bool editable = states.year_is_open();
  return {.effective_date = std::string(ui.Lst_DatEffet.line(card.current_line - 1)),
          .employee = std::string(text::trim(ui.Txt_Aidant.text() + " " + ui.Txt_NomAidant.text())),
          .period = ui.Cbo_Periode.text(),
          .establishment_hours = ui.Txt_HorMensEtab.text(),
          .agreement = ui.Txt_ConvCol.text(),
          .grouping = card.grouping,
          .administrative = ui.Opt_Admin.value(),
          .amendment = card.current_line,
          .ModifAutorisee = editable,
          .SaisieAutoBloquee = !editable};
}

// Production staff work the hours of their items; for administrative staff the time stays.
void Rules::open_items(std::function<void(const amendments::AmendmentLines::MonthlyTime&)> closed) {
  item_form.open(item_context(), [this, closed = std::move(closed)] {
    if (ui.Opt_Admin.value()) return closed(std::nullopt);
    closed(card.draft.item_hours(card.current_line - 1));
  });
}

struct ControleVelanor::Parts {
  explicit Parts(const Surroundings& given)
      : surroundings(given),
        own_entry(given.entry ? nullptr : entry::make_util_saisie()),
        screen(ui, given.toolkit) {}

  entry::UtilSaisie& entry() { return own_entry ? *own_entry : *surroundings.entry; }
  void start();
  void bind_frame();
  void Mnu_Sommaire_Click();
  void Ong_FichPers_Click();
  void Cmd_Sortir_Click();

  Surroundings surroundings;
  std::unique_ptr<entry::UtilSaisie> own_entry;
  card::CardScreen ui;
  screen::Screen screen;
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
screen::Screen& ControleVelanor::screen() { return parts_->screen; }
const store::DbRecord& ControleVelanor::card_in_hand() const {
  static const store::DbRecord kNone;
  return parts_->rules ? parts_->rules->card.draft.record() : kNone;
}
bool ControleVelanor::closed() const { return parts_->closed; }

void ControleVelanor::init() {
  Parts& parts = *parts_;
  if (!parts.database) throw std::logic_error("ControleVelanor: TheDatabase was not set before init");
  if (parts.rules) throw std::logic_error("ControleVelanor: init runs once");
  parts.rules = std::make_unique<Rules>(parts.ui, parts.screen, parts.entry(), *parts.database);
  try {
    parts.start();
  } catch (...) {
    parts.rules->procedure.FermerFichiers();
    parts.screen.finish();
    throw;
  }
  parts.closed = false;
}

void ControleVelanor::abandon() {
  if (parts_->rules) parts_->rules->procedure.FermerFichiers();
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
