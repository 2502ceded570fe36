// A card as it is put on paper: titled groups of fields and tables, in the words of the screen.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "office/card_reading.h"
#include "velanor/record.h"

namespace velanor::office {

// A table of texts.
struct SheetTable {
  enum class Holds { kText, kFigures };
  struct Column {
    std::string title;
    Holds holds = Holds::kText;
  };
  std::vector<Column> columns;
  std::vector<std::vector<std::string>> rows;  // as many texts as columns
  std::vector<std::string> total = {};         // the same, or none
};

struct SheetField {
  std::string label, value;
};

// Its fields stand before its tables; either may be missing.
struct SheetGroup {
  std::string title;
  std::vector<SheetField> fields = {};
  std::vector<SheetTable> tables = {};
  std::string remark = {};
};

struct CardSheet {
  std::string entity, year, employee;  // "001 Aide aux Familles du Val", "2026", "00001 HUET FABIENNE"
  std::vector<SheetGroup> groups;
};

// Of which card it is; the code is "" on a card that has none yet.
struct CardName {
  std::string employee, entity, year;
};
CardName name_of_card(std::string_view id);

// Throws store::DbError where a label cannot be read.
CardSheet sheet_of(const CardReading& reading, const CardName& name, const store::DbRecord& card);
// "001 Aide aux Familles du Val"; the code alone where there is no such entity.
std::string entity_title(const CardReading& reading, std::string_view entity);

}  // namespace velanor::office
