#include "app/velanor/paper/flow.h"

#include <QTextLayout>
#include <algorithm>
#include <numeric>
#include <utility>

#include "qt/strings.h"

namespace velanor::app::paper {
namespace {

using office::SheetTable;
using qt::to_qt;

constexpr double kMargin = millimetres(15), kFoot = millimetres(9);
constexpr double kPad = 3 * kPoint, kGap = 8 * kPoint, kHair = 0.5 * kPoint, kThick = 1 * kPoint;
constexpr qsizetype kLongest = 400;  // characters of a text; what is longer is no entry
const QColor kLine(190, 190, 190), kShade(236, 236, 236);

// On one line, and no longer than paper has room for.
QString clean(std::string_view stored) {
  QString text = to_qt(stored);
  for (QChar& character : text) {
    if (!character.isPrint() && !character.isSurrogate()) character = u' ';
  }
  return text.size() > kLongest ? text.left(kLongest) + u'…' : text;
}

QStringList wrapped(const QString& text, double width, Style style) {
  if (text.isEmpty() || width_of(text, style) <= width) return {text};
  QTextLayout layout(text, font_of(style));
  QTextOption option;
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  layout.setTextOption(option);
  QStringList lines;
  layout.beginLayout();
  for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
    line.setLineWidth(width);
    lines << text.mid(line.textStart(), line.textLength()).trimmed();
  }
  layout.endLayout();
  return lines;
}

double widest_word(const QString& text, Style style) {
  double widest = 0;
  for (const QString& word : text.split(u' ')) widest = std::max(widest, width_of(word, style));
  return widest;
}

// What a column needs: with its heading on one line, with what it holds on one line, and at least.
struct Need {
  double wide = 0, natural = 0, least = 0;
  void hold(std::string_view text, Style style) {
    const QString shown = clean(text);
    const double width = width_of(shown, style);
    wide = std::max(wide, width);
    natural = std::max(natural, width);
    if (width > least) hold_words(shown, style);
  }
  void hold_title(std::string_view text) {
    const QString shown = clean(text);
    wide = std::max(wide, width_of(shown, Style::kStrong));
    hold_words(shown, Style::kStrong);
    natural = std::max(natural, least);
  }
  void hold_words(const QString& text, Style style) {
    constexpr double kWord = millimetres(28);  // longer words are broken
    least = std::max(least, std::min(widest_word(text, style), kWord));
  }
  void add(double around) {
    wide += around;
    natural += around;
    least += around;
  }
};

// A text behind figures keeps away from them.
double inset(const SheetTable& table, std::size_t column) {
  using enum SheetTable::Holds;
  const bool behind = column > 0 && table.columns[column - 1].holds == kFigures;
  return behind && table.columns[column].holds == kText ? 2 * kPad : 0;
}

std::vector<Need> needs_of(const SheetTable& table) {
  std::vector<Need> needs(table.columns.size());
  for (std::size_t c = 0; c < needs.size(); ++c) {
    needs[c].hold_title(table.columns[c].title);
    for (const auto& row : table.rows) needs[c].hold(row[c], Style::kText);
    if (!table.total.empty()) needs[c].hold(table.total[c], Style::kStrong);
    needs[c].add(2 * kPad + inset(table, c) + kPoint);
  }
  return needs;
}

double sum(const std::vector<double>& widths) { return std::accumulate(widths.begin(), widths.end(), 0.0); }

// Headings are broken first, then wide columns give until all fit; room to spare goes to all alike.
std::vector<double> widths_of(const std::vector<Need>& needs, double room) {
  std::vector<double> wide, natural, least;
  for (const Need& need : needs) {
    wide.push_back(need.wide);
    natural.push_back(need.natural);
    least.push_back(need.least);
  }
  std::vector<double>& widths = sum(wide) <= room ? wide : natural;
  const double over = sum(widths) - room, spare = sum(widths) - sum(least);
  for (std::size_t c = 0; c < widths.size(); ++c) {
    if (over <= 0) {
      widths[c] -= over / static_cast<double>(widths.size());
    } else if (over <= spare) {
      widths[c] -= over * (widths[c] - least[c]) / spare;
    } else {
      widths[c] = least[c] * room / sum(least);
    }
  }
  return widths;
}

}  // namespace

