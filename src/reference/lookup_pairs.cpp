#include "reference/lookup_pairs.h"

#include "entry/key_filters.h"
#include "text/utf8.h"

namespace velanor::reference {
namespace {

constexpr std::string_view kNoneMatches = "Aucun libellé de la liste ne correspond à ce texte.";

void pad(screen::TextBox& box) {
  if (!box.is_empty() && text::length(box.text()) < box.max_length())
    box.set_text(text::pad_left(box.text(), box.max_length(), '0'));
}

// A text of the user's that is not (yet) a line of the list.
bool is_typed(const screen::ComboBox& box) { return box.edited() && !box.is_empty() && box.index() < 0; }

// Enter takes what was typed of a label; it is no key of the text.
void bind_enter(screen::ComboBox& box, const std::function<void()>& typed) {
  box.key_press = [&box, typed](screen::Key& key) {
    if (key.code != screen::Key::kEnter) return;
    key.swallow();
    if (is_typed(box)) typed();
  };
}

// Where failures surface, a code that could not be read does not stay: nothing stands behind it.
std::optional<store::DbRecord> read_code(const LookupPair& pair) {
  try {
    return pair.read(pair.code.text());
  } catch (const store::DbError&) {
    if (!pair.failures_surface) return store::DbRecord();
    pair.code.set_text({});
    throw;
  }
}

}  // namespace

void bind_code_box(screen::TextBox& box) {
  box.key_press = [&box](screen::Key& key) {
    if (key.code == screen::Key::kEnter) pad(box);
    key.code = entry::filter_code_key(key.code);
  };
  box.lost_focus += [&box] { pad(box); };
}

void LookupPairs::add(LookupPair description) {
  pairs_.push_back(std::make_unique<LookupPair>(std::move(description)));
  const LookupPair& pair = *pairs_.back();
  bind_code_box(pair.code);
  pair.code.changed += [this, &pair] { code_changed(pair); };
  pair.label.clicked += [this, &pair] { label_chosen(pair); };
  pair.label.lost_focus += [this, &pair] { label_left(pair); };
  bind_enter(pair.label, [this, &pair] { label_typed(pair); });
}

void LookupPairs::code_changed(const LookupPair& pair) {
  const std::string code = pair.code.text();
  if (text::length(code) != pair.code.max_length()) {
    pair.label.set_text({});
    if (pair.incomplete) pair.incomplete();
    return;
  }
  const auto record = read_code(pair);
  if (!record) return refuse(pair, pair.unknown);
  if (pair.refusal) {
    if (const auto message = pair.refusal(code, *record); !message.empty()) return refuse(pair, message);
  }
  pair.label.set_text((*record)(card::kReferenceLabel));
  if (pair.accepted) pair.accepted(*record);
}

void LookupPairs::refuse(const LookupPair& pair, std::string_view message) {
  pair.label.set_text({});
  if (pair.incomplete) pair.incomplete();
  if (card_.loading) return;  // a stored code stays, whatever the reference files hold today
  screen_.refuse(message);
  pair.code.set_text({});
  pair.code.form().set_focus(pair.code);
}

void LookupPairs::label_chosen(const LookupPair& pair) {
  if (card_.loading || pair.label.index() < 0) return;
  const int entry =
      pair.alike == Alike::kDifferent ? pair.label.index() + 1 : find_entry(pair.kept, 2, pair.label.text());
  if (entry > 0) pair.code.set_text(text::mid(pair.kept(entry, 1), pair.code_from, pair.code.max_length()));
}

void LookupPairs::label_typed(const LookupPair& pair) {
  const Found found = take_typed(pair.label, pair.alike);
  told_ = nullptr;
  if (found == Found::kOne) return;
  screen_.refuse(found == Found::kNone ? kNoneMatches : kSeveralMatch);
  pair.label.clear_edited();
  told_ = &pair.label;
  pair.label.form().set_focus(pair.label);
}

// What matches nothing is said once and kept; who leaves all the same gets the label of the code
// back, so that the two never disagree.
void LookupPairs::label_left(const LookupPair& pair) {
  if (is_typed(pair.label)) {
    label_typed(pair);
  } else if (pair.label.edited() && pair.label.is_empty()) {
    pair.code.set_text({});
  } else if (told_ == &pair.label) {
    told_ = nullptr;
    label_restored(pair);
  }
}

void LookupPairs::label_restored(const LookupPair& pair) {
  const auto record = pair.code.is_empty() ? std::nullopt : read_code(pair);
  pair.label.set_text(record ? (*record)(card::kReferenceLabel) : std::string_view{});
}

void LookupPairs::add_town(screen::ComboBox& town, const control::Procedure& procedure) {
  const auto typed = [this, &town, &procedure] { town_typed(town, procedure); };
  town.lost_focus += [&town, typed] {
    if (is_typed(town)) typed();
  };
  bind_enter(town, typed);
}

void LookupPairs::town_typed(screen::ComboBox& town, const control::Procedure& procedure) {
  const auto found =
      procedure.select("SSELECT COMMUNES AVEC 1 = " + store::quoted_pattern(town.text()), "COMMUNES", "0 1");
  // The statement holds the text as it was typed; what a bracket in it finds besides is no match.
  if (find_entry(found, 2, town.text()) > 0) return;
  const Found alike = take_typed(town);
  if (alike == Found::kOne) return;
  screen_.refuse(alike == Found::kNone ? "La commune n'est pas référencée dans le fichier des communes."
                                       : kSeveralMatch);
  town.form().set_focus(town);
}

}  // namespace velanor::reference
