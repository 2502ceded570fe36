#include "app/velanor/card_watch.h"

#include <algorithm>
#include <utility>

namespace velanor::app {
namespace {

using card::Group;
using Values = std::vector<std::string>;

constexpr Group kFields[] = {
    Group::kNameBox,      Group::kEstablishmentBoxes, Group::kContractKey,   Group::kEmployee,
    Group::kEndReasonBox, Group::kActivityLine,       Group::kAmendmentList, Group::kMutual};

// What of a control is part of the card: its text, its choice, its lines; not which line is selected.
void add_value(const screen::Control& control, Values& values) {
  if (auto* text = dynamic_cast<const screen::TextControl*>(&control)) {
    values.push_back(text->text());
  } else if (auto* option = dynamic_cast<const screen::OptionButton*>(&control)) {
    values.emplace_back(option->value() ? "1" : "");
  } else if (auto* list = dynamic_cast<const screen::ListBox*>(&control)) {
    values.push_back(std::to_string(list->count()));
    values.insert(values.end(), list->items().begin(), list->items().end());
  }
}

Values values_of(const std::vector<screen::Control*>& controls) {
  Values values;
  for (const screen::Control* control : controls) add_value(*control, values);
  return values;
}

}  // namespace

CardWatch::CardWatch(screen::Screen& screen, std::function<const store::DbRecord&()> working)
    : screen_(screen), card_(dynamic_cast<card::CardScreen&>(screen.base())), working_(std::move(working)) {
  add_entries();
}

// The items stand in a form of their own, where nobody goes back before the line is done with.
void CardWatch::add_entries() {
  entries_.push_back({[this] { return card_.Cmd_OkDetail.enabled(); },
                      [this] { return values_of(card_.group(Group::kAmendmentEntry)); },
                      {},
                      {}});
  entries_.push_back({[this] { return card_.Cmd_OkAct.enabled(); },
                      [this] { return values_of(card_.group(Group::kActivityEntry)); },
                      {},
                      {}});
  entries_.push_back({[this] {
                        const screen::Control* back = screen_.top().find("Cmd_Retour");
                        return back && !back->enabled();
                      },
                      [this] { return values_of(screen_.top().controls()); },
                      {},
                      {}});
}

bool CardWatch::card_open() const { return !card_.Cmd_Sortir.enabled(); }

// Past years leave the way to the next card open.
std::string CardWatch::key() const {
  if (!card_open()) return {};
  return card_.Txt_Asso.text() + "/" + card_.Cbo_Periode.text() + "/" + card_.Txt_Aidant.text() + "/" +
         card_.Txt_Etat.text();
}

Values CardWatch::contents() const {
  Values values{std::string(working_().encoded())};
  for (const Group group : kFields) {
    const Values own = values_of(card_.group(group));
    values.insert(values.end(), own.begin(), own.end());
  }
  return values;
}

void CardWatch::look() {
  const std::string now = key();
  if (now != std::exchange(opened_, now)) at_opening_ = now.empty() ? Values() : contents();
  for (Entry& entry : entries_) {
    const bool open = card_open() && entry.open();
    if (open && !entry.was_open) entry.at_opening = entry.texts();
    entry.was_open = open;
  }
}

bool CardWatch::modified() const {
  if (opened_.empty()) return false;
  const auto changed = [](const Entry& entry) { return entry.was_open && entry.texts() != entry.at_opening; };
  return contents() != at_opening_ || std::any_of(entries_.begin(), entries_.end(), changed);
}

std::string CardWatch::title() const {
  if (!card_open()) return {};
  const std::string& name = card_.Txt_NomAidant.text();
  if (card_.Txt_Etat.text() == "Création") return name.empty() ? "Nouvelle fiche" : name;
  return card_.Txt_Aidant.text() + (name.empty() ? "" : " " + name);
}

}  // namespace velanor::app
