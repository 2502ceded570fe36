// The files of an employer of one entity: the least that a component starts on and a card is made on. What
// each attribute means stands in docs/embedding.md.
#pragma once

#include <velanor/date.h>

#include <initializer_list>
#include <string>
#include <string_view>

#include "map_backend.h"

// A record of single values: attribute and text in turn.
struct Element {
  int attribute;
  std::string_view text;
};
inline velanor::store::DbRecord record(std::initializer_list<Element> elements) {
  velanor::store::DbRecord made;
  for (const Element& element : elements) made.set(element.attribute, element.text);
  return made;
}

// A list of the file TABLES: an entry's code, label and mark are the values of attributes 2, 3 and 4.
struct Entry {
  std::string_view code, label, mark = {};
};
inline velanor::store::DbRecord list(std::initializer_list<Entry> entries) {
  velanor::store::DbRecord made;
  int value = 0;
  for (const Entry& entry : entries) {
    ++value;
    made.set(2, value, entry.code);
    made.set(3, value, entry.label);
    made.set(4, value, entry.mark);
  }
  return made;
}

inline std::string stored_day(int day, int month, int year) {
  return std::to_string(velanor::entry::day_number({day, month, year}).value());
}

inline Files reference_files() {
  Files files;
  // Without these five records `init` fails.
  files["TABLES"]["FINCONTRAT"] = list({{"01", "Démission"}, {"02", "Fin de contrat"}});
  files["TABLES"]["QUALIF"] = list({{"AD", "Agent à domicile", "10"}});
  files["TABLES"]["REGROUPBUDGET"] = list({{"10", "Intervention"}});
  files["TABLES"]["NATURECONTRAT"] = list({{"01", "Contrat de travail", "O"}});
  files["TABLES"]["DIPLOMES"] = list({{"1", "Sans diplôme"}});
  // Without these a card cannot be completed.
  files["BUDGETPARAM"]["1"] = record({{1, stored_day(1, 1, 2026)}, {10, "03"}});
  files["ASSOCIATION"]["001"] = record({{1, "Aide aux Familles du Val"}});
  files["ETABLISSEMENT"]["001001"] = record({{1, "Siège"}, {2, "15167"}});
  files["CONVENTIONCOL"]["03"] = record({{1, "Établissements privés"}});
  files["SECTEUR"]["001"] = record({{1, "Zone rurale"}});
  files["COMMUNES"]["27229"] = record({{1, "Évreux"}});
  files["ACTIVITES"]["001010"] = record({{1, "Aide ménagère"}});
  files["PROFIL"]["001"] = record({{1, "Intervenant"}});
  files["RUBSAISIE"]["001"] = record({{1, "Heures contrat"}, {2, "3"}, {5, "+"}});
  // An entity has the years of its cards: without one there is no year to choose, nor a card to add.
  files["VELANORO"]["000010012026"] = record({{1, "MARTIN JEANNE"}, {40, "001001"}});
  return files;
}
