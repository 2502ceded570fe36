#include "reference/lookup_pairs.h"

#include "entry/key_filters.h"
#include "store/text_literal.h"
#include "text/utf8.h"

namespace velanor::reference {
namespace {

void pad(screen::TextBox& box) {
  if (!box.is_empty()) box.set_text(text::pad_left(box.text(), box.max_length(), '0'));
}

std::optional<store::DbRecord> read_code(const LookupPair& pair) {
  try {
    return pair.read(pair.code.text());
  } catch (const store::DbError&) {
    if (pair.failures_surface) throw;
    return store::DbRecord();
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
  pair.label.set_text((*record)(1));
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
  if (pair.label.is_empty() || card_.loading) return;
  const int entry = find_entry(pair.kept, 2, pair.label.text());
  if (entry > 0) pair.code.set_text(text::mid(pair.kept(entry, 1), pair.code_from, pair.code.max_length()));
}

// A label that was typed counts as chosen when it is one of the list; otherwise the box shows
// its code's label again, so that the two never disagree.
void LookupPairs::label_left(const LookupPair& pair) {
  if (!pair.label.edited()) return;
  if (pair.label.is_empty()) return pair.code.set_text({});
  if (find_entry(pair.kept, 2, pair.label.text()) > 0) return label_chosen(pair);
  const auto record = pair.code.is_empty() ? std::nullopt : read_code(pair);
  pair.label.set_text(record ? (*record)(1) : std::string_view{});
}

void LookupPairs::add_town(screen::ComboBox& town, const control::Procedure& procedure) {
  town.lost_focus += [this, &town, &procedure] {
    if (!town.edited() || town.is_empty()) return;
    const auto found =
        procedure.select("SSELECT COMMUNES AVEC 1 = " + store::quoted(town.text()), "COMMUNES", "0 1");
    // Brackets that were typed are ordinary characters here, whatever they mean in a statement.
    if (find_entry(found, 2, town.text()) > 0) return;
    screen_.refuse("La commune n'est pas référencée dans le fichier des communes.");
    town.form().set_focus(town);
  };
}

}  // namespace velanor::reference
