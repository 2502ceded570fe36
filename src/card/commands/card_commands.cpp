#include "card/commands/card_commands.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "card/record/element.h"
#include "card/record/reference_layout.h"
#include "entry/decimal.h"
#include "screen/scope.h"
#include "text/failure.h"
#include "text/utf8.h"

namespace velanor::commands {
namespace {

// A failure behind something that is stored must not pass for a refusal of it.
std::exception_ptr behind(const std::string& stored, const std::exception_ptr& failure) try {
  if (failure) std::rethrow_exception(failure);
  return {};
} catch (const std::exception& error) {
  const auto* const of_store = dynamic_cast<const store::DbError*>(&error);
  return std::make_exception_ptr(store::DbError(
      of_store ? of_store->number() : store::kStoreFailure,
      stored + " La liste des employés n'a pas pu être renouvelée : " + text::failure_sentence(error)));
}

}  // namespace

void CardCommands::bind() {
  on_.ui.Cbo_Periode.clicked += [this] { Cbo_Periode_Click(); };
  on_.ui.Cmd_OK.clicked += [this] { Cmd_OK_Click(); };
  on_.ui.Cmd_Ajout.clicked += [this] { Cmd_Ajout_Click(); };
  on_.ui.Cmd_Annul.clicked += [this] { Cmd_Annul_Click(); };
  on_.ui.Cmd_Supp.clicked += [this] { Cmd_Supp_Click(); };
  on_.ui.Cmd_Copier.clicked += [this] { Cmd_Copier_Click(); };
}

std::string CardCommands::year() const { return std::string(text::trim(on_.ui.Cbo_Periode.text())); }

std::string CardCommands::id_of(const std::string& employee) const {
  return card::record_id(employee, on_.card.entity, on_.card.year);
}

void CardCommands::write_card(store::FileRecord& card, const store::Expected& expected) {
  if (!card::is_record_id(card.id())) {
    throw store::DbError(
        store::kStoreFailure,
        "La fiche « " + card.id() +
            " » ne peut pas être enregistrée dans VELANORO : il manque un code de salarié, une "
            "entité ou une année. Annulez, puis choisissez-les.");
  }
  card.DBWrite(expected);
}

// Another clerk may take a code between the search for it and the write: then it is the next one.
store::FileRecord CardCommands::write_new_card(
    const std::function<store::DbRecord(const std::string& code)>& content) {
  const screen::Scope own_code(on_.card.CodeAidant, std::string());
  while (true) {
    RechCode();
    store::FileRecord card = on_.procedure.file(control::File::kCards).Record(id_of(on_.card.CodeAidant));
    card.assign(content(on_.card.CodeAidant));
    try {
      write_card(card, store::Expected::absent());
      return card;
    } catch (const store::DbError& error) {
      if (error.number() != store::kConflict) throw;
    }
  }
}

// ---- Entity, year, employee.

void CardCommands::RemplirPeriodes() {
  const auto years = on_.years.years(text::trim(entity()));
  if (years.empty()) {
    on_.screen.refuse("Aucune extraction de personnel n'a été réalisée pour cette entité.");
    on_.ui.Txt_Asso.set_text({});
    on_.ui.set_focus(on_.ui.Txt_Asso);
    return;
  }
  on_.ui.Cbo_Periode.clear();
  for (const std::string& year : years) on_.ui.Cbo_Periode.add(year);
}

void CardCommands::entity_accepted() {
  try {
    enter_entity();
  } catch (...) {
    on_.ui.Txt_Asso.set_text({});
    throw;
  }
}

void CardCommands::enter_entity() {
  card::CardScreen& ui = on_.ui;
  ui.Txt_Aidant.set_enabled(true);
  ui.Cbo_Aidant.set_enabled(true);
  ui.Cmd_Ajout.set_enabled(!on_.card.read_only);
  const auto establishment =
      on_.procedure.establishments().find(entity() + std::string(card::establishments::kFirst));
  const auto hours = establishment
                         ? entry::parse_decimal((*establishment)(card::establishments::kMonthlyHours), 0)
                         : std::nullopt;
  on_.card.default_hours =
      hours ? text::pad_left(entry::format_decimal(*hours, 2, 2), 6, '0') : std::string();
  RemplirPeriodes();
  if (ui.Txt_Asso.is_empty()) return;
  ui.Cbo_Periode.set_index(0);
  ui.Cmd_Ajout.set_enabled(!on_.card.read_only);
  ui.set_focus(ui.Txt_Aidant);
}

void CardCommands::entity_incomplete() {
  on_.ui.Cbo_Periode.clear();
  on_.ui.Txt_Aidant.set_text({});
  on_.ui.Cbo_Aidant.clear();
  on_.ui.Txt_Aidant.set_enabled(false);
  on_.ui.Cbo_Aidant.set_enabled(false);
  on_.ui.Cmd_Ajout.set_enabled(false);
  keep_or_end_copying();
}

void CardCommands::Cbo_Periode_Click() {
  if (on_.ui.Cbo_Periode.index() < 0 || on_.ui.Txt_Asso.is_empty()) return;
  keep_or_end_copying();
  on_.ui.Cmd_Ajout.set_enabled(on_.states.year_is_open());
  list_employees();
}

void CardCommands::list_employees() {
  std::exception_ptr failure;
  try {
    on_.lists.RequeteAidant();
  } catch (const store::DbError&) {
    failure = std::current_exception();
  }
  on_.lists.RemplirAidant();
  if (failure) std::rethrow_exception(failure);
}

void CardCommands::put_in_hand(const store::DbRecord& record) {
  on_.card.draft = card::Draft(on_.card.draft.reading(), record);
}

void CardCommands::keep_or_end_copying() {
  if (on_.card.open) return;
  const bool same = entity() == on_.card.entity && year() == on_.card.year;
  on_.ui.Cmd_Copier.set_enabled(on_.ui.Cmd_Copier.enabled() && same);
}

void CardCommands::start_card(bool creation) {
  card_went();
  on_.card.Creation = creation;
  on_.card.open = true;
  on_.card.entity = entity();
  on_.card.year = year();
  on_.card.AjoutDetail = on_.card.AjoutActivite = false;
  on_.card.edited_line = -1;
  on_.states.empty_fields();
  on_.lists.ChercheRegroupBudget({});
  {
    // The lists take a single entry at once; on a card that is loaded the record has the last word.
    const screen::Scope loading(on_.card.loading, !creation);
    on_.lists.fill_card_lists();
  }
  on_.states.enable_entity(false);
}

template <typename Open>
void CardCommands::open_or_browse(Open open) {
  try {
    open();
    card_came();
  } catch (...) {
    put_in_hand({});
    on_.card.file.reset();
    clear_display();
    close_card();
    on_.ui.Txt_Aidant.set_text({});
    on_.ui.set_focus(on_.ui.Txt_Aidant);
    throw;
  }
}

void CardCommands::open_employee(const store::DbRecord& record) {
  open_or_browse([&] { show_employee(record); });
}

void CardCommands::show_employee(const store::DbRecord& record) {
  card::CardScreen& ui = on_.ui;
  start_card(false);
  on_.card.CodeAidant = ui.Txt_Aidant.text();
  put_in_hand(record);
  on_.card.file = on_.procedure.file(control::File::kCards).Record(id_of(on_.card.CodeAidant));
  on_.card.file->assign(record);
  on_.record.ChargerAidant();
  on_.states.DeGriserOng();
  const bool editable = on_.states.year_is_open();
  if (editable) {
    on_.states.DeGriserDonnees();
    ui.Cbo_EtudeAidant.set_enabled(true);
    on_.states.update_add_amendment();
    ui.Cmd_SuppDetail.set_enabled(true);
  } else {
    ui.Cbo_MotifFin.set_enabled(false);
    // The lists cannot be clicked in such a year, but the items of a line can be read.
    ui.Cdr_Detail.set_enabled(true);
    ui.Lst_DatEffet.set_index(0);
  }
  ui.Cmd_Copier.set_enabled(editable);
  ui.Txt_Etat.set_text(editable ? "Modification" : "Consultation");
}

void CardCommands::employee_left() {
  if (!on_.card.open || on_.card.loading || on_.states.year_is_open()) return;
  put_in_hand({});
  on_.card.file.reset();
  clear_display();
  close_card();
}

// ---- What is told of it.

namespace {

std::string title_of(const std::string& code, std::string_view name) {
  return name.empty() ? code : code + " " + std::string(name);
}

}  // namespace

std::string CardCommands::title() const {
  const std::string& name = on_.ui.Txt_NomAidant.text();
  if (!on_.card.Creation) return title_of(on_.card.CodeAidant, name);
  return name.empty() ? "Nouvelle fiche" : name;
}

void CardCommands::card_came() {
  on_.record.take_as_opened();
  open_ = CardEvent{CardEvent::Kind::kOpened, on_.card.file ? on_.card.file->id() : "", title(), {}};
  tell_(*open_);
}

void CardCommands::card_went() {
  on_.card.open = false;
  if (!open_) return;
  CardEvent closed = *std::exchange(open_, std::nullopt);
  closed.kind = CardEvent::Kind::kClosed;
  tell_(closed);
}

void CardCommands::tell_of_stored(CardEvent::Kind kind, const std::string& copy) {
  const store::FileRecord& file = *on_.card.file;
  const CardEvent event{
      kind, file.id(),
      title_of(file.id().substr(0, card::kEmployeeCodeLength), card::element(file, card::kName)), copy};
  if (open_) open_ = CardEvent{kind, event.id, event.title, {}};
  tell_(event);
}

// ---- New card.

void CardCommands::Cmd_Ajout_Click() {
  open_or_browse([this] { show_new_card(); });
}

void CardCommands::show_new_card() {
  card::CardScreen& ui = on_.ui;
  on_.card.CodeAidant.clear();
  put_in_hand({});
  on_.card.file.reset();
  start_card(true);
  on_.states.DeGriserOng();
  ui.Cmd_Copier.set_enabled(false);
  ui.Opt_CDI.set_value(true);
  ui.Opt_Prod.set_value(true);
  ui.Txt_HresExo.set_text("100,00");
  ui.Txt_HorMensEtab.set_text(on_.card.default_hours);
  // Without a default, the only agreement of the file stays taken.
  if (const std::string agreement = default_agreement_(); !agreement.empty())
    ui.Txt_ConvCol.set_text(agreement);
  ui.Txt_Etat.set_text("Création");
  ui.set_focus(ui.Txt_NomAidant);
}

// ---- Saving.

bool CardCommands::year_is_locked() {
  const std::string latest = on_.years.latest(entity());
  if (latest == year()) return false;
  on_.screen.refuse("Une extraction du personnel a été réalisée sur l'année " + latest +
                    ".\r\nVous ne pouvez plus modifier une fiche de personnel sur l'année " + year() + ".");
  return true;
}

void CardCommands::Cmd_OK_Click() {
  if (year_is_locked()) return;
  on_.card.Erreur = false;
  on_.validation.VerifZone();
  if (on_.card.Erreur) return;
  on_.card.CodeAidant = on_.ui.Txt_Aidant.text();
  // What the clerk sees stays what is in hand if the store fails.
  const card::Draft in_hand = on_.card.draft;
  try {
    on_.record.ChargerDonnees();
    if (on_.card.Creation) {
      on_.card.file = write_new_card([this](const std::string&) { return on_.card.draft.record(); });
    } else {
      if (writer_.save(*on_.card.file, on_.card.draft) == CardWriter::Outcome::kBack) {
        on_.card.draft = in_hand;
        return;
      }
    }
  } catch (...) {
    on_.card.draft = in_hand;
    if (on_.card.Creation) on_.card.file.reset();
    throw;
  }
  tell_of_stored(CardEvent::Kind::kSaved);
  clear_display();
  const std::exception_ptr failure = return_to_browsing();
  on_.ui.Cmd_Ajout.set_enabled(true);
  allow_browsing(behind("La fiche est enregistrée.", failure));
}

// Codes are handed out downwards from 99999. One question for all that are taken: on a server each code that
// is asked for is a journey, and a failure must not pass for a code in use.
void CardCommands::RechCode() {
  constexpr int kFirst = 99999;
  const store::DbResult found =
      on_.procedure.select("SSELECT VELANORO AVEC 0 = " + store::quoted_end(id_of({})), "VELANORO", "0");
  std::set<std::string, std::less<>> taken;
  for (int i = 1; i <= found.DCount(); ++i) taken.emplace(found(i));
  for (int n = kFirst; n >= 0; --n) {
    const std::string code = text::pad_left(std::to_string(n), card::kEmployeeCodeLength, '0');
    if (taken.contains(id_of(code))) continue;
    on_.card.CodeAidant = code;
    return;
  }
  throw store::DbError(
      store::kStoreFailure,
      "Aucun code de salarié n'est libre pour cette entité et cette année : supprimez une fiche "
      "qui ne sert plus.");
}

// ---- Back to browsing.

void CardCommands::close_card() {
  card::CardScreen& ui = on_.ui;
  card_went();
  on_.card.Creation = false;
  ui.Txt_Aidant.set_enabled(true);
  ui.Txt_NomAidant.set_text({});
  ui.Txt_NomAidant.set_enabled(false);
  ui.Txt_NomAidant.set_visible(false);
  ui.Cbo_Aidant.set_visible(true);
  ui.Cbo_Aidant.set_enabled(true);
  on_.states.GriserOng();
  ui.Ong_FichPers.enable_all();
  ui.Ong_FichPers.show(card::kIdentityPage);
  on_.states.enable_entity(true);
  ui.Cbo_Periode.set_enabled(true);
  ui.Cmd_Ajout.set_enabled(on_.states.year_is_open());
}

void CardCommands::clear_display() {
  on_.ui.Cmd_Copier.set_enabled(false);
  on_.ui.Txt_RegroupBudget.set_text({});
  on_.ui.Txt_Etat.set_text({});
}

// Whatever fails on the way, the clerk can go on from there.
std::exception_ptr CardCommands::return_to_browsing() {
  std::exception_ptr failure;
  const auto go_on = [&failure](const auto& step) {
    try {
      step();
    } catch (const std::exception&) {
      if (!failure) failure = std::current_exception();
    }
  };
  go_on([this] { card_went(); });
  on_.ui.Txt_Aidant.set_text({});
  close_card();
  go_on([this] { list_employees(); });
  return failure;
}

void CardCommands::allow_browsing(const std::exception_ptr& failure) {
  on_.ui.Cmd_Sortir.set_enabled(true);
  on_.ui.set_focus(on_.ui.Txt_Aidant);
  if (failure) std::rethrow_exception(failure);
}

bool CardCommands::may_give_up() { return on_.screen.confirm_loss("Voulez-vous quitter cette création ?"); }

void CardCommands::give_up() {
  clear_display();
  allow_browsing(return_to_browsing());
}

void CardCommands::Cmd_Annul_Click() {
  if (may_give_up()) give_up();
}

void CardCommands::Cmd_Supp_Click() {
  if (!on_.screen.confirm_loss("Voulez-vous supprimer cette fiche ?")) return;
  const bool stored = !on_.card.Creation;
  if (stored) {
    const std::string& id = on_.card.file->id();
    if (writer_.remove(*on_.card.file, [&] { SupprimerCalculs(id); }) == CardWriter::Outcome::kBack) return;
    tell_of_stored(CardEvent::Kind::kDeleted);
  }
  // Budget grouping, state and the duplicate button stay as the deleted card left them.
  const std::exception_ptr failure = return_to_browsing();
  on_.ui.Cmd_Ajout.set_enabled(true);
  allow_browsing(stored ? behind("La fiche est supprimée.", failure) : failure);
}

namespace {

// Runs one step of a clean-up whose failures nobody wants to hear of.
template <typename Step>
void ignoring_failures(Step step) {
  try {
    step();
  } catch (const store::DbError&) {
  }
}

}  // namespace

void CardCommands::SupprimerCalculs(const std::string& id) {
  constexpr int kMonths = 12;
  store::Database& database = on_.procedure.database();
  ignoring_failures([&] { database.OpenFile("BUDGETHISTORCUMUL")->DeleteRecord(id); });
  std::vector<std::string> months;
  for (int m = 1; m <= kMonths; ++m) months.push_back(id + text::pad_left(std::to_string(m), 2, '0'));
  ignoring_failures([&] { database.OpenFile("BUDGETDETAILCALCUL")->remove_each(months); });
}

// ---- Duplicate.

void CardCommands::Cmd_Copier_Click() {
  if (!on_.card.file || !on_.years.is_latest(on_.card.entity, on_.card.year)) return;
  std::string code;
  const store::FileRecord written = write_new_card([&](const std::string& new_code) {
    code = new_code;
    store::DbRecord copy = *on_.card.file;
    set_element(copy, card::kName, code);
    for (const card::Field& result : card::kResults) set_element(copy, result, "");
    return copy;
  });
  tell_of_stored(CardEvent::Kind::kCopied, written.id());
  on_.screen.inform("Cet aidant a été dupliqué sur le code " + code + ".");
  if (!on_.card.open) list_employees();
}

}  // namespace velanor::commands
