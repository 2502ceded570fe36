#include "exchange/csv.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <optional>
#include <utility>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "text/utf8.h"

namespace velanor::exchange {
namespace {

constexpr std::size_t kBlock = 64;

// A bit for each of 64 bytes that is one of the two.
std::uint64_t found(const char* block, char one, char other) {
  std::uint64_t bits = 0;
#if defined(__SSE2__)
  const __m128i ones = _mm_set1_epi8(one), others = _mm_set1_epi8(other);
  for (int part = 0; part < 4; ++part) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block + 16 * part));
    const __m128i is_one = _mm_or_si128(_mm_cmpeq_epi8(bytes, ones), _mm_cmpeq_epi8(bytes, others));
    bits |= static_cast<std::uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(is_one))) << (16 * part);
  }
#else
  for (std::size_t i = 0; i < kBlock; ++i)
    bits |= static_cast<std::uint64_t>(block[i] == one || block[i] == other) << i;
#endif
  return bits;
}

// A single semicolon decides: headings such as 30,1,2 hold commas of their own. Nothing where the row does
// not end in the text, nor is decided.
std::optional<char> separator_of_first_row(std::string_view text) {
  bool quoted = false;
  char before = ',';
  for (const char c : text) {
    // Quotes mean something at the start of a field, and from there on.
    if (c == '"' && (quoted || before == ';' || before == ',' || before == '"')) quoted = !quoted;
    if (!quoted && c == ';') return ';';
    if (!quoted && c == '\n') return ',';
    before = c;
  }
  return std::nullopt;
}

bool is_blank(std::string_view field) { return text::trim(field).empty(); }

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
    : CsvReader(std::make_shared<TableSource>(in), most_fields) {}

CsvReader::CsvReader(std::shared_ptr<TableSource> source, std::size_t most_fields)
    : most_fields_(most_fields), text_(std::move(source)) {
  skip_remarks();
  find_separator();
}

// As much again as there is, so that a row of any length is looked at a few times. False: nothing follows.
bool CsvReader::read_more() {
  if (is_rest_) return false;
  window_.erase(0, std::exchange(at_, 0));
  block_ = kCut;
  const std::size_t enough = 2 * window_.size();
  do {
    is_rest_ = !text_.next(window_);
  } while (!is_rest_ && window_.size() < enough);
  return at_ < window_.size();
}

// A spreadsheet may have put a remark between quotes, or separators behind it.
void CsvReader::skip_remarks() {
  while (!at_end()) {
    if (window_.size() - at_ < 2) read_more();
    if (window_.compare(at_, 1, "#") != 0 && window_.compare(at_, 2, "\"#") != 0) return;
    std::size_t end = window_.find('\n', at_);
    for (; end == window_.npos && !is_rest_; end = window_.find('\n', at_)) read_more();
    at_ = end == window_.npos ? window_.size() : end + 1;
    if (end != window_.npos) ++line_;
  }
}

void CsvReader::find_separator() {
  auto separator = separator_of_first_row(std::string_view(window_).substr(at_));
  while (!separator && !is_rest_) {
    read_more();
    separator = separator_of_first_row(std::string_view(window_).substr(at_));
  }
  separator_ = separator.value_or(',');
}

bool CsvReader::next(CsvRowView& row) {
  while (read(row)) {
    const bool blank = std::all_of(row.fields.begin(), row.fields.end(), is_blank);
    if (!blank || !row.fault.empty()) return true;
  }
  return false;
}

bool CsvReader::next(CsvRow& row) {
  CsvRowView view;
  if (!next(view)) return false;
  row = {view.line, {view.fields.begin(), view.fields.end()}, view.fault, view.too_many_fields};
  return true;
}

bool CsvReader::read(CsvRowView& row) {
  if (at_end()) return false;
  while (!read_whole(row)) read_more();
  return true;
}

// False: the row goes on behind the window.
bool CsvReader::read_whole(CsvRowView& row) {
  row.line = line_;
  row.fields.clear();
  row.fault.clear();
  row.too_many_fields = false;
  unquoted_.clear();
  int lines = 0;
  std::size_t at = read_field(at_, row, lines);
  while (at != kCut && at < window_.size() && window_[at] == separator_) at = read_field(at + 1, row, lines);
  if (at == kCut) return false;
  if (at < window_.size()) {
    at += window_[at] == '\r' ? 2 : 1;
    ++lines;
  }
  at_ = at;
  line_ += lines;
  return true;
}