Flow::Flow(const QSizeF& paper, const Head& head)
    : paper_(paper), head_(head), width_(room_of(paper)), bottom_(paper.height() - kMargin - kPoint) {
  start_page();
  if (!head_.note.isEmpty()) note(head_.note);
}

double Flow::room_of(const QSizeF& paper) { return paper.width() - 2 * kMargin; }

double Flow::natural_width(const SheetTable& table) {
  double width = 0;
  for (const Need& need : needs_of(table)) width += need.wide;
  return width;
}

// ---- Pages.

void Flow::start_page() {
  pages_.emplace_back();
  at_ = millimetres(12);
  text(head_.left, 0, width_ * 0.7, Style::kStrong);
  text(head_.right, width_ * 0.7, width_ * 0.3, Style::kStrong, Page::Side::kRight);
  at_ += line_height(Style::kStrong) + 2 * kPoint;
  text(head_.title, 0, width_, Style::kTitle);
  text(head_.mark, 0, width_, Style::kHeading, Page::Side::kRight);
  at_ += line_height(Style::kTitle) + kPad;
  rule(kThick);
  at_ += kGap;
}

void Flow::need(double height) {
  if (left_to_bottom() < height) start_page();
}

void Flow::text(const QString& text, double left, double width, Style style, Page::Side side) {
  if (!text.isEmpty())
    page().texts.push_back({{kMargin + left, at_, width, line_height(style)}, text, style, side});
}

void Flow::rule(double thick) {
  page().fills.push_back({{kMargin, at_, width_, thick}, thick > kHair ? QColor(Qt::black) : kLine});
}

// ---- Groups.

// With what is not to be parted from it.
void Flow::heading(const QString& title, double kept) {
  need(line_height(Style::kHeading) + kPad + kept);
  text(title, 0, width_, Style::kHeading);
  at_ += line_height(Style::kHeading) + kPad;
}

void Flow::group(const office::SheetGroup& group) {
  std::vector<SetTable> tables;
  for (const SheetTable& each : group.tables) tables.push_back(set(each));
  const bool begins_with_table = group.fields.empty() && !tables.empty();
  heading(clean(group.title), begins_with_table ? kept(tables.front()) : 2 * line_height(Style::kText));
  fields(group.fields);
  for (const SetTable& each : tables) put(each);
  if (!group.remark.empty()) note(clean(group.remark));
  if (group.tables.empty()) at_ += kGap;
}

void Flow::note(const QString& note) {
  for (const QString& line : wrapped(note, width_, Style::kLabel)) {
    need(line_height(Style::kLabel));
    text(line, 0, width_, Style::kLabel);
    at_ += line_height(Style::kLabel);
  }
  at_ += kGap;
}

// Two beside each other, each a label and its value.
void Flow::fields(const std::vector<office::SheetField>& fields) {
  constexpr double kOfLabel = 0.44;
  const double half = width_ / 2, label = half * kOfLabel;
  std::vector<Column> columns;
  for (const double left : {0.0, half}) {
    columns.push_back({left, label, Page::Side::kLeft});
    columns.push_back({left + label, half - label, Page::Side::kLeft});
  }
  for (std::size_t f = 0; f < fields.size(); f += 2) {
    std::vector<std::string> cells;
    for (std::size_t i = f; i < std::min(f + 2, fields.size()); ++i) {
      cells.push_back(fields[i].label);
      cells.push_back(fields[i].value.empty() ? "–" : fields[i].value);
    }
    put(row_of(cells, columns, Style::kLabel), columns);
  }
  if (!fields.empty()) at_ += kGap / 2;
}

// ---- Tables.

