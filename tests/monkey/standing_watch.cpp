#include "monkey/standing_watch.h"

#include "card/record/record_compare.h"
#include "card/record/record_layout.h"

namespace velanor::test {
namespace {

using card::Group;

bool is_entry(card::CardScreen& ui, const screen::Control* control) {
  for (const Group group : {Group::kAmendmentEntry, Group::kActivityEntry}) {
    for (const screen::Control* other : ui.group(group)) {
      if (other == control) return true;
    }
  }
  return false;
}

// Leaving a box that holds half a code for something else opens the card on the way, and may change it at
// once.
bool opened_itself(const Act& act) {
  return act.control.ends_with("_Aidant") || act.control == "Cmd_Ajout" || act.control == "open";
}

std::vector<std::string> texts_of(const std::vector<screen::Control*>& controls) {
  std::vector<std::string> texts;
  for (const screen::Control* control : controls) {
    if (auto* box = dynamic_cast<const screen::TextControl*>(control))
      texts.push_back(box->name() + "=" + box->text());
  }
  return texts;
}

}  // namespace

StandingWatch::Sight StandingWatch::card_of(Office& office) {
  card::CardScreen& ui = office.ui;
  Sight sight;
  for (const screen::Control* control : ui.controls()) {
    if ((control->page() < 0 && control != &ui.Txt_NomAidant) || is_entry(ui, control)) continue;
    if (auto* box = dynamic_cast<const screen::TextControl*>(control))
      sight.push_back(box->name() + "=" + box->text());
    if (auto* option = dynamic_cast<const screen::OptionButton*>(control))
      sight.push_back(option->name() + (option->value() ? "=1" : "=0"));
    if (auto* list = dynamic_cast<const screen::ListBox*>(control)) {
      for (const std::string& line : list->items()) sight.push_back(list->name() + "|" + line);
    }
  }
  // What no control of the card shows: grids that share their label, the payroll items, what is hidden.
  const store::DbRecord& record = office.component.card_in_hand();
  for (int a = 1; a <= record.DCount(); ++a) {
    for (int v = 1; v <= record.Count(a); ++v) {
      for (int s = 1; s <= record.Count(a, v); ++s) {
        const std::string place = std::to_string(a) + "," + std::to_string(v) + "," + std::to_string(s) + "=";
        if (!record(a, v, s).empty()) sight.push_back(place + std::string(record(a, v, s)));
      }
    }
  }
  return sight;
}

StandingWatch::Entries StandingWatch::entries_of(Office& office) {
  Entries entries;
  if (entering_amendment(office)) entries["amendment"] = texts_of(office.ui.group(Group::kAmendmentEntry));
  if (entering_activity(office)) entries["activity"] = texts_of(office.ui.group(Group::kActivityEntry));
  if (forms::ItemScreen* form = item_form(office); form && entering_item(*form))
    entries["item"] = texts_of(form->controls());
  const screen::Form& top = office.component.screen().top();
  if (top.name() == "Frm_SaisieHres") entries["hours"] = texts_of(top.controls());
  return entries;
}

void StandingWatch::start_anew(Office& office) {
  hearing_ = std::make_unique<Hearing>(office.component);
  opened_ = closed_ = saved_ = copied_ = deleted_ = 0;
  written_before_ = store_.cards_written();
  deleted_before_ = store_.cards_deleted();
  card_.clear();
  last_told_ = "now none";
}

std::string StandingWatch::standing(Office& office, const Act&) {
  const card::CardScreen& ui = office.ui;
  const std::string& mode = ui.Txt_Etat.text();
  const std::string state = !card_open(office)       ? "none"
                            : mode == "Création"     ? "creating"
                            : mode == "Modification" ? "editing"
                                                     : "reading";
  if (name_of(office.component.state()) != state) return "the state is not " + state;
  const bool stored = state == "editing" || state == "reading";
  const std::string code = stored ? ui.Txt_Aidant.text() : "";
  const std::string id = stored ? card::record_id(code, ui.Txt_Asso.text(), ui.Cbo_Periode.text()) : "";
  if (office.component.card_id() != id) return "the id is not " + id;
  const std::string& name = ui.Txt_NomAidant.text();
  const std::string title = state == "none" ? ""
                            : stored        ? code + (name.empty() ? "" : " " + name)
                            : name.empty()  ? "Nouvelle fiche"
                                            : name;
  return office.component.card_title() == title ? "" : "the title is not " + title;
}

std::string StandingWatch::modified(Office& office, const Act& act) {
  const bool said = office.component.modified();
  if (!card_open(office)) return said ? "no card is open, and it is modified" : "";
  if (card_name(office) != card_) return said && opened_itself(act) ? "a card was opened as modified" : "";
  if (!seen_opened_) return {};
  bool same = card_of(office) == card_as_opened_;
  for (const auto& [name, entry] : entries_of(office)) {
    const auto begun = entries_as_begun_.find(name);
    same = same && (begun == entries_as_begun_.end() || begun->second == entry);
  }
  if (!same && !said) return "a change is not told of";
  grid_touched_ |= act.control == "Cbo_Grille";
  return same && said && !grid_touched_ ? "nothing has changed, and it is modified" : "";
}

std::string StandingWatch::told(Office& office, const Act& act) {
  std::string last_opened;
  for (const std::string& event : hearing_->take()) {
    const std::string kind = event.substr(0, event.find(' '));
    opened_ += kind == "opened";
    closed_ += kind == "closed";
    saved_ += kind == "saved";
    copied_ += kind == "copied";
    deleted_ += kind == "deleted";
    if (kind == "opened") last_opened = event;
    if (kind == "now" && event == last_told_) return "the same was told twice: " + event;
    if (kind == "now") last_told_ = event;
  }
  const std::string now = test::standing(office.component);
  if (last_told_ != "now " + now) return "not told: " + now;
  if (opened_ - closed_ != (card_open(office) ? 1 : 0)) return "cards were opened and closed unevenly";
  // A card in which nothing has changed is saved without being written.
  if (saved_ + copied_ < store_.cards_written() - written_before_) return "not all that was written was told";
  if (deleted_ != store_.cards_deleted() - deleted_before_) return "not all that was deleted was told";
  const bool another = card_open(office) && card_name(office) != card_;
  const std::string id = office.component.card_id();
  if (another && last_opened.rfind("opened " + id + " ", 0) != 0) return "not told: the opening of " + id;
  return act.store_changed && saved_ + copied_ + deleted_ == 0 ? "nothing was told" : "";
}

void StandingWatch::remember(Office& office, const Act& act) {
  const std::string card = card_name(office);
  if (card != card_) {
    card_as_opened_ = card_of(office);
    seen_opened_ = opened_itself(act);
    entries_as_begun_.clear();
  }
  Entries now = entries_of(office);
  for (auto& [name, entry] : now) {
    const auto begun = entries_as_begun_.find(name);
    if (begun != entries_as_begun_.end()) entry = begun->second;
  }
  entries_as_begun_ = std::move(now);
  grid_touched_ = grid_touched_ && entries_as_begun_.contains("amendment");
  card_ = card;
}

}  // namespace velanor::test
