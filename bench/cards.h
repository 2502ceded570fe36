// The cards that all benchmarks of the stores work on: about 1,085 bytes each (46 attributes, 122 elements,
// accented names among them) under ids of 12 bytes, in shuffled order.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "velanor/query.h"
#include "velanor/record.h"

namespace velanor::bench {

inline constexpr int kYears = 10, kFirstYear = 2021;

// All cards of the base: VELANOR_BENCH_CARDS, or 500,000.
inline int all_cards() {
  const char* const wanted = std::getenv("VELANOR_BENCH_CARDS");
  return wanted ? std::max(std::atoi(wanted), 1'000) : 500'000;
}

inline std::string padded(int number, std::size_t width) {
  const std::string digits = std::to_string(number);
  return digits.size() < width ? std::string(width - digits.size(), '0') + digits : digits;
}

// How the cards are spread: over ten years of one entity, or of twenty.
enum class Spread { kOneEntity, kTwentyEntities };
inline int entities(Spread spread) { return spread == Spread::kOneEntity ? 1 : 20; }
inline int cards_a_year(Spread spread) { return all_cards() / kYears / entities(spread); }

// Codes count in letters and digits, so that five are enough for any base.
inline std::string employee_code(int employee) {
  std::string code(5, '0');
  for (auto digit = code.rbegin(); employee > 0; employee /= 36, ++digit)
    *digit = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"[employee % 36];
  return code;
}

inline std::string card_id(int employee, int entity, int year) {
  return employee_code(employee) + padded(entity, 3) + padded(kFirstYear + year, 4);
}

inline std::string card_name(std::mt19937& random) {
  static const char* const kNames[] = {"MARTIN", "Lefèvre", "DUPONT",  "Étienne", "GARCÍA",
                                       "NOËL",   "Petit",   "ŒUVRARD", "Bernard", "d'Arc"};
  return std::string(kNames[random() % 10]) + " " + kNames[random() % 10] + " " +
         padded(static_cast<int>(random() % 100'000), 5);
}

// Single fields, five amendments, three items of three amendments, a remark.
inline store::DbRecord card(std::mt19937& random) {
  const auto digits = [&](unsigned below, std::size_t width) {
    return padded(static_cast<int>(random() % below), width);
  };
  store::DbRecord record;
  record.set(1, card_name(random));
  for (int field = 2; field <= 16; ++field) record.set(field, digits(1'000'000, 6 + random() % 6));
  for (int column = 17; column <= 29; ++column) {
    for (int line = 1; line <= 5; ++line) record.set(column, line, digits(100'000, 5));
  }
  for (int column = 30; column <= 33; ++column) {
    for (int line = 1; line <= 3; ++line) {
      for (int item = 1; item <= 3; ++item) record.set(column, line, item, digits(1'000'000, 6));
    }
  }
  for (int field = 34; field <= 37; ++field) record.set(field, digits(10'000, 4));
  record.set(46, std::string(115 + random() % 50, 'x'));
  return record;
}

inline std::vector<std::string> card_ids(Spread spread) {
  std::vector<std::string> ids;
  for (int employee = 1; employee <= cards_a_year(spread); ++employee) {
    for (int entity = 1; entity <= entities(spread); ++entity) {
      for (int year = 0; year < kYears; ++year) ids.push_back(card_id(employee, entity, year));
    }
  }
  std::mt19937 random(1);
  std::shuffle(ids.begin(), ids.end(), random);
  return ids;
}

inline const char* const kFile = "VELANORO";

// The employees of the first entity in its latest year, by name, as the component asks for them.
inline std::string employee_list() {
  const std::string suffix = card_id(0, 1, kYears - 1).substr(5);
  return store::DbQuery("SSELECT VELANORO AVEC 0 = \"[" + suffix + "\" PAR 1", kFile, "0 1").encoded();
}
inline std::string year_table() {
  return store::DbQuery("SSELECT VELANORO PAR CodeAsso PAR-DECR Annee", kFile, "0").encoded();
}
// A card of that list, and one of none that is ever asked for.
inline std::string listed_id() { return card_id(1, 1, kYears - 1); }
inline std::string other_id() { return card_id(1, 1, 0); }

// The same card with another figure in an early field, of the same size: a save that changes bytes.
inline store::DbRecord with_another_figure(store::DbRecord record) {
  static int figure = 0;
  record.set(3, padded(++figure % 1'000'000, 6));
  return record;
}

}  // namespace velanor::bench
