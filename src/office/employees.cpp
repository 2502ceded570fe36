#include "office/employees.h"

#include <algorithm>
#include <numeric>
#include <optional>

#include "card/record/record_layout.h"
#include "card/record/reference_layout.h"
#include "control/session/card_id.h"
#include "entry/decimal.h"
#include "exchange/columns.h"
#include "office/hours.h"
#include "store/select/collation.h"
#include "text/fold.h"
#include "text/number.h"
#include "velanor/date.h"

namespace velanor::office {
namespace {

// What a row takes from the selection; the id stands before them.
constexpr std::array<card::Field, 9> kRead{card::kName,        card::kEstablishment, card::kSector,
                                           card::kAgreement,   card::kContractType,  card::kContractStart,
                                           card::kContractEnd, card::kStaffKind,     card::kEffective};

// Its place among the elements of a row, from 1.
constexpr int place_of(const card::Field& field) {
  return static_cast<int>(std::find(kRead.begin(), kRead.end(), field) - kRead.begin()) + 2;
}

std::string attributes() {
  std::string list = "0";
  for (const card::Field& field : kRead) list += " " + std::to_string(field.number);
  return list;
}

std::unordered_map<std::string, std::string> labels_of(store::Database& database, const std::string& file) {
  const auto found = database.Select(store::DbQuery("SSELECT " + file, file, "0 1").encoded());
  std::unordered_map<std::string, std::string> labels;
  for (int i = 1; i <= found.DCount(); ++i) labels.emplace(found(i, 1), found(i, 2));
  return labels;
}

std::string label(const std::unordered_map<std::string, std::string>& labels, std::string_view code) {
  const auto found = labels.find(std::string(code));
  return found == labels.end() || found->second.empty() ? std::string(code) : found->second;
}

std::string_view contract(std::string_view letter) {
  return letter == card::kFixedTerm ? "CDD" : letter == card::kPermanent ? "CDI" : letter;
}

std::string_view staff(std::string_view letter) {
  return letter == card::kProduction       ? "Production"
         : letter == card::kAdministrative ? "Administration"
                                           : letter;
}

std::string faults_text(int faults) {
  if (faults == 0) return "complète";
  return std::to_string(faults) + (faults > 1 ? " fautes" : " faute");
}

}  // namespace

std::optional<Column> column_named(std::string_view typed) {
  const std::string name = text::folded(typed);
  std::optional<Column> found;
  if (name.size() < 2) return found;
  for (std::size_t c = 0; c < kColumns; ++c) {
    const std::string title = text::folded(kTitles[c].title);
    if (title == name) return Column(c);
    if (!title.starts_with(name)) continue;
    if (found) return std::nullopt;
    found = Column(c);
  }
  return found;
}

// ---- The texts of a column.

std::uint32_t Texts::add(std::string_view shown, std::optional<std::int64_t> value) {
  if (const auto found = numbers_.find(shown); found != numbers_.end()) return found->second;
  texts_.push_back({std::string(shown), text::folded(shown), value.value_or(0), value.has_value()});
  return numbers_[texts_.back().shown] = size() - 1;
}

std::vector<std::uint32_t> Texts::places(Kind kind) const {
  std::vector<std::string> keys(kind == Kind::kText ? size() : 0);
  store::select::Collator collator;
  for (std::uint32_t n = 0; n < keys.size(); ++n) collator.append_key(texts_[n].shown, keys[n]);
  const auto before = [&](std::uint32_t a, std::uint32_t b) {
    return keys.empty() ? texts_[a].value < texts_[b].value : keys[a] < keys[b];
  };
  std::vector<std::uint32_t> order, places(size(), kLast);
  for (std::uint32_t n = 0; n < size(); ++n) {
    if (keys.empty() ? texts_[n].has_value : !texts_[n].shown.empty()) order.push_back(n);
  }
  std::sort(order.begin(), order.end(), before);
  for (std::uint32_t i = 0, place = 0; i < order.size(); ++i) {
    if (i > 0 && before(order[i - 1], order[i])) place = i;
    places[order[i]] = place;
  }
  return places;
}

// ---- Reading.

Employees::Employees(store::Database& database, const entry::Clock& clock)
    : database_(database), clock_(clock), today_(*entry::day_number(clock())), reading_(database, clock) {}

store::DbResult Employees::select(std::string_view criterion) const {
  const std::string file(exchange::kCardFile);
  return database_.Select(
      store::DbQuery("SSELECT " + file + std::string(criterion), file, attributes()).encoded());
}

void Employees::read_labels() {
  establishments_ = labels_of(database_, "ETABLISSEMENT");
  sectors_ = labels_of(database_, "SECTEUR");
  agreements_ = labels_of(database_, "CONVENTIONCOL");
}

bool Employees::read(const Reach& reach) {
  if (!begin(reach)) return false;
  read_on(read_.DCount());
  return true;
}

bool Employees::begin(const Reach& reach) {
  today_ = *entry::day_number(clock_());
  const auto found =
      select(reach.is_all() ? std::string() : " AVEC 0 = " + store::quoted_end(reach.entity + reach.year));
  if (has_read_ && reach == reach_ && found.same_state(read_) && next_ > read_.DCount()) return false;
  read_labels();
  check_.reset();
  rows_.clear();
  texts_ = {};
  examined_ = 0;
  reach_ = reach;
  read_ = found;
  has_read_ = true;
  next_ = 1;
  rows_.reserve(static_cast<std::size_t>(found.DCount()));
  return true;
}

bool Employees::read_on(int most) {
  for (; most > 0 && next_ <= read_.DCount(); --most, ++next_) {
    if (card::is_record_id(read_(next_, 1))) rows_.push_back(row_of(read_, next_));
  }
  return next_ <= read_.DCount();
}

double Employees::part_read() const {
  return read_.DCount() == 0 ? 1 : static_cast<double>(next_ - 1) / read_.DCount();
}

// A row that is new stands at the end, and an old one too, to be examined again.
bool Employees::renew(std::string_view id) {
  if (!has_read_ || !card::is_record_id(id) || !id.ends_with(reach_.entity + reach_.year)) return false;
  const auto found = select(" AVEC 0 = " + store::quoted(id));
  const auto old = std::find_if(rows_.begin(), rows_.end(), [&](const Row& row) { return row.id == id; });
  if (old != rows_.end()) {
    if (static_cast<std::size_t>(old - rows_.begin()) < examined_) --examined_;
    rows_.erase(old);
  }
  if (found.DCount() > 0) rows_.push_back(row_of(found, 1));
  return true;
}

Employees::Row Employees::row_of(const store::DbResult& found, int record) {
  const auto stored = [&](const card::Field& field) { return found(record, place_of(field)); };
  Row row{std::string(found(record, 1)), {}};
  put(row, Column::kCode, card::employee_of(row.id));
  put(row, Column::kName, stored(card::kName));
  const auto establishment = stored(card::kEstablishment);
  const auto named = establishments_.find(std::string(establishment));
  put(row, Column::kEstablishment,
      named != establishments_.end() && !named->second.empty() ? std::string_view(named->second)
                                                               : card::own_code_of(establishment));
  put(row, Column::kSector, label(sectors_, stored(card::kSector)));
  put(row, Column::kAgreement, label(agreements_, stored(card::kAgreement)));
  put(row, Column::kContract, contract(stored(card::kContractType)));
  put_date(row, Column::kStart, stored(card::kContractStart));
  put_date(row, Column::kEnd, stored(card::kContractEnd));
  put(row, Column::kStaff, staff(stored(card::kStaffKind)));
  int amendments = 0;
  while (!found(record, place_of(card::kEffective), amendments + 1).empty()) ++amendments;
  put_number(row, Column::kAmendments, amendments);
  put(row, Column::kEntity, card::entity_of(row.id));
  const auto year = card::year_of(row.id);
  row.numbers[index_of(Column::kYear)] = texts_[index_of(Column::kYear)].add(year, text::whole_number(year));
  for (const Column later : {Column::kHours, Column::kFullTime, Column::kState}) put(row, later, {});
  return row;
}

void Employees::put_number(Row& row, Column column, std::int64_t value) {
  const int decimals = kTitles[index_of(column)].decimals;
  row.numbers[index_of(column)] =
      texts_[index_of(column)].add(entry::format_decimal(value, decimals, decimals), value);
}

// What is no date is shown as it stands.
void Employees::put_date(Row& row, Column column, std::string_view stored) {
  const auto day = entry::stored_day(stored);
  if (!day) return put(row, column, stored);
  row.numbers[index_of(column)] = texts_[index_of(column)].add(entry::date_text(entry::date_of(*day)), *day);
}

// ---- Examining.

bool Employees::examine(int most) {
  for (; most > 0 && examined_ < rows_.size(); --most) examine(rows_[examined_++]);
  return examined_ < rows_.size();
}

double Employees::part_examined() const {
  return rows_.empty() ? 1 : static_cast<double>(examined_) / static_cast<double>(rows_.size());
}

void Employees::examine(Row& row) try {
  if (!check_) check_ = std::make_unique<CardCheck>(database_, clock_);
  const auto record = reading_.file(control::File::kCards).find(row.id);
  if (!record) return;  // gone meanwhile
  put_hours(row, *record);
  put_faults(row, static_cast<int>(check_->faults_of(row.id, *record).size()));
} catch (const store::DbError&) {
  // It could not be read; the others may.
  put(row, Column::kState, "illisible");
}

void Employees::put_hours(Row& row, const store::DbRecord& card) {
  const int line = InForce(card).on(today_);
  if (line < 0) return;
  const auto hours = monthly_hours(
      card, line, [this](std::string_view code) { return reading_.labels_of_codes().is_hours_item(code); });
  if (!hours) return;
  put_number(row, Column::kHours, *hours);
  if (const auto part = full_time(*hours, figure(card, card::kEstablishmentHours)))
    put_number(row, Column::kFullTime, *part);
}

void Employees::put_faults(Row& row, int faults) {
  row.numbers[index_of(Column::kState)] = texts_[index_of(Column::kState)].add(faults_text(faults), faults);
}

// ---- Sorting.

std::vector<int> Employees::sorted(const Sorting& sorting) const {
  const auto& title = kTitles[index_of(sorting.column)];
  const auto places = texts(sorting.column).places(title.kind);
  const auto names = texts(Column::kName).places(Kind::kText);
  struct Key {
    std::uint32_t place, name;
    int row;
  };
  std::vector<Key> keys(rows_.size());
  for (int row = 0; row < count(); ++row) {
    const std::uint32_t place = places[number(row, sorting.column)];
    const bool turned = sorting.descending && place != Texts::kLast;
    keys[static_cast<std::size_t>(row)] = {turned ? Texts::kLast - 1 - place : place,
                                           names[number(row, Column::kName)], row};
  }
  std::sort(keys.begin(), keys.end(), [&](const Key& a, const Key& b) {
    if (a.place != b.place) return a.place < b.place;
    return a.name != b.name ? a.name < b.name : id(a.row) < id(b.row);
  });
  std::vector<int> rows;
  rows.reserve(keys.size());
  for (const Key& key : keys) rows.push_back(key.row);
  return rows;
}

}  // namespace velanor::office