// Returns where it ends, or that this is not known yet.
std::size_t CsvReader::read_field(std::size_t at, CsvRowView& row, int& lines) {
  const bool quoted = at < window_.size() && window_[at] == '"';
  const std::size_t end = quoted ? read_quoted(at + 1, row, lines) : end_of_field(at);
  if (end == kCut) return kCut;
  if (!quoted) row.fields.emplace_back(&window_[at], end - at);
  if (std::string_view& field = row.fields.back(); is_neutralized(field)) field.remove_prefix(1);
  if (row.fields.size() > most_fields_) {
    row.fault = "plus de " + std::to_string(most_fields_) + " champs";
    row.too_many_fields = true;
    row.fields.pop_back();
  }
  return end;
}

// From behind the quote that opens it.
std::size_t CsvReader::read_quoted(std::size_t at, CsvRowView& row, int& lines) {
  std::string* apart = nullptr;
  const auto take = [&](std::size_t begin, std::size_t end) {
    if (apart == nullptr) apart = &unquoted_.emplace_back();
    apart->append(window_, begin, end - begin);
  };
  while (true) {
    const std::size_t quote = std::min(window_.find('"', at), window_.size());
    if (quote + 1 >= window_.size() && !is_rest_) return kCut;
    lines += static_cast<int>(std::count(&window_[at], &window_[quote], '\n'));
    if (window_.compare(quote, 2, "\"\"") == 0) {
      take(at, quote + 1);
      at = quote + 2;
      continue;
    }
    const bool closed = quote < window_.size();
    const std::size_t end = closed ? end_of_field(quote + 1) : quote;
    if (end == kCut) return kCut;
    const bool text_behind = closed && end > quote + 1;
    if (apart != nullptr || text_behind) take(at, quote);
    if (text_behind) take(quote + 1, end);
    row.fields.push_back(apart != nullptr ? std::string_view(*apart)
                                          : std::string_view(window_).substr(at, quote - at));
    if (!closed) row.fault = "un guillemet n'est pas refermé";
    if (text_behind) row.fault = "un guillemet fermant est suivi d'autre chose que d'un séparateur";
    return end;
  }
}

// The next separator or line end.
std::size_t CsvReader::end_of_field(std::size_t at) {
  if (block_ == kCut || at - block_ >= kBlock) {
    block_ = at;
    ends_ = at < window_.size() ? ends_in_block(at) : 0;
  } else {
    ends_ &= ~std::uint64_t{0} << (at - block_);
  }
  while (ends_ == 0) {
    block_ += kBlock;
    if (block_ >= window_.size()) {
      block_ = kCut;
      return is_rest_ ? window_.size() : kCut;
    }
    ends_ = ends_in_block(block_);
  }
  const std::size_t end = block_ + static_cast<std::size_t>(std::countr_zero(ends_));
  return window_[end] == '\n' && end > at && window_[end - 1] == '\r' ? end - 1 : end;
}

std::uint64_t CsvReader::ends_in_block(std::size_t block) const {
  if (block + kBlock <= window_.size()) return found(&window_[block], separator_, '\n');
  // Behind the end stand NULs, which end nothing.
  std::array<char, kBlock> rest{};
  std::memcpy(rest.data(), &window_[block], window_.size() - block);
  return found(rest.data(), separator_, '\n');
}

void append_field(std::string& row, std::string_view field, char separator) {
  if (field.empty()) return;
  const bool harmless = !looks_like_formula(field) && !is_neutralized(field);
  bool quoted = field.front() == ' ' || field.back() == ' ';
  for (const char c : field) quoted |= c == '"' || c == '\r' || c == '\n' || c == separator;
  if (quoted && harmless) row += '"';
  if (!harmless) row += quoted ? "\"'" : "'";
  if (!quoted) {
    row += field;
    return;
  }
  for (const char c : field) row.append(c == '"' ? 2 : 1, c);
  row += '"';
}

void write_row(std::ostream& out, const std::vector<std::string>& fields, char separator) {
  std::string row;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (i > 0) row += separator;
    append_field(row, fields[i], separator);
  }
  out << row << '\n';
}

}  // namespace velanor::exchange
