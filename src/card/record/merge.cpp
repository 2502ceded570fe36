#include "card/record/merge.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <set>

#include "card/record/amendment_columns.h"
#include "card/record/named_fields.h"
#include "card/record/record_compare.h"
#include "card/record/saving.h"
#include "text/number.h"
#include "text/utf8.h"

namespace velanor::card {
namespace {

using Line = Parts::Line;
using Lines = Parts::Lines;
using Values = std::map<int, std::string>;

template <typename Fields>
bool is_in(const Fields& fields, int attribute) {
  return std::any_of(fields.begin(), fields.end(), [=](const Field& f) { return f.number == attribute; });
}

// Single fields: neither a column of a list nor of the calculation.
bool is_field(int attribute) {
  return !is_in(kAmendmentAttributes, attribute) && !is_in(kActivityColumns, attribute) &&
         !is_in(kResults, attribute) && attribute != kStatus.number;
}

void put(Values& values, const Field& field, std::string_view stored) {
  if (!stored.empty()) values[field.number] = stored;
}

// Adds a line under its key, or under that of its second, third... like.
void add(Lines& lines, Line line) {
  const std::string key = line.key;
  for (int n = 2; std::any_of(lines.begin(), lines.end(), [&](const Line& l) { return l.key == line.key; });
       ++n)
    line.key = key + "#" + std::to_string(n);
  lines.push_back(std::move(line));
}

Line amendment_of(const store::DbRecord& card, int value) {
  Line line{std::string(element(card, kEffective, value)), {}, {}};
  for (const Field& column : kAmendmentColumns) put(line.values, column, element(card, column, value));
  for (int s = 1; !element(card, kItemCode, value, s).empty(); ++s) {
    Line item{std::string(element(card, kItemCode, value, s)), {}, {}};
    for (const Field& column : kItemColumns) put(item.values, column, element(card, column, value, s));
    add(line.items, std::move(item));
  }
  return line;
}

const Line* find(const Lines& lines, const std::string& key) {
  const auto found = std::find_if(lines.begin(), lines.end(), [&](const Line& l) { return l.key == key; });
  return found == lines.end() ? nullptr : &*found;
}

std::vector<std::string> keys_of(const Lines& lines, const std::set<std::string>& among) {
  std::vector<std::string> keys;
  for (const Line& line : lines) {
    if (among.contains(line.key)) keys.push_back(line.key);
  }
  return keys;
}

// The order of lines that came together: that of the side which changed it. Where both did, those that there
// were before come first, and the new ones by their codes.
void sort_lines(Lines& lines, const Lines& before, const Lines& theirs, const Lines& mine) {
  std::set<std::string> kept, there;
  for (const Line& line : lines) there.insert(line.key);
  for (const Line& line : before) {
    if (there.contains(line.key)) kept.insert(line.key);
  }
  const auto in_order_of = [&](const Lines& model) {
    const auto keys = keys_of(model, there);
    std::sort(lines.begin(), lines.end(), [&](const Line& a, const Line& b) {
      const auto at = [&](const Line& l) {
        return std::find(keys.begin(), keys.end(), l.key) - keys.begin();
      };
      return at(a) != at(b) ? at(a) < at(b) : a.key < b.key;
    });
  };
  const auto same_order = [&](const Lines& side) { return keys_of(side, there) == keys_of(before, there); };
  if (same_order(theirs)) return in_order_of(mine);
  if (same_order(mine)) return in_order_of(theirs);
  if (keys_of(theirs, there) == keys_of(mine, there)) return in_order_of(mine);
  in_order_of(before);
}

}  // namespace

// ---- Apart and together.

Parts::Parts(const store::DbRecord& card) {
  for (int attribute = 1; attribute <= card.DCount(); ++attribute) {
    if (is_field(attribute) && !card(attribute).empty()) fields[attribute] = card(attribute);
  }
  for (int value = 1; !element(card, kEffective, value).empty(); ++value)
    add(amendments, amendment_of(card, value));
  for (int value = 1; !element(card, kActivity, value).empty(); ++value) {
    Line line{std::string(element(card, kActivity, value)), {}, {}};
    for (const Field& column : kActivityColumns) put(line.values, column, element(card, column, value));
    add(activities, std::move(line));
  }
}

namespace {

void write(const Values& values, store::DbRecord& card, int value) {
  for (const auto& [attribute, stored] : values) card.set(attribute, value, stored);
}

}  // namespace

void Parts::write_to(store::DbRecord& card) const {
  for (int attribute = card.DCount(); attribute >= 1; --attribute) {
    const bool stays =
        is_in(kResults, attribute) || attribute == kStatus.number || fields.contains(attribute);
    if (!stays) card.set(attribute, {});
  }
  // An attribute beyond the layout may hold values of its own.
  store::DbRecord whole;
  for (const auto& [attribute, stored] : fields) {
    if (card(attribute) == stored) continue;
    whole = store::DbRecord::from_trusted(stored);
    card.copy_attribute(attribute, whole, 1);
  }
  int value = 0;
  for (const Line& line : amendments) {
    write(line.values, card, ++value);
    int subvalue = 0;
    for (const Line& item : line.items) {
      ++subvalue;
      for (const auto& [attribute, stored] : item.values) card.set(attribute, value, subvalue, stored);
    }
  }
  value = 0;
  for (const Line& line : activities) write(line.values, card, ++value);
}

// ---- One card of two.

namespace {

// Puts the parts together; what clashes is asked of `decide`, by name and with the texts to show.
class Joiner {
 public:
  using Decide = std::function<Side(const std::function<Clash()>&)>;
  Joiner(const Reading& reading, Merge::Asks asks, Decide decide)
      : reading_(reading), asks_(asks), decide_(std::move(decide)) {}

