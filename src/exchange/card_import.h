// What an import makes of a card, and what it refuses.
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "card/record/references.h"
#include "exchange/columns.h"
#include "exchange/judged_texts.h"
#include "velanor/date.h"

namespace velanor::exchange {

// The id that the parts of a card's id make, or that stands in one text, with the zeros that a
// spreadsheet has stripped. Otherwise empty, and `wrong` says why.
struct CardIdParts {
  std::string_view employee, entity, year;
};
std::string card_id(const CardIdParts& parts, std::string& wrong);
std::string card_id(std::string_view whole, std::string& wrong);

// Judged texts of a field, none yet.
JudgedTexts texts_of(const card::Field& field);

class CardImport {
 public:
  struct Findings {
    std::vector<card::Fault> faults, unknown_codes;
    std::vector<card::Fault> remarks;  // which keep nothing from being written
  };

  // Keeps the columns, whose owner outlives it.
  CardImport(store::Database& database, const std::vector<Column>& columns, const entry::Clock& clock);

  // Completes what stands in the columns, follows what saving does to a card, and judges what is not
  // as it was. `before` is nullptr for a new card. `filled` are the columns, in their order, that had a text.
  Findings finish(std::string_view id, const store::DbRecord* before, const std::vector<std::size_t>& filled,
                  store::DbRecord& card);

 private:
  // A field of the card, and texts of it that need neither completion nor fault.
  struct Known {
    const card::Field* field;
    JudgedTexts good;
  };
  void finish_element(Known& known, const store::Position& position, std::string_view id,
                      const store::DbRecord* before, store::DbRecord& card, Findings& findings) const;
  bool has_column(const card::Field& field) const;
  void follow_saving(const store::DbRecord* before, store::DbRecord& card) const;

  card::References references_;
  const std::vector<Column>& columns_;
  std::set<int> attributes_;             // of the columns
  std::map<int, Known> known_;           // by attribute
  std::vector<Known*> known_of_column_;  // nullptr: no field of the card
  int today_;
};

}  // namespace velanor::exchange
