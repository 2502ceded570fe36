#include "app/velanor/paper/sheets.h"

#include <iterator>
#include <utility>

#include "qt/strings.h"

namespace velanor::app::paper {
namespace {

using Holds = office::SheetTable::Holds;
using qt::from_qt, qt::to_qt;

QString of_year(const QString& year) { return year.isEmpty() ? QString() : "Année budgétaire " + year; }

Flow::Head head_of(const EmployeeTable& employees, const QString& title) {
  const QString filter = employees.filter.trimmed();
  return {employees.entity.isEmpty() ? "Toutes les entités et années" : employees.entity,
          of_year(employees.year),
          title,
          {},
          employees.count + " – " + (filter.isEmpty() ? "sans filtre" : "filtre : " + filter)};
}

// With the page on which the first card stands; the list is as long whatever that is.
std::vector<Page> list_pages(const EmployeeTable& shown, const std::vector<Listed>& cards,
                             const QSizeF& paper, std::size_t first) {
  office::SheetTable table{{{"Code"}, {"Nom"}, {"Page", Holds::kFigures}}, {}};
  for (const Listed& card : cards) {
    table.rows.push_back({from_qt(card.code), from_qt(card.name),
                          card.pages.empty() ? from_qt(card.remark) : std::to_string(first)});
    first += card.pages.size();
  }
  Flow flow(paper, head_of(shown, "Fiches du personnel"));
  flow.table(table);
  return flow.take();
}

}  // namespace

std::vector<Page> card_pages(const office::CardSheet& card, Saved saved, const QSizeF& paper) {
  Flow flow(paper, {to_qt(card.entity), of_year(to_qt(card.year)), "Fiche " + to_qt(card.employee),
                    saved == Saved::kNo ? "NON ENREGISTRÉ" : ""});
  for (const office::SheetGroup& group : card.groups) flow.group(group);
  return flow.take();
}

std::vector<Page> table_pages(const EmployeeTable& employees, const QSizeF& paper) {
  Flow flow(paper, head_of(employees, "Tableau des employés"));
  flow.table(employees.table);
  return flow.take();
}

QSizeF paper_for(const EmployeeTable& employees) {
  return Flow::natural_width(employees.table) > Flow::room_of(kUpright) ? kAcross : kUpright;
}

std::vector<Page> bound(const EmployeeTable& shown, std::vector<Listed> cards, const QSizeF& paper) {
  const std::size_t of_list = list_pages(shown, cards, paper, 1).size();
  std::vector<Page> pages = list_pages(shown, cards, paper, of_list + 1);
  for (Listed& card : cards)
    pages.insert(pages.end(), std::make_move_iterator(card.pages.begin()),
                 std::make_move_iterator(card.pages.end()));
  return pages;
}

}  // namespace velanor::app::paper
