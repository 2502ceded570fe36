#include "forms/frm_rub_saisie.h"

#include "card/record/amendment_columns.h"
#include "entry/amount.h"
#include "entry/decimal.h"
#include "forms/item_template.h"
#include "reference/label_search.h"
#include "text/utf8.h"

namespace velanor::forms {
namespace {

constexpr int kPageOfLines = 15;

}  // namespace

Frm_RubSaisie::Frm_RubSaisie(card::CardState& card, const control::Procedure& procedure,
                             entry::UtilSaisie& entry, Frm_SaisieHres& hours, screen::Screen& screen)
    : card_(card), procedure_(procedure), entry_(entry), hours_(hours), screen_(screen), copy_(card.draft) {
  using screen::Key;
  bind_columns();
  ui_.Bdv_Detail.changed += [this] { Bdv_Detail_Change(); };
  ui_.Cbo_LibRub.changed += [this] { Cbo_LibRub_Change(); };
  ui_.Cbo_LibRub.clicked += [this] { Cbo_LibRub_Click(); };
  ui_.Cbo_LibRub.lost_focus += [this] { Cbo_LibRub_LostFocus(); };
  ui_.Txt_Code.changed += [this] { Txt_Code_Change(); };
  ui_.Txt_Code.key_press = [this](Key& key) { Txt_Code_KeyPress(key); };
  ui_.Txt_Code.lost_focus += [this] { Txt_Code_LostFocus(); };
  ui_.Txt_Base.key_press = [this](Key& key) { Txt_Base_KeyPress(key); };
  ui_.Txt_Taux.key_press = [this](Key& key) { Txt_Taux_KeyPress(key); };
  ui_.Txt_Montant.key_press = [this](Key& key) { Txt_Montant_KeyPress(key); };
  ui_.Txt_Base.lost_focus += [this] { Txt_Base_LostFocus(); };
  ui_.Txt_Taux.lost_focus += [this] { Txt_Taux_LostFocus(); };
  ui_.Txt_Montant.lost_focus += [this] { Txt_Montant_LostFocus(); };
  ui_.Cmd_Ajouter.clicked += [this] { Cmd_Ajouter_Click(); };
  ui_.Cmd_OK.clicked += [this] { Cmd_OK_Click(); };
  ui_.Cmd_Annuler.clicked += [this] { Cmd_Annuler_Click(); };
  ui_.Cmd_Supprimer.clicked += [this] { Cmd_Supprimer_Click(); };
  ui_.Cmd_Retour.clicked += [this] { Cmd_Retour_Click(); };
  ui_.Cmd_SaisieAuto.clicked += [this] { Cmd_SaisieAuto_Click(); };
  ui_.may_close = [this] { return Form_Unload(); };
  ui_.cancel_buttons = {&ui_.Cmd_Annuler};
  ui_.perilous_buttons = {&ui_.Cmd_Supprimer};
}

// A click on one column goes on to the next; the ring closes where the index is already set.
void Frm_RubSaisie::bind_columns() {
  const auto columns = ui_.columns();
  for (std::size_t c = 0; c < columns.size(); ++c) {
    screen::ListBox* list = columns[c];
    screen::ListBox* next = columns[(c + 1) % columns.size()];
    list->clicked += [list, next] { next->set_index(list->index()); };
    list->double_clicked += [this] { Descendre_Liste(); };
  }
}

void Frm_RubSaisie::open(const ItemContext& context, std::function<void()> closed) {
  context_ = context;
  Form_Load();
  ui_.Etq_Aidant.set_caption("Aidant : " + context_.employee);
  ui_.set_subtitle("avenant du " + context_.effective_date);
  Afficher_Donnees();
  ui_.set_focus(ui_.Cmd_Retour);
  ui_.set_focus(ui_.Cmd_Ajouter);
  if (ui_.Lst_Code.count() > 0) ui_.set_focus(ui_.Lst_Code);
  screen_.open(ui_, std::move(closed));
}

// ---- Loading.

void Frm_RubSaisie::Form_Load() {
  for (screen::ListBox* list : ui_.columns()) list->clear();
  copy_ = card_.draft;
  FermetureAutorisee = false;
  TauxParDefaut = false;
  edited_line_ = -1;
  Remplir_RubSaisie();
  Vider_Texte();
  Degriser_Liste();
  for (screen::CommandButton* button : {&ui_.Cmd_OK, &ui_.Cmd_Annuler, &ui_.Cmd_Ajouter, &ui_.Cmd_Retour})
    button->set_enabled(true);
  ui_.Cmd_Supprimer.set_enabled(false);
}

void Frm_RubSaisie::Remplir_RubSaisie() {
  catalogue_.load(procedure_);
  ui_.Cbo_LibRub.clear();
  ui_.Cbo_LibRub.refill(catalogue_.labels());
  ui_.Cbo_LibRub.annotate(catalogue_.notes());
}

void Frm_RubSaisie::Afficher_Donnees() {
  for (screen::ListBox* list : ui_.columns()) list->clear();
  lines_.clear();
  for (card::ItemText& item : card_.draft.items(context_.amendment - 1))
    add_line(ui_.Lst_Code.count(), in_columns(std::move(item)));
  ui_.Cmd_SaisieAuto.set_enabled(ui_.Lst_Code.count() == 0 && !context_.SaisieAutoBloquee);
  ui_.Bdv_Detail.fit(ui_.Lst_Code.count(), kPageOfLines);
  if (context_.ModifAutorisee) return;
  for (screen::ListBox* list : ui_.columns()) list->set_enabled(false);
  for (screen::CommandButton* button : {&ui_.Cmd_OK, &ui_.Cmd_Annuler, &ui_.Cmd_Ajouter})
    button->set_enabled(false);
}

// ---- The grid and the edit line.

std::string Frm_RubSaisie::column_text(std::size_t figure, std::string_view text) const {
  const card::Field& column = card::kItemFigures[figure];
  return text.empty() ? std::string() : entry_.FormatColumn(text, integer_digits(column), decimals(column));
}

card::ItemText Frm_RubSaisie::in_columns(card::ItemText line) const {
  for (std::size_t f = 0; f < line.figures.size(); ++f)
    line.figures[f].shown = column_text(f, line.figures[f].shown);
  return line;
}

card::ItemText Frm_RubSaisie::edit_line() {
  card::ItemText line{ui_.Txt_Code.text(), ui_.Cbo_LibRub.text(), {}};
  const auto boxes = ui_.figure_boxes();
  for (std::size_t f = 0; f < line.figures.size(); ++f) {
    const std::string& text = boxes[f]->text();
    card::ItemText::Figure& own = line.figures[f];
    own = {column_text(f, text), entry::text_to_stored(text, decimals(card::kItemFigures[f]))};
    if (edited_line_ < 0) continue;
    const card::ItemText::Figure& before = lines_[static_cast<std::size_t>(edited_line_)].figures[f];
    if (before.shown == own.shown) own = before;
  }
  return line;
}

void Frm_RubSaisie::add_line(int position, card::ItemText line) {
  for (screen::ListBox* list : ui_.columns()) list->insert(position, {});
  lines_.insert(lines_.begin() + position, std::move(line));
  show_line(position);
}

void Frm_RubSaisie::show_line(int position) {
  const card::ItemText& line = lines_[static_cast<std::size_t>(position)];
  ui_.Lst_Code.replace(position, line.code);
  ui_.Lst_LibRub.replace(position, line.label);
  const auto lists = ui_.figure_lists();
  for (std::size_t f = 0; f < line.figures.size(); ++f) lists[f]->replace(position, line.figures[f].shown);
}

void Frm_RubSaisie::remove_line(int index) {
  if (index < 0) return;
  lines_.erase(lines_.begin() + index);
  for (screen::ListBox* list : ui_.columns()) list->remove(index);
}

// The bar moves the selection, so it goes with the lists.
void Frm_RubSaisie::Griser_Liste() {
  for (screen::ListBox* list : ui_.columns()) list->set_enabled(false);
  ui_.Bdv_Detail.set_enabled(false);
  for (screen::TextControl* box : ui_.entry_controls()) box->set_enabled(true);
}

void Frm_RubSaisie::Degriser_Liste() {
  for (screen::ListBox* list : ui_.columns()) list->set_enabled(true);
  ui_.Bdv_Detail.set_enabled(true);
  for (screen::TextControl* box : ui_.entry_controls()) box->set_enabled(false);
}

void Frm_RubSaisie::Vider_Texte() {
  ui_.Txt_Code.set_text({});
  item_code_.clear();
  ui_.Cbo_LibRub.set_index(-1);
  ui_.Cbo_LibRub.set_text({});
  for (screen::TextBox* box : ui_.figure_boxes()) box->set_text({});
}

void Frm_RubSaisie::Descendre_Liste() {
  const int index = ui_.Lst_Code.index();
  if (!context_.ModifAutorisee || index < 0) return;
  // A line whose code may not be entered by hand disappears when the user tries to edit it.
  if (catalogue_.row(ui_.Lst_Code.line(index)) == 0) return remove_line(index);
  edited_line_ = index;
  Griser_Liste();
  ui_.Txt_Code.set_text(ui_.Lst_Code.line(index));
  for (std::size_t f = 0; f < card::kItemFigures.size(); ++f)
    ui_.figure_boxes()[f]->show_whole(entry_.UnformatNumber(ui_.figure_lists()[f]->line(index)));
  ui_.Txt_Code.set_enabled(false);
  ui_.Cbo_LibRub.set_enabled(false);
  ui_.Cmd_Supprimer.set_enabled(true);
  ui_.Cmd_Ajouter.set_enabled(false);
  ui_.Cmd_Retour.set_enabled(false);
  ui_.Cmd_SaisieAuto.set_enabled(false);
  begun_ = ui_.entered();
}

bool Frm_RubSaisie::modified() const {
  const bool entering = TauxParDefaut || edited_line_ >= 0;
  return is_open() && entering && ui_.entered() != begun_;
}

void Frm_RubSaisie::Monter_Liste() {
  lines_[static_cast<std::size_t>(edited_line_)] = edit_line();
  show_line(edited_line_);
  Degriser_Liste();
}

// Before the first line whose label is smaller: an ascending grid takes every new line at its
// head. Labels compare byte by byte, deliberately not as a reader would order them.
void Frm_RubSaisie::Tri() {
  const std::string& label = ui_.Cbo_LibRub.text();
  int i = 0;
  while (!ui_.Lst_LibRub.line(i).empty() && label <= ui_.Lst_LibRub.line(i)) ++i;
  PositionInsertion = i;
}

void Frm_RubSaisie::Bdv_Detail_Change() {
  if (ui_.Bdv_Detail.value() != ui_.Lst_Code.index()) ui_.Lst_Code.set_index(ui_.Bdv_Detail.value());
}

// ---- The code and what it allows.

void Frm_RubSaisie::Txt_Code_KeyPress(screen::Key& key) {
  if (key.code != screen::Key::kEnter) return;
  Txt_Code_LostFocus();
  key.swallow();
}

void Frm_RubSaisie::Txt_Code_LostFocus() {
  if (!ui_.Txt_Code.is_empty())
    ui_.Txt_Code.set_text(text::pad_left(ui_.Txt_Code.text(), card::kItemCode.length, '0'));
}

void Frm_RubSaisie::Cbo_LibRub_Change() {
  if (ui_.Cbo_LibRub.is_empty()) ui_.Txt_Code.set_text({});
}

void Frm_RubSaisie::Cbo_LibRub_Click() {
  const bool none = ui_.Cbo_LibRub.is_empty();
  ui_.Txt_Code.set_text(none ? std::string_view{} : catalogue_.code(ui_.Cbo_LibRub.index() + 1));
}

// What matches no item is told when the line is confirmed. Items of one label are different ones.
void Frm_RubSaisie::Cbo_LibRub_LostFocus() {
  screen::ComboBox& box = ui_.Cbo_LibRub;
  if (!box.edited() || box.index() >= 0) return;
  if (reference::take_typed(box, reference::Alike::kDifferent) != reference::Found::kSeveral) return;
  box.clear_edited();
  refuse(reference::kSeveralMatch, box);
}

void Frm_RubSaisie::Txt_Code_Change() {
  if (text::length(ui_.Txt_Code.text()) != card::kItemCode.length) return ui_.Cbo_LibRub.set_text({});
  const int row = catalogue_.row(ui_.Txt_Code.text());
  if (row == 0) {
    screen_.refuse("Cette rubrique de saisie n'existe pas.");
    ui_.Txt_Code.set_text({});
    ui_.set_focus(ui_.Txt_Code);
    return;
  }
  ui_.Cbo_LibRub.set_text(catalogue_.label(row));
  start_item(row);
}

// Figures are those of their item: another one starts anew, as if its code had just been typed.
void Frm_RubSaisie::start_item(int row) {
  if (!item_code_.empty() && item_code_ != ui_.Txt_Code.text()) {
    for (screen::TextBox* box : ui_.figure_boxes()) {
      box->set_enabled(true);
      box->set_text({});
    }
  }
  item_code_ = ui_.Txt_Code.text();
  allow_figures(row);
}

// What a code does not ask for cannot keep a figure of the code before.
void Frm_RubSaisie::allow(screen::TextBox& box, bool on) {
  box.set_enabled(on);
  if (!on) box.set_text({});
}

void Frm_RubSaisie::allow_figures(int row) {
  const ItemFigures figures = catalogue_.figures(row);
  if (!figures.known) return;
  allow(ui_.Txt_Base, figures.base);
  allow(ui_.Txt_Taux, figures.rate);
  allow(ui_.Txt_Montant, figures.amount);
  if (figures.default_rate && TauxParDefaut) ui_.Txt_Taux.set_text(catalogue_.default_rate(row));
  if (figures.hours) ui_.Txt_Taux.set_text("  0,0000");
  ui_.set_focus(figures.base ? ui_.Txt_Base : ui_.Txt_Montant);
}

void Frm_RubSaisie::filter_number(screen::TextBox& box, const card::Field& figure, screen::Key& key) {
  key.code = entry_.FilterNumericKey(box.text(), key.code, integer_digits(figure));
}

void Frm_RubSaisie::format_number(screen::TextBox& box, const card::Field& figure) {
  if (!entry::Fields::holds_entry(box)) return;
  const bool number = entry::parse_decimal(box.text(), decimals(figure)).has_value();
  box.set_text(number ? entry_.FormatAmount(box.text(), decimals(figure), integer_digits(figure))
                      : std::string());
}

// ---- The commands of the edit line.

void Frm_RubSaisie::Cmd_Ajouter_Click() {
  TauxParDefaut = true;
  Vider_Texte();
  Griser_Liste();
  ui_.Cmd_Ajouter.set_enabled(false);
  ui_.Cmd_Retour.set_enabled(false);
  ui_.Cmd_SaisieAuto.set_enabled(false);
  begun_ = ui_.entered();
  ui_.set_focus(ui_.Txt_Code);
}

bool Frm_RubSaisie::refuse(std::string_view message, screen::Control& caret) {
  screen_.refuse(message);
  ui_.set_focus(caret);
  return false;
}

bool Frm_RubSaisie::edit_line_is_valid() {
  const auto missing = [](const screen::TextBox& box) { return box.enabled() && box.is_empty(); };
  if (missing(ui_.Txt_Base)) return refuse("La base de la rubrique de saisie est obligatoire.", ui_.Txt_Base);
  if (missing(ui_.Txt_Taux)) return refuse("Le taux de la rubrique de saisie est obligatoire.", ui_.Txt_Taux);
  if (!ui_.Txt_Montant.enabled() && !ui_.Txt_Base.is_empty() && !ui_.Txt_Taux.is_empty()) {
    const std::string amount = entry::amount_of(ui_.Txt_Base.text(), ui_.Txt_Taux.text());
    // An amount cut to the box would be a wrong one.
    if (text::length(amount) > ui_.Txt_Montant.max_length())
      return refuse("Zone numérique trop longue.", ui_.Txt_Base);
    ui_.Txt_Montant.set_text(amount);
  }
  if (missing(ui_.Txt_Montant))
    return refuse("Le montant de la rubrique de saisie est obligatoire.", ui_.Txt_Montant);
  if (catalogue_.row(ui_.Txt_Code.text()) > 0) return true;
  screen_.refuse("La rubrique de saisie n'existe pas, veuillez la ressaisir.");
  ui_.Cbo_LibRub.set_text({});
  ui_.set_focus(ui_.Cbo_LibRub);
  return false;
}

void Frm_RubSaisie::Cmd_OK_Click() {
  if (!edit_line_is_valid()) return;
  if (TauxParDefaut) {
    Tri();
    add_line(PositionInsertion, edit_line());
  } else {
    Monter_Liste();
  }
  TauxParDefaut = false;
  back_to_browsing();
  ui_.Bdv_Detail.fit(ui_.Lst_Code.count(), kPageOfLines);
  write_grid();
}

void Frm_RubSaisie::back_to_browsing() {
  edited_line_ = -1;
  Vider_Texte();
  Degriser_Liste();
  ui_.Cmd_Supprimer.set_enabled(false);
  ui_.Cmd_Ajouter.set_enabled(true);
  ui_.Cmd_Retour.set_enabled(true);
  ui_.Cmd_SaisieAuto.set_enabled(ui_.Lst_Code.count() == 0 && !context_.SaisieAutoBloquee);
  ui_.set_focus(ui_.Cmd_Ajouter);
}

void Frm_RubSaisie::abandon_edit_line() {
  TauxParDefaut = false;
  back_to_browsing();
}

void Frm_RubSaisie::Cmd_Annuler_Click() {
  if (TauxParDefaut) {
    if (screen_.confirm_loss("Etes-vous sûr de vouloir quitter cette création ?", screen::Icon::Exclamation))
      abandon_edit_line();
  } else if (!ui_.Txt_Code.is_empty()) {
    abandon_edit_line();
  } else {
    unload();
  }
}

void Frm_RubSaisie::Cmd_Supprimer_Click() {
  if (!screen_.confirm_loss("Etes-vous sûr de vouloir supprimer cette ligne ?", screen::Icon::Exclamation))
    return;
  remove_line(edited_line_);
  back_to_browsing();
  ui_.Bdv_Detail.fit(ui_.Lst_Code.count(), kPageOfLines);
  write_grid();
}

// ---- Between the grid and the card.

void Frm_RubSaisie::write_grid() { card_.draft.put_items(context_.amendment - 1, lines_); }

bool Frm_RubSaisie::hours_accepted() {
  const std::string entered = card_.draft.item_hours(context_.amendment - 1);
  constexpr int kLegalMonthlyHours = 15167;  // hundredths: 35 hours a week over a year
  const auto legal = entry::parse_decimal(context_.establishment_hours, 2).value_or(kLegalMonthlyHours);
  if (entry::parse_decimal(entered, 2).value_or(0) <= legal) return true;
  return screen_.say("Le nombre d'heure saisi est supérieur à l'horaire légal.", screen::Icon::Exclamation,
                     screen::Buttons::OkCancel) == screen::Answer::Ok;
}

void Frm_RubSaisie::Cmd_Retour_Click() {
  if (!card_.draft.same_items(copy_, context_.amendment - 1)) {
    screen_.toolkit().beep();
    const auto answer = screen_.keep_or_drop(
        "Voulez-vous enregistrer les modifications apportées à cet article ?", screen::Icon::Exclamation);
    if (answer == screen::Answer::Cancel) return;
    if (answer == screen::Answer::Yes) {
      write_grid();
      if (!hours_accepted()) return;
    } else {
      card_.draft = copy_;
    }
  }
  unload();
}

void Frm_RubSaisie::give_up() {
  if (!is_open()) return;
  card_.draft = copy_;
  unload();
}

void Frm_RubSaisie::unload() {
  FermetureAutorisee = true;
  for (screen::ListBox* list : ui_.columns()) list->clear();
  lines_.clear();
  catalogue_.release();
  screen_.close(ui_);
}

// ---- Filling from an entry template.

void Frm_RubSaisie::Cmd_SaisieAuto_Click() {
  if (context_.agreement.empty()) {
    return screen_.refuse(
        "Vous devez préciser la convention collective de ce salarié pour lancer le calcul automatique.");
  }
  const auto record = procedure_.file(control::File::kTemplates).find(context_.agreement + context_.grouping);
  if (!record) {
    return screen_.refuse(
        "Aucune trame de saisie n'a été définie pour cette convention collective et ce regroupement budget.");
  }
  hours_.open(context_.employee, [this, record = *record](const Hours& hours) {
    if (!hours.cancelled()) fill_from(record, hours);
  });
}

void Frm_RubSaisie::fill_from(const store::DbRecord& record, const Hours& hours) {
  const screen::Busy busy(screen_.toolkit());
  for (card::ItemText& item : fill_template(record, hours, procedure_.file(control::File::kItems))) {
    add_line(ui_.Lst_Code.count(), filled_line(std::move(item)));
  }
  ui_.Bdv_Detail.fit(ui_.Lst_Code.count(), kPageOfLines);
  ui_.Cmd_SaisieAuto.set_enabled(false);
  write_grid();
}

// Empty figures of filled lines show as "0,00".
card::ItemText Frm_RubSaisie::filled_line(card::ItemText line) const {
  for (std::size_t f = 0; f < line.figures.size(); ++f) {
    const card::Field& column = card::kItemFigures[f];
    card::ItemText::Figure& own = line.figures[f];
    own.shown = own.shown.empty() ? text::pad_left("0,00", column.length) : column_text(f, own.shown);
    own.stored = entry::text_to_stored(own.shown, decimals(column));
  }
  return line;
}

}  // namespace velanor::forms
