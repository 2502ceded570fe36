#include "card/record/card_act.h"

#include <algorithm>

#include "card/record/named_fields.h"
#include "text/utf8.h"

namespace velanor::card {
namespace {

using store::DbRecord;
using Keys = std::vector<std::string>;

// What a list holds, and what its lines are known by.
struct List {
  Field key;
  std::span<const Field> columns;
  std::string (*name)(const Draft&, int line);
};

std::string amendment_name(const Draft& card, int line) {
  return "ligne du " + card.shown(kEffective, line + 1);
}

std::string activity_name(const Draft& card, int line) {
  try {
    return "activité « " + card.activity(line).label + " »";
  } catch (const store::DbError&) {
    return "activité " + std::string(element(card.record(), kActivity, line + 1));
  }
}

const List kAmendments{kEffective, kAmendmentAttributes, amendment_name};
const List kActivities{kActivity, kActivityColumns, activity_name};

Keys keys_of(const Draft& card, const List& list) {
  Keys keys;
  for (int line = 0; line < lines_of(card.record(), list.key); ++line)
    keys.emplace_back(element(card.record(), list.key, line + 1));
  return keys;
}

bool same_line(const Draft& a, const Draft& b, std::span<const Field> columns, int line) {
  return std::all_of(columns.begin(), columns.end(), [&](const Field& column) {
    return same_value(a.record(), b.record(), column.number, line + 1);
  });
}

// The first line of the one that differs from that of the other.
int first_apart(const Keys& one, const Keys& other) {
  const auto [here, there] = std::mismatch(one.begin(), one.end(), other.begin(), other.end());
  return static_cast<int>(here - one.begin());
}

class Difference {
 public:
  Difference(const Draft& before, const Draft& after) : before_(before), after_(after) {}

  CardAct act() {
    compare(kAmendments);
    compare(kActivities);
    for (const Field& field : card_fields()) compare(field);
    if (others_ > 0) act_.name += " et " + std::to_string(others_) + (others_ > 1 ? " autres" : " autre");
    return std::move(act_);
  }

 private:
  void add(CardAct act) {
    if (act_.name.empty()) {
      act_ = std::move(act);
    } else {
      ++others_;
    }
  }

  void compare(const List& list) {
    const Keys before = keys_of(before_, list), after = keys_of(after_, list);
    if (after.size() == before.size()) return compare_lines(list, before, after);
    const bool added = after.size() > before.size();
    const int line = added ? first_apart(after, before) : first_apart(before, after);
    const std::string name = list.name(added ? after_ : before_, line);
    add({name + (added ? " ajoutée" : " supprimée"), list.key, added ? line : -1});
  }

  void compare_lines(const List& list, const Keys& before, const Keys& after) {
    for (int line = 0; line < static_cast<int>(after.size()); ++line) {
      if (same_line(before_, after_, list.columns, line)) continue;
      // They make the monthly time of production staff, too.
      const bool items = list.key == kEffective && !same_line(before_, after_, kItemColumns, line);
      const std::string& was = moved(before, after, line);
      const auto at = std::find(before.begin(), before.end(), was) - before.begin();
      const std::string name = list.name(before_, static_cast<int>(at));
      return add({items ? "rubriques de la " + name + " modifiées" : name + " modifiée", list.key,
                  place_of(before, after, line)});
    }
  }

  // Of lines that stand in another order the one whose key is there no more.
  static const std::string& moved(const Keys& before, const Keys& after, int line) {
    for (const std::string& key : before) {
      if (std::find(after.begin(), after.end(), key) == after.end()) return key;
    }
    return before[static_cast<std::size_t>(line)];
  }

  static int place_of(const Keys& before, const Keys& after, int line) {
    for (std::size_t i = 0; i < after.size(); ++i) {
      if (std::find(before.begin(), before.end(), after[i]) == before.end()) return static_cast<int>(i);
    }
    return line;
  }

  void compare(const Field& field) {
    const auto in_list = [&](const auto& columns) {
      return std::find(columns.begin(), columns.end(), field) != columns.end();
    };
    if (in_list(kAmendmentAttributes) || in_list(kActivityColumns)) return;
    if (same_attribute(before_.record(), after_.record(), field.number)) return;
    add({std::string(field.name) + " (" + shown(before_, field) + " → " + shown(after_, field) + ")", field});
  }

  static std::string shown(const Draft& card, const Field& field) {
    constexpr int kLongest = 24;
    const std::string text = words(card, field);
    if (text.empty()) return "vide";
    return text::length(text) <= kLongest ? text : std::string(text::left(text, kLongest - 1)) + "…";
  }

  static std::string words(const Draft& card, const Field& field) {
    const std::string_view stored = element(card.record(), field);
    for (const FlagWord& flag : flag_words()) {
      if (flag.field == field && flag.letter == stored) return std::string(flag.word);
    }
    return field == kEstablishment ? std::string(own_code_of(stored)) : card.shown(field);
  }

  const Draft& before_;
  const Draft& after_;
  CardAct act_;
  int others_ = 0;
};

}  // namespace

CardAct act_between(const Draft& before, const Draft& after) { return Difference(before, after).act(); }

}  // namespace velanor::card
