#include "app/velanorctl/table.h"

#include <algorithm>
#include <cstddef>

#include "text/utf8.h"
#include "velanor/record.h"

namespace velanor::app {
namespace {

struct Range {
  char32_t first, last;
};
constexpr Range kCombining[] = {
    {0x300, 0x36F}, {0x1AB0, 0x1AFF}, {0x200B, 0x200F}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}};
constexpr Range kWide[] = {{0x1100, 0x115F},   {0x2E80, 0xA4CF},  {0xAC00, 0xD7A3}, {0xF900, 0xFAFF},
                           {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},  {0xFFE0, 0xFFE6}, {0x1F300, 0x1F64F},
                           {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};

template <std::size_t N>
bool is_in(const Range (&ranges)[N], char32_t character) {
  return std::any_of(std::begin(ranges), std::end(ranges),
                     [=](const Range& range) { return range.first <= character && character <= range.last; });
}

int width_of(char32_t character) {
  return is_in(kCombining, character) ? 0 : is_in(kWide, character) ? 2 : 1;
}

bool is_control(char32_t character) { return character < 0x20 || (character >= 0x7F && character < 0xA0); }

void print_row(const std::vector<std::string>& row, const std::vector<int>& widths, std::ostream& out) {
  for (std::size_t i = 0; i < row.size(); ++i) {
    out << (i > 0 ? "  " : "") << row[i];
    // Nothing behind the last column: lines without blanks at their end copy better.
    if (i + 1 < row.size()) {
      out << std::string(static_cast<std::size_t>(widths[i] - display_width(row[i])), ' ');
    }
  }
  out << "\n";
}

}  // namespace

int display_width(std::string_view text) {
  int width = 0;
  for (std::size_t at = 0; at < text.size();) width += width_of(text::next(text, at));
  return width;
}

std::string printable(std::string_view stored) {
  std::string text;
  for (std::size_t at = 0; at < stored.size();) {
    if (stored[at] == store::kValueMark || stored[at] == store::kSubvalueMark) {
      text += " | ";
      ++at;
      continue;
    }
    const char32_t character = text::next(stored, at);
    text::append(text, is_control(character) ? U'·' : character);
  }
  return text;
}

void TextTable::print(std::ostream& out) const {
  std::vector<int> widths(rows_.front().size());
  for (const auto& row : rows_) {
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], display_width(row[i]));
  }
  std::vector<std::string> rule;
  rule.reserve(widths.size());
  for (const int width : widths) rule.emplace_back(static_cast<std::size_t>(width), '-');
  print_row(rows_.front(), widths, out);
  print_row(rule, widths, out);
  for (std::size_t i = 1; i < rows_.size(); ++i) print_row(rows_[i], widths, out);
}

}  // namespace velanor::app