  Parts join(const Parts& before, const Parts& theirs, const Parts& mine) {
    Parts parts;
    parts.fields = join(before.fields, theirs.fields, mine.fields, {});
    of_what_ = {};
    parts.amendments = join(before.amendments, theirs.amendments, mine.amendments, &Joiner::amendment_name);
    std::sort(parts.amendments.begin(), parts.amendments.end(), [](const Line& a, const Line& b) {
      const auto day = [](const Line& l) { return text::whole_number(l.key).value_or(0); };
      return day(a) != day(b) ? day(a) < day(b) : a.key < b.key;
    });
    parts.activities = join_activities(before.activities, theirs.activities, mine.activities);
    return parts;
  }

 private:
  using NameOf = std::string (Joiner::*)(const Line&) const;

  Values join(const Values& before, const Values& theirs, const Values& mine, const std::string& of_line);
  Lines join(const Lines& before, const Lines& theirs, const Lines& mine, NameOf name_of);
  Line join(const Line& before, const Line& theirs, const Line& mine, NameOf name_of);
  Lines join_activities(const Lines& before, const Lines& theirs, const Lines& mine);
  std::optional<Line> choose(const Line* before, const Line* theirs, const Line* mine, NameOf name_of);

  std::string shown(int attribute, const std::string& stored) const;
  std::string summary(const Line* line, std::string_view none) const;
  std::string summary(const Lines& lines) const;
  std::string amendment_name(const Line& line) const {
    return "avenant du " + shown(kEffective.number, line.values.at(kEffective.number));
  }
  std::string activity_name(const Line& line) const {
    return "activité " + shown(kActivity.number, line.values.at(kActivity.number));
  }
  std::string item_name(const Line& line) const {
    const std::string& code = line.values.at(kItemCode.number);
    return std::string(text::trim("rubrique " + code + " " + reading_.labels.item(code))) + of_what_;
  }

  // Whether somebody has to choose between two that are not the same.
  bool asks(bool they_changed, bool i_changed) const {
    return asks_ == Merge::Asks::kEveryChange || (they_changed && i_changed);
  }

