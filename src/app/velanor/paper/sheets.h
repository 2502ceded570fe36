// What is put on paper: a card, the table of the employees, and the list before many cards.
#pragma once

#include <QSizeF>
#include <QString>
#include <vector>

#include "app/velanor/paper/flow.h"
#include "office/card_sheet.h"

namespace velanor::app::paper {

// In the lengths of a page.
inline constexpr QSizeF kUpright{millimetres(210), millimetres(297)};
inline constexpr QSizeF kAcross{millimetres(297), millimetres(210)};

enum class Saved { kYes, kNo };
std::vector<Page> card_pages(const office::CardSheet& card, Saved saved, const QSizeF& paper);

struct EmployeeTable {
  office::SheetTable table;
  QString entity, year;   // "" for all of them
  QString filter, count;  // what was typed, and "3 sur 177"
};
std::vector<Page> table_pages(const EmployeeTable& employees, const QSizeF& paper);
// A table that is too wide for an upright page lies across.
QSizeF paper_for(const EmployeeTable& employees);

// The line of a card in the list before the cards; without pages the remark says why.
struct Listed {
  QString code, name, remark = {};
  std::vector<Page> pages = {};
};
// The list and all cards behind it, each with the number of its first page.
std::vector<Page> bound(const EmployeeTable& shown, std::vector<Listed> cards, const QSizeF& paper);

}  // namespace velanor::app::paper
