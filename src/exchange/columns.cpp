#include "exchange/columns.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "card/record/reference_layout.h"
#include "control/session/years.h"
#include "demo/source.h"
#include "demo/table.h"
#include "text/utf8.h"
#include "velanor/date.h"

namespace velanor::exchange {
namespace {

struct IdName {
  std::string_view name;
  IdPart part;
};
constexpr IdName kIdNames[] = {
    {"Code", IdPart::kEmployee}, {"Entité", IdPart::kEntity}, {"Année", IdPart::kYear}};

// What has a position but no name of its own.
struct Label {
  std::string_view file;
  int attribute;
  std::string_view text;
};
constexpr Label kLabels[] = {
    {"BUDGETPARAM", control::kReferenceDates, "Date de référence"},
    {"BUDGETHISTORCUMUL", card::calculation::kGross, "Brut"},
    {"BUDGETHISTORCUMUL", card::calculation::kCharges, "Charges"},
    {"BUDGETDETAILCALCUL", card::calculation::kGross, "Brut"},
    {"BUDGETDETAILCALCUL", card::calculation::kCharges, "Charges"},
    {kCardFile, card::kStatus.number, "État du calcul"},
};
// No file of ours comes near it, and a record is as long as its last number is high.
constexpr int kMaxColumnNumber = 9999;
constexpr std::string_view kResultLabel = "Résultat du calcul";

bool same_name(std::string_view a, std::string_view b) { return text::upper(a) == text::upper(b); }

// Numbers from 1 between separators, all of the text; nothing for anything else.
std::optional<std::vector<int>> numbers_of(std::string_view text, char separator) {
  std::vector<int> numbers;
  const char* at = text.data();
  const char* const end = at + text.size();
  while (true) {
    int number = 0;
    const auto read = std::from_chars(at, end, number);
    if (read.ec != std::errc() || number < 1 || number > kMaxColumnNumber) return std::nullopt;
    numbers.push_back(number);
    if (read.ptr == end) return numbers;
    if (*read.ptr != separator) return std::nullopt;
    at = read.ptr + 1;
  }
}

std::optional<Column> position_column(std::string_view heading) {
  const auto numbers = numbers_of(heading.substr(0, heading.find(' ')), ',');
  if (!numbers || numbers->size() > 3) return std::nullopt;
  Column column;
  int* const levels[] = {&column.position.attribute, &column.position.value, &column.position.subvalue};
  for (std::size_t i = 0; i < numbers->size(); ++i) *levels[i] = (*numbers)[i];
  return column;
}

// The first line of the source that the demonstration makes the file of; empty where it has none.
demo::Row source_headings(std::string_view file) {
  const std::string name = file == "COMMUNES" ? "communes.csv" : "reference/" + std::string(file) + ".csv";
  for (const demo::Source& source : demo::sources()) {
    if (source.name == name) return demo::read_table(source.text).columns;
  }
  return {};
}

// The attribute that a heading of a source stands for, and its text without the number.
std::pair<int, std::string_view> source_column(const demo::Row& headings, std::size_t index) {
  const std::string_view heading = headings[index];
  const int number = demo::number_of(heading);
  if (number == 0) return {static_cast<int>(index), heading};
  return {number, text::trim(heading.substr(std::min(heading.find(' '), heading.size())))};
}

std::optional<Column> source_named_column(std::string_view name, std::string_view file) {
  const demo::Row headings = source_headings(file);
  for (std::size_t i = 0; i < headings.size(); ++i) {
    const auto [attribute, label] = source_column(headings, i);
    if (!same_name(label, name)) continue;
    return i == 0 ? Column{.id = IdPart::kWhole} : Column{.position = {attribute}};
  }
  return std::nullopt;
}

std::string label_of(int attribute, std::string_view file) {
  if (file == kCardFile) {
    if (const card::Field* field = card::card_field(attribute)) return std::string(field->name);
    const auto is_it = [=](const card::Field& result) { return result.number == attribute; };
    if (std::any_of(card::kResults.begin(), card::kResults.end(), is_it)) return std::string(kResultLabel);
  }
  for (const Label& label : kLabels) {
    if (label.file == file && label.attribute == attribute) return std::string(label.text);
  }
  const demo::Row headings = source_headings(file);
  for (std::size_t i = 1; i < headings.size(); ++i) {
    const auto [number, label] = source_column(headings, i);
    if (number == attribute) return std::string(label);
  }
  return {};
}

const card::Field* find_name(std::string_view name) {
  const auto fields = card::card_fields();
  const auto found = std::find_if(fields.begin(), fields.end(),
                                  [&](const card::Field& known) { return same_name(known.name, name); });
  return found == fields.end() ? nullptr : &*found;
}

std::optional<Column> card_named_column(std::string_view heading) {
  for (const IdName& known : kIdNames) {
    if (same_name(known.name, heading)) return Column{.id = known.part};
  }
  if (const auto* whole = find_name(heading)) return Column{.position = {whole->number}, .named = whole};
  const std::size_t blank = heading.rfind(' ');
  if (blank == heading.npos) return std::nullopt;
  const auto* const named = find_name(heading.substr(0, blank));
  const auto numbers = numbers_of(heading.substr(blank + 1), '.');
  if (named == nullptr || !numbers || numbers->size() > 2) return std::nullopt;
  return Column{.position = {named->number, numbers->front(), numbers->size() > 1 ? numbers->back() : 0},
                .named = named};
}

std::string read_flag(const card::Field& flag, std::string_view field, std::string& stored) {
  std::string words;
  for (const card::FlagWord& known : card::flag_words()) {
    if (known.field != flag) continue;
    if (same_name(field, known.word) || same_name(field, known.letter)) {
      stored = known.letter;
      return {};
    }
    words += (words.empty() ? "" : " ou ") + std::string(known.word);
  }
  return "« " + std::string(field) + " » n'est pas " + words;
}

std::string flag_word(const card::Field& flag, std::string_view letter) {
  for (const card::FlagWord& known : card::flag_words()) {
    if (known.field == flag && known.letter == letter) return std::string(known.word);
  }
  return std::string(letter);
}

}  // namespace

std::optional<Column> column_of(std::string_view heading, std::string_view file) {
  heading = text::trim(heading);
  if (same_name(heading, "id")) return Column{.id = IdPart::kWhole};
  if (auto column = position_column(heading)) return column;
  return file == kCardFile ? card_named_column(heading) : source_named_column(heading, file);
}

std::string heading_of(const store::Position& position, std::string_view file) {
  std::string heading = store::position_text(position);
  const std::string label = label_of(position.attribute, file);
  return label.empty() ? heading : heading + " " + label;
}

std::string name_of(const store::Position& position, std::string_view file) {
  const card::Field* field = file == kCardFile ? card::card_field(position.attribute) : nullptr;
  if (field == nullptr) return heading_of(position, file);
  std::string name(field->name);
  if (position.value != 0) name += " " + std::to_string(position.value);
  if (position.subvalue != 0) name += "." + std::to_string(position.subvalue);
  return name;
}

std::string read_field(const card::Codec& codec, const Column& column, std::string_view field,
                       std::string& stored) {
  stored = field;
  if (column.named == nullptr) return {};
  field = text::trim(field);
  const card::Encoding encoding = column.named->encoding;
  if (encoding == card::Encoding::kFlag && !field.empty()) return read_flag(*column.named, field, stored);
  if (const auto kept = card::Codec::decimals_exceeded(encoding, field))
    return "« " + std::string(field) + " » a plus de " + std::to_string(*kept) + " décimales";
  stored = codec.stored(encoding, field);
  if (!stored.empty() || field.empty()) return {};
  const bool date = encoding == card::Encoding::kDate;
  return "« " + std::string(field) + (date ? " » n'est pas une date (jj/mm/aaaa)" : " » n'est pas un nombre");
}

std::string write_field(const card::Codec& codec, const Column& column, std::string_view stored) {
  if (column.named == nullptr) return std::string(stored);
  const card::Encoding encoding = column.named->encoding;
  return encoding == card::Encoding::kFlag ? flag_word(*column.named, stored) : codec.shown(encoding, stored);
}

void set_values(store::DbRecord& record, int attribute, int first, std::string_view field) {
  const demo::Row values = demo::split(field, kValueSeparator);
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (!values[i].empty()) record.set(attribute, first + static_cast<int>(i), values[i]);
  }
}

}  // namespace velanor::exchange
