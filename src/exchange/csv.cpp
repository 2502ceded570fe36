#include "exchange/csv.h"

#include <algorithm>
#include <iterator>

#include "exchange/windows_1252.h"
#include "text/utf8.h"
#include "velanor/record.h"

namespace velanor::exchange {
namespace {

constexpr std::string_view kUnreadable =
    "le tableau n'est écrit ni en UTF-8 ni en Windows-1252 ; enregistrez-le au format « CSV UTF-8 », puis "
    "recommencez";

// A single semicolon decides: headings such as 30,1,2 hold commas of their own.
char separator_of_first_row(std::string_view text) {
  bool quoted = false;
  char before = ',';
  for (const char c : text) {
    // Quotes mean something at the start of a field, and from there on.
    if (c == '"' && (quoted || before == ';' || before == ',' || before == '"')) quoted = !quoted;
    if (!quoted && c == ';') return ';';
    if (!quoted && c == '\n') break;
    before = c;
  }
  return ',';
}

bool is_blank(const std::string& field) { return text::trim(field).empty(); }

int line_of(std::string_view text, std::size_t at) {
  return 1 + static_cast<int>(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
}

// Where the first byte stands that cannot enter a record.
std::size_t first_foreign(std::string_view text) {
  const std::string clean = store::clean_text(text);
  if (clean == text) return text.size();
  const auto differs = std::mismatch(text.begin(), text.end(), clean.begin(), clean.end()).first;
  // The last byte may be the first one of what takes its place.
  return std::min(static_cast<std::size_t>(differs - text.begin()), text.size() - 1);
}

bool needs_quotes(std::string_view field, char separator) {
  if (field.empty()) return false;
  const bool special = field.find_first_of("\"\r\n") != field.npos || field.find(separator) != field.npos;
  return special || field.front() == ' ' || field.back() == ' ';
}

std::string doubled_quotes(std::string_view field) {
  std::string text;
  for (const char c : field) text.append(c == '"' ? 2 : 1, c);
  return text;
}

// A number is none, nor is a sign alone.
bool looks_like_formula(std::string_view field) {
  if (field.empty() || std::string_view("=+-@\t\r").find(field.front()) == std::string_view::npos)
    return false;
  const bool sign = field.front() == '+' || field.front() == '-';
  return !sign || field.find_first_not_of("0123456789,. ", 1) != std::string_view::npos;
}

bool is_neutralized(std::string_view field) {
  const std::size_t text = field.find_first_not_of('\'');
  return text > 0 && text != std::string_view::npos && looks_like_formula(field.substr(text));
}

}  // namespace

std::string neutralized(std::string_view field) {
  const bool needed = looks_like_formula(field) || is_neutralized(field);
  return (needed ? "'" : "") + std::string(field);
}

CsvReader::CsvReader(std::istream& in, std::size_t most_fields)
    : most_fields_(most_fields), text_(std::istreambuf_iterator<char>(in), {}) {
  if (const std::size_t foreign = first_foreign(text_); foreign < text_.size()) {
    auto converted = from_windows_1252(text_);
    if (!converted) {
      fault_ = kUnreadable;
      line_ = line_of(text_, foreign);
      text_.clear();
      return;
    }
    text_ = std::move(*converted);
    was_windows_1252_ = true;
  }
  if (text_.starts_with(kByteOrderMark)) at_ = kByteOrderMark.size();
  skip_remarks();
  separator_ = separator_of_first_row(std::string_view(text_).substr(at_));
}

// A spreadsheet may have put a remark between quotes, or separators behind it.
void CsvReader::skip_remarks() {
  const auto is_remark = [this] {
    return text_.compare(at_, 1, "#") == 0 || text_.compare(at_, 2, "\"#") == 0;
  };
  while (!at_end() && is_remark()) {
    at_ = std::min(text_.find('\n', at_), text_.size());
    skip_line_end();
  }
}

bool CsvReader::next(CsvRow& row) {
  while (read(row)) {
    const bool blank = std::all_of(row.fields.begin(), row.fields.end(), is_blank);
    if (!blank || !row.fault.empty()) return true;
  }
  return false;
}

bool CsvReader::at_line_end() const { return text_[at_] == '\n' || text_.compare(at_, 2, "\r\n") == 0; }

void CsvReader::skip_line_end() {
  if (at_end()) return;
  at_ += text_[at_] == '\r' ? 2 : 1;
  ++line_;
}

bool CsvReader::read(CsvRow& row) {
  if (at_end()) return false;
  row = CsvRow();
  row.line = line_;
  while (true) {
    read_field(row);
    if (row.fields.size() > most_fields_) {
      row.fault = "plus de " + std::to_string(most_fields_) + " champs";
      row.too_many_fields = true;
      row.fields.pop_back();
    }
    if (at_end() || text_[at_] != separator_) break;
    ++at_;
  }
  skip_line_end();
  return true;
}

void CsvReader::read_field(CsvRow& row) {
  std::string& field = row.fields.emplace_back();
  if (!at_end() && text_[at_] == '"') read_quoted(row, field);
  while (!at_end() && text_[at_] != separator_ && !at_line_end()) field += text_[at_++];
  if (is_neutralized(field)) field.erase(0, 1);
}

void CsvReader::read_quoted(CsvRow& row, std::string& field) {
  for (++at_; !at_end(); ++at_) {
    if (text_[at_] == '\n') ++line_;
    if (text_[at_] != '"') {
      field += text_[at_];
    } else if (text_.compare(at_, 2, "\"\"") == 0) {
      field += text_[at_++];
    } else {
      ++at_;
      if (!at_end() && text_[at_] != separator_ && !at_line_end())
        row.fault = "un guillemet fermant est suivi d'autre chose que d'un séparateur";
      return;
    }
  }
  row.fault = "un guillemet n'est pas refermé";
}

void write_row(std::ostream& out, const std::vector<std::string>& fields, char separator) {
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (i > 0) out << separator;
    const std::string field = neutralized(fields[i]);
    if (needs_quotes(field, separator)) {
      out << '"' << doubled_quotes(field) << '"';
    } else {
      out << field;
    }
  }
  out << '\n';
}

}  // namespace velanor::exchange