std::vector<Flow::Column> Flow::columns_of(const SheetTable& table) const {
  const auto widths = widths_of(needs_of(table), width_);
  std::vector<Column> columns;
  double left = 0;
  for (std::size_t c = 0; c < widths.size(); ++c) {
    const bool figures = table.columns[c].holds == SheetTable::Holds::kFigures;
    columns.push_back({left + inset(table, c), widths[c] - inset(table, c),
                       figures ? Page::Side::kRight : Page::Side::kLeft});
    left += widths[c];
  }
  return columns;
}

Flow::SetTable Flow::set(const SheetTable& table) const {
  SetTable all{columns_of(table)};
  std::vector<std::string> titles;
  for (const auto& column : table.columns) titles.push_back(column.title);
  all.headings = row_of(titles, all.columns, Style::kStrong);
  for (const auto& row : table.rows) all.rows.push_back(row_of(row, all.columns, Style::kText));
  if (!table.total.empty()) all.total = row_of(table.total, all.columns, Style::kStrong);
  return all;
}

// A table of a few lines stands as a whole, of a longer one the first line with its headings.
double Flow::kept(const SetTable& table) const {
  const double part = (bottom_ - kMargin) / 3;
  double height = table.headings.height + table.total.height;
  const double first = height + (table.rows.empty() ? 0 : table.rows.front().height);
  for (const Row& row : table.rows) {
    height += row.height;
    if (height > part) return first;
  }
  return height;
}

Flow::Row Flow::row_of(const std::vector<std::string>& cells, const std::vector<Column>& columns,
                       Style style) {
  Row row{{}, style};
  qsizetype lines = 1;
  for (std::size_t c = 0; c < cells.size(); ++c) {
    row.cells.push_back(
        wrapped(clean(cells[c]), columns[c].width - 2 * kPad, style == Style::kLabel ? Style::kText : style));
    lines = std::max(lines, row.cells.back().size());
  }
  row.height = static_cast<double>(lines) * line_height(style) + 2 * kPoint;
  return row;
}

// Fields have their labels in the columns of even numbers.
void Flow::put(const Row& row, const std::vector<Column>& columns) {
  need(row.height);
  const double top = at_ + kPoint;
  for (std::size_t c = 0; c < row.cells.size(); ++c) {
    const bool value = row.style == Style::kLabel && c % 2 == 1;
    at_ = top;
    for (const QString& line : row.cells[c]) {
      text(line, columns[c].left + kPad, columns[c].width - 2 * kPad, value ? Style::kText : row.style,
           columns[c].side);
      at_ += line_height(row.style);
    }
  }
  at_ = top - kPoint + row.height;
}

void Flow::put_headings(const SetTable& table) {
  page().fills.push_back({{kMargin, at_, width_, table.headings.height}, kShade});
  put(table.headings, table.columns);
}

void Flow::table(const SheetTable& table) { put(set(table)); }

void Flow::put(const SetTable& table) {
  need(kept(table));
  put_headings(table);
  for (std::size_t r = 0; r < table.rows.size(); ++r) {
    const bool last = r + 1 == table.rows.size();
    if (left_to_bottom() < table.rows[r].height + (last ? table.total.height : 0)) {
      start_page();
      put_headings(table);
    }
    put(table.rows[r], table.columns);
    rule(kHair);
  }
  put(table.total, table.columns);
  at_ += kGap;
}

void put_feet(std::vector<Page>& pages, const QSizeF& paper, const Source& source) {
  const double width = Flow::room_of(paper), top = paper.height() - kFoot - line_height(Style::kNote);
  for (std::size_t p = 0; p < pages.size(); ++p) {
    const QString number = QString("page %1 / %2").arg(p + 1).arg(pages.size());
    const auto put = [&](const QString& text, double left, double part, Page::Side side) {
      pages[p].texts.push_back(
          {{kMargin + left, top, part, line_height(Style::kNote)}, text, Style::kNote, side});
    };
    pages[p].fills.push_back({{kMargin, top - kPad, width, kHair}, kLine});
    put(source.base, 0, width / 2, Page::Side::kLeft);
    put("Imprimé le " + source.moment, width / 2 - millimetres(25), width / 2, Page::Side::kLeft);
    put(number, width / 2, width / 2, Page::Side::kRight);
  }
}

}  // namespace velanor::app::paper
