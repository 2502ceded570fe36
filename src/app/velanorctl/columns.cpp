#include "app/velanorctl/columns.h"

#include <algorithm>
#include <charconv>

#include "entry/date.h"
#include "entry/decimal.h"
#include "text/utf8.h"

namespace velanor::app {
namespace {

template <card::Encoding E>
constexpr NamedAttribute named(std::string_view name, card::Attribute<E> attribute, int length = 0) {
  return {name, attribute.number, E, length};
}

constexpr NamedAttribute kNames[] = {
    named("Nom", card::kName),
    named("Horaire de l'établissement", card::kEstablishmentHours),
    named("Convention", card::kAgreement, 2),
    named("Secteur", card::kSector, 3),
    named("Commune", card::kTown),
    named("Type de contrat", card::kContractType),
    named("Personnel", card::kStaffKind),
    named("Début de contrat", card::kContractStart),
    named("Date de naissance", card::kBirth),
    named("Profil 1", card::kProfile1, 3),
    named("Profil 2", card::kProfile2, 3),
    named("Heures exonérées", card::kExemptedHours),
    named("Plafond", card::kCeiling),
    named("Fin de contrat", card::kContractEnd),
    named("Motif de fin", card::kEndReason),
    named("Assiette", card::kSocialBase),
    named("Établissement", card::kEstablishment, card::kEstablishmentCodeLength),
    named("Mutuelle salarié", card::kMutualEmployee),
    named("Mutuelle employeur", card::kMutualEmployer),
    named("Charge de mutuelle", card::kMutualCharge, 3),
    named("Nature du contrat", card::kContractNature),
    named("Entrée dans la branche", card::kBranchEntry),
    named("Niveau d'études", card::kEducation),
    named("Activité", card::kActivity, 6),
    named("Part", card::kShare),
    named("Date d'effet", card::kEffective),
    named("Départ de grille", card::kGridStart),
    named("Qualification", card::kQualification),
    named("Grille", card::kGrid),
    named("Catégorie", card::kCategory),
    named("Taux horaire", card::kHourlyRate),
    named("Durée mensuelle", card::kMonthlyTime),
    named("Nouvelle mesure", card::kNewMeasure),
    named("Rubrique", card::kItemCode, 3),
    named("Base", card::kItemBase),
    named("Taux", card::kItemRate),
    named("Montant", card::kItemAmount),
};

struct IdName {
  std::string_view name;
  IdPart part;
};
constexpr IdName kIdNames[] = {
    {"Code", IdPart::kEmployee}, {"Entité", IdPart::kEntity}, {"Année", IdPart::kYear}};

// The letters of a flag, and the words that the screen has for them.
struct FlagWord {
  int attribute;
  std::string_view letter, word;
};
constexpr FlagWord kFlagWords[] = {
    {card::kContractType, "D", "CDD"},     {card::kContractType, "I", "CDI"},
    {card::kStaffKind, "P", "PRODUCTION"}, {card::kStaffKind, "A", "ADMINISTRATION"},
    {card::kNewMeasure, "O", "OUI"},       {card::kNewMeasure, "N", "NON"},
};

int decimals(card::Encoding encoding) {
  switch (encoding) {
    case card::Encoding::kHundredths:
      return 2;
    case card::Encoding::kThousandths:
      return 3;
    case card::Encoding::kTenThousandths:
      return 4;
    default:
      return 0;
  }
}

bool same_name(std::string_view a, std::string_view b) { return text::upper(a) == text::upper(b); }

// Numbers from 1 between separators, all of the text; nothing for anything else.
std::optional<std::vector<int>> numbers_of(std::string_view text, char separator) {
  std::vector<int> numbers;
  const char* at = text.data();
  const char* const end = at + text.size();
  while (true) {
    int number = 0;
    const auto read = std::from_chars(at, end, number);
    if (read.ec != std::errc() || number < 1 || number > store::kMaxNumber) return std::nullopt;
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

const NamedAttribute* find_name(std::string_view name) {
  const auto* const found =
      std::find_if(std::begin(kNames), std::end(kNames),
                   [&](const NamedAttribute& known) { return same_name(known.name, name); });
  return found == std::end(kNames) ? nullptr : found;
}

std::optional<Column> named_column(std::string_view heading) {
  for (const IdName& known : kIdNames) {
    if (same_name(known.name, heading)) return Column{.id = known.part};
  }
  if (const auto* whole = find_name(heading)) return Column{.position = {whole->attribute}, .named = whole};
  const std::size_t blank = heading.rfind(' ');
  if (blank == heading.npos) return std::nullopt;
  const auto* const named = find_name(heading.substr(0, blank));
  const auto numbers = numbers_of(heading.substr(blank + 1), '.');
  if (named == nullptr || !numbers || numbers->size() > 2) return std::nullopt;
  return Column{.position = {named->attribute, numbers->front(), numbers->size() > 1 ? numbers->back() : 0},
                .named = named};
}

std::string read_flag(int attribute, std::string_view field, std::string& stored) {
  std::string words;
  for (const FlagWord& flag : kFlagWords) {
    if (flag.attribute != attribute) continue;
    if (same_name(field, flag.word) || same_name(field, flag.letter)) {
      stored = flag.letter;
      return {};
    }
    words += (words.empty() ? "" : " ou ") + std::string(flag.word);
  }
  return "« " + std::string(field) + " » n'est pas " + words;
}

std::string read_date(std::string_view field, std::string& stored) {
  const auto date = entry::parse_date(field);
  if (!date) return "« " + std::string(field) + " » n'est pas une date (jj/mm/aaaa)";
  stored = std::to_string(*entry::day_number(*date));
  return {};
}

std::string read_number(std::string_view field, int scale, std::string& stored) {
  const auto number = entry::parse_decimal(field, scale);
  if (!number) return "« " + std::string(field) + " » n'est pas un nombre";
  stored = std::to_string(*number);
  return {};
}

bool is_number(std::string_view text) {
  int number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  return read.ec == std::errc() && read.ptr == text.data() + text.size();
}

std::string flag_word(int attribute, std::string_view letter) {
  for (const FlagWord& flag : kFlagWords) {
    if (flag.attribute == attribute && flag.letter == letter) return std::string(flag.word);
  }
  return std::string(letter);
}

// What is no day of a calendar is shown as it stands.
std::string date_or_itself(std::string_view stored) {
  if (!is_number(stored)) return std::string(stored);
  const std::string text = entry::date_text(entry::date_of(std::stoi(std::string(stored))));
  return entry::parse_date(text) ? text : std::string(stored);
}

int or_whole(int number) { return number == 0 ? store::kWhole : number; }

}  // namespace

std::optional<Column> column_of(std::string_view heading, std::string_view file) {
  heading = text::trim(heading);
  if (same_name(heading, "id")) return Column{.id = IdPart::kWhole};
  if (auto column = position_column(heading)) return column;
  return file == kCardFile ? named_column(heading) : std::nullopt;
}

std::string heading_of(const play::Position& position) {
  std::string heading = std::to_string(position.attribute);
  for (const int level : {position.value, position.subvalue}) {
    if (level != 0) heading += "," + std::to_string(level);
  }
  return heading;
}

std::string name_of(const play::Position& position) {
  const auto* const found =
      std::find_if(std::begin(kNames), std::end(kNames),
                   [&](const NamedAttribute& known) { return known.attribute == position.attribute; });
  if (found == std::end(kNames)) return heading_of(position);
  std::string name(found->name);
  if (position.value != 0) name += " " + std::to_string(position.value);
  if (position.subvalue != 0) name += "." + std::to_string(position.subvalue);
  return name;
}

std::string read_field(const Column& column, std::string_view field, std::string& stored) {
  stored = field;
  if (column.named == nullptr) return {};
  field = text::trim(field);
  stored = field;
  if (field.empty()) return {};
  switch (column.named->encoding) {
    case card::Encoding::kDate:
      return read_date(field, stored);
    case card::Encoding::kFlag:
      return read_flag(column.named->attribute, field, stored);
    case card::Encoding::kHundredths:
    case card::Encoding::kThousandths:
    case card::Encoding::kTenThousandths:
      return read_number(field, decimals(column.named->encoding), stored);
    default:
      if (is_number(field)) stored = text::pad_left(field, column.named->length, '0');
      return {};
  }
}

std::string write_field(const Column& column, std::string_view stored) {
  if (column.named == nullptr || stored.empty()) return std::string(stored);
  switch (column.named->encoding) {
    case card::Encoding::kDate:
      return date_or_itself(stored);
    case card::Encoding::kFlag:
      return flag_word(column.named->attribute, stored);
    case card::Encoding::kHundredths:
    case card::Encoding::kThousandths:
    case card::Encoding::kTenThousandths: {
      const int scale = decimals(column.named->encoding);
      return entry::stored_to_text(stored, scale, scale);
    }
    default:
      return std::string(stored);
  }
}

std::string_view element(const store::DbRecord& record, const play::Position& position) {
  return record(position.attribute, or_whole(position.value), or_whole(position.subvalue));
}

void set_element(store::DbRecord& record, const play::Position& position, std::string_view text) {
  if (position.value == 0) {
    record.set(position.attribute, text);
  } else if (position.subvalue == 0) {
    record.set(position.attribute, position.value, text);
  } else {
    record.set(position.attribute, position.value, position.subvalue, text);
  }
}

}  // namespace velanor::app