  const Reading& reading_;
  Merge::Asks asks_;
  Decide decide_;
  // The amendment whose items are being joined, as the end of a name.
  std::string of_what_;
};

std::string value_or_nothing(const Values& values, int attribute) {
  const auto found = values.find(attribute);
  return found == values.end() ? std::string() : found->second;
}

std::string capitalised(const std::string& name) {
  const std::size_t first = name.starts_with("é") ? std::string("é").size() : 1;
  return text::upper(name.substr(0, first)) + name.substr(first);
}

Values Joiner::join(const Values& before, const Values& theirs, const Values& mine,
                    const std::string& of_line) {
  Values joined;
  std::set<int> attributes;
  for (const Values* values : {&before, &theirs, &mine}) {
    for (const auto& [attribute, stored] : *values) attributes.insert(attribute);
  }
  for (const int attribute : attributes) {
    const std::string b = value_or_nothing(before, attribute), t = value_or_nothing(theirs, attribute),
                      m = value_or_nothing(mine, attribute);
    Side side = t == b ? Side::kMine : Side::kTheirs;
    if (t != m && asks(t != b, m != b)) {
      side = decide_([&] {
        const Field* field = card_field(attribute);
        const std::string name = field ? std::string(field->name) : "Champ " + std::to_string(attribute);
        return Clash{name + of_line, shown(attribute, b), shown(attribute, t), shown(attribute, m)};
      });
    }
    const std::string& taken = side == Side::kMine ? m : t;
    if (!taken.empty()) joined[attribute] = taken;
  }
  return joined;
}

Lines Joiner::join(const Lines& before, const Lines& theirs, const Lines& mine, NameOf name_of) {
  Lines joined;
  std::set<std::string> keys;
  for (const Lines* lines : {&before, &theirs, &mine}) {
    for (const Line& line : *lines) keys.insert(line.key);
  }
  for (const std::string& key : keys) {
    if (auto line = choose(find(before, key), find(theirs, key), find(mine, key), name_of))
      joined.push_back(std::move(*line));
  }
  sort_lines(joined, before, theirs, mine);
  return joined;
}

std::optional<Line> Joiner::choose(const Line* before, const Line* theirs, const Line* mine, NameOf name_of) {
  if (theirs && mine) return join(before ? *before : Line{theirs->key, {}, {}}, *theirs, *mine, name_of);
  const Line* const left = theirs ? theirs : mine;
  if (!left) return std::nullopt;
  // One has added it, or has removed it: as he wishes, unless the other has changed it meanwhile.
  if (!asks(!before || *left != *before, before != nullptr)) {
    return before ? std::nullopt : std::optional(*left);
  }
  const Side side = decide_([&] {
    return Clash{capitalised((this->*name_of)(*left)), summary(before, ""),
                 summary(theirs, before ? "supprimé" : ""), summary(mine, before ? "supprimé" : "")};
  });
  const Line* const taken = side == Side::kTheirs ? theirs : mine;
  return taken ? std::optional(*taken) : std::nullopt;
}

Line Joiner::join(const Line& before, const Line& theirs, const Line& mine, NameOf name_of) {
  const std::string name = (this->*name_of)(theirs);
  const bool vowel = name.starts_with("a");
  const std::string of_line = (vowel ? " de l'" : " de la ") + name;
  Line line{theirs.key, join(before.values, theirs.values, mine.values, of_line), {}};
  if (!before.items.empty() || !theirs.items.empty() || !mine.items.empty()) {
    of_what_ = " de l'" + name;
    line.items = join(before.items, theirs.items, mine.items, &Joiner::item_name);
    of_what_.clear();
  }
  return line;
}

// Shares that no longer make a whole were not meant together: then the split as a whole is one or the other.
Lines Joiner::join_activities(const Lines& before, const Lines& theirs, const Lines& mine) {
  const auto total = [](const Lines& lines) {
    std::int64_t sum = 0;
    for (const Line& line : lines)
      sum += text::whole_number(value_or_nothing(line.values, kShare.number)).value_or(0);
    return sum;
  };
  if (theirs != before && mine != before && theirs != mine) {
    Joiner trial(reading_, Merge::Asks::kClashes, [](const auto&) { return Side::kMine; });
    const Lines joined = trial.join(before, theirs, mine, &Joiner::activity_name);
    if (total(joined) != total(mine) || total(joined) != total(theirs)) {
      const Side side = decide_([&] {
        return Clash{"Répartition des activités", summary(before), summary(theirs), summary(mine)};
      });
      return side == Side::kTheirs ? theirs : mine;
    }
  }
  return join(before, theirs, mine, &Joiner::activity_name);
}

// ---- In the words of the screen.

std::string Joiner::shown(int attribute, const std::string& stored) const {
  const Field* field = card_field(attribute);
  if (!field || stored.empty()) return stored;
  if (*field == kEstablishment) return std::string(text::mid(stored, kEntityCodeLength + 1));
  for (const FlagWord& flag : flag_words()) {
    if (flag.field == *field && flag.letter == stored) return std::string(flag.word);
  }
  Draft draft(reading_);
  draft.put_stored(*field, stored);
  return draft.shown(*field);
}

std::string Joiner::summary(const Line* line, std::string_view none) const {
  if (!line) return std::string(none);
  std::string text;
  for (const Field& column : kAttributes) {
    const std::string value = shown(column.number, value_or_nothing(line->values, column.number));
    if (!value.empty()) text += (text.empty() ? "" : " ; ") + value;
  }
  if (!line->items.empty()) text += " ; " + std::to_string(line->items.size()) + " rubriques";
  return text;
}

std::string Joiner::summary(const Lines& lines) const {
  std::string text;
  for (const Line& line : lines) {
    text += (text.empty() ? "" : ", ") +
            shown(kActivity.number, value_or_nothing(line.values, kActivity.number)) + " " +
            shown(kShare.number, value_or_nothing(line.values, kShare.number));
  }
  return text;
}

// Results hold for what they were computed from, and for nothing else.
void take_results(store::DbRecord& card, const store::DbRecord& theirs, const store::DbRecord& mine) {
  const store::DbRecord* of = !results_are_stale(card, &theirs) ? &theirs
                              : !results_are_stale(card, &mine) ? &mine
                                                                : nullptr;
  for (const Field& result : kResults) {
    if (of) {
      card.copy_attribute(result.number, *of, result.number);
    } else {
      set_element(card, result, "");
    }
  }
}

}  // namespace

Merge::Merge(const Draft& before, const Draft& theirs, const Draft& mine, Asks asks)
    : before_(before), theirs_(theirs), mine_(mine), asks_(asks) {
  Joiner joiner(mine_.reading(), asks_, [this](const std::function<Clash()>& clash) {
    clashes_.push_back(clash());
    return Side::kMine;
  });
  joiner.join(Parts(before_.record()), Parts(theirs_.record()), Parts(mine_.record()));
}

store::DbRecord Merge::merged(const std::vector<Side>& choices) const {
  std::size_t next = 0;
  Joiner joiner(mine_.reading(), asks_, [&](const auto&) { return choices.at(next++); });
  const Parts parts = joiner.join(Parts(before_.record()), Parts(theirs_.record()), Parts(mine_.record()));
  store::DbRecord card = theirs_.record();
  parts.write_to(card);
  take_results(card, theirs_.record(), mine_.record());
  return card;
}

}  // namespace velanor::card
