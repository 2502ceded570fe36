// Headings, fields and tables one under another, from page to page.
#pragma once

#include <QSizeF>
#include <QStringList>
#include <vector>

#include "app/velanor/paper/page.h"
#include "office/card_sheet.h"

namespace velanor::app::paper {

// No line is cut in two: a row stands on one page, a heading with what follows it, a sum with the last row;
// the headings of a table stand again on each page. A text too long for its column takes several lines.
class Flow {
 public:
  // What stands on top of each page.
  struct Head {
    QString left, right;       // the first line
    QString title, mark = {};  // the second; the mark stands out
    QString note = {};         // under it, on the first page alone
  };
  // `paper`: in the lengths of a page.
  Flow(const QSizeF& paper, const Head& head);

  void group(const office::SheetGroup& group);
  void table(const office::SheetTable& table);
  std::vector<Page> take() { return std::move(pages_); }

  // Of a table, without wrapping anything.
  static double natural_width(const office::SheetTable& table);
  static double room_of(const QSizeF& paper);

 private:
  struct Column {
    double left = 0, width = 0;
    Page::Side side = Page::Side::kLeft;
  };
  struct Row {
    std::vector<QStringList> cells;
    Style style = Style::kText;
    double height = 0;
  };
  // Broken into lines, and still to be put somewhere.
  struct SetTable {
    std::vector<Column> columns;
    Row headings = {};
    std::vector<Row> rows = {};
    Row total = {};
  };

  Page& page() { return pages_.back(); }
  double left_to_bottom() const { return bottom_ - at_; }
  void start_page();
  void need(double height);
  void text(const QString& text, double left, double width, Style style, Page::Side side = Page::Side::kLeft);
  void rule(double thick);
  void heading(const QString& title, double kept);
  void fields(const std::vector<office::SheetField>& fields);
  void note(const QString& text);

  std::vector<Column> columns_of(const office::SheetTable& table) const;
  static Row row_of(const std::vector<std::string>& cells, const std::vector<Column>& columns, Style style);
  void put(const Row& row, const std::vector<Column>& columns);
  void put_headings(const SetTable& table);
  SetTable set(const office::SheetTable& table) const;
  double kept(const SetTable& table) const;
  void put(const SetTable& table);

  QSizeF paper_;
  Head head_;
  double width_, bottom_, at_ = 0;
  std::vector<Page> pages_;
};

// What stands under each page: the base, when it was printed, and which page of all it is.
struct Source {
  QString base, moment;
};
void put_feet(std::vector<Page>& pages, const QSizeF& paper, const Source& source);

}  // namespace velanor::app::paper
